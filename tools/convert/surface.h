#ifndef KELTRA_CONVERT_SURFACE_H
#define KELTRA_CONVERT_SURFACE_H

// The colours of the engine's fixed-function lighting for any of assimp's kinds of material.

#include <string>

#include "tools/convert/report.h"
#include "tools/formats/kte_writer.h"

struct aiMaterial;

namespace keltra::convert {

// What the colours depend on besides the material's own.
struct SurfaceUse {
    std::string name;  // in notes
    bool textured = false;
    bool glowTexture = false;  // the texture is one of emission
    bool glowDropped = false;  // there is one of emission, which is not used
    bool metalMaps = false;    // metalness and roughness come from pictures, which are not used
};

// How a material says what is seen through it.
enum class AlphaMode { kNone, kOpaque, kMask, kBlend };
AlphaMode alphaModeOf(const aiMaterial &material);

// What alpha has to reach, in kMask.
float alphaCutOff(const aiMaterial &material);

// 1 is opaque.
float opacityOf(const aiMaterial &material, const std::string &name, Report &report);

// Its own diffuse colour, or base colour, is black or absent.
bool isDark(const aiMaterial &material);

// Colours and shininess of `result`.
void setColours(const aiMaterial &material, const SurfaceUse &use, formats::Material &result, Report &report);

}  // namespace keltra::convert

#endif
