// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_BLENDER_H
#define KELTRA_CONVERT_BLENDER_H

#include "tools/convert/report.h"

#include <cstdint>
#include <string>
#include <vector>

namespace keltra::convert {

bool isBlend(const std::string &path);

// A binary glTF of the file by an installed Blender without a window; empty when there is none, or when it
// fails. The variable KELTRA_BLENDER of the environment names another program, or none.
std::vector<std::uint8_t> exportedByBlender(const std::string &path, Report &report);

// What is lost without Blender.
void reportWithoutBlender(const std::string &path, Report &report);

}  // namespace keltra::convert

#endif
