// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SURFACE_H
#define KELTRA_CONVERT_SURFACE_H

// Computes colours for the engine's fixed-function lighting from assimp's materials of any kind.

#include "tools/convert/report.h"
#include "tools/formats/kte_writer.h"

#include <string>

struct aiMaterial;

namespace keltra::convert {

// What the colours depend on besides the material.
struct SurfaceUse {
    std::string name;  // in notes
    bool textured = false;
    bool glowTexture = false;  // the texture is an emission map
    bool glowDropped = false;  // there is an emission map, which is not used
    bool metalMaps = false;    // metalness and roughness come from maps, which are not used
};

// How a material defines its transparency.
enum class AlphaMode { kNone, kOpaque, kMask, kBlend };
AlphaMode alphaModeOf(const aiMaterial &material);

// The alpha from which pixels are visible in kMask.
float alphaCutOff(const aiMaterial &material);

// From 0 to 1, which is opaque.
float opacityOf(const aiMaterial &material, const std::string &name, Report &report);

// Whether its diffuse colour, or base colour, is black or absent.
bool isDark(const aiMaterial &material);

// Colours and shininess of `result`.
void setColours(const aiMaterial &material, const SurfaceUse &use, formats::Material &result, Report &report);

}  // namespace keltra::convert

#endif
