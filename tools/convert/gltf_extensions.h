// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_GLTF_EXTENSIONS_H
#define KELTRA_CONVERT_GLTF_EXTENSIONS_H

// What a glTF file asks for beyond the format, and the importer neither reads nor mentions.

#include "tools/convert/report.h"

#include <nlohmann/json.hpp>

#include <string>

namespace keltra::convert {

// Why the file cannot be converted: an extension that it requires and that is not read. Empty if it can be.
std::string refusalOf(const nlohmann::json &document);

// Pictures that only an extension names become those of the texture, as the importer knows no other. Whether
// anything was changed.
bool namePictures(nlohmann::json &document);

// What is done without: extensions, further scenes, and meshes that no node has.
void reportGltf(const nlohmann::json &document, Report &report);

}  // namespace keltra::convert

#endif
