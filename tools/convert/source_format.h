// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SOURCE_FORMAT_H
#define KELTRA_CONVERT_SOURCE_FORMAT_H

// What a model's format, and its file, say about the whole of it.

#include <string>

struct aiScene;

namespace keltra::convert {

constexpr char kFbxImporter[] = "Autodesk FBX Importer";

// The name of the importer that read the model, as assimp has it; empty for a scene that none has read.
std::string importerOf(const aiScene &scene);

}  // namespace keltra::convert

#endif
