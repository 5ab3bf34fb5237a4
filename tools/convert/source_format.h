// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SOURCE_FORMAT_H
#define KELTRA_CONVERT_SOURCE_FORMAT_H

// What a model's format, and its file, say about the whole of it: its unit and which way is up.

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/transform.h"

#include <string>

struct aiScene;

namespace keltra::convert {

constexpr char kFbxImporter[] = "Autodesk FBX Importer";
constexpr char kAc3dImporter[] = "AC3D Importer";

// The name of the importer that read the model, as assimp has it; empty for a scene that none has read.
std::string importerOf(const aiScene &scene);

// Whether all surfaces of an AC3D model have two sides, which its importer does not read. Some of them are a
// loss that the report has.
bool isTwoSidedAc3d(const aiScene &scene, const std::string &model, Report &report);

struct SourceSpace {
    double metres = 1.0;  // that a unit of the importer's scene has
    Matrix upright;       // the rotation that makes Y up
};

// The options can say which axis is up. Notes what was found in the report.
SourceSpace spaceOf(const aiScene &scene, const Options &options, Report &report);

}  // namespace keltra::convert

#endif
