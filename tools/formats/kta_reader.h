// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KTA_READER_H
#define KELTRA_FORMATS_KTA_READER_H

// Reads KTA animation files into the writer's structures. Everything in the file is kept: writing it again
// gives the same bytes.

#include "tools/formats/kta_writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace keltra::formats {

// Accepts what the engine accepts. Returns nothing for other files; `reason`, unless null, then says where
// and why.
std::optional<Animation> readKta(const std::vector<std::uint8_t> &bytes, std::string *reason = nullptr);

}  // namespace keltra::formats

#endif
