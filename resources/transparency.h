// SPDX-License-Identifier: Zlib
#ifndef KELTRA_RESOURCES_TRANSPARENCY_H
#define KELTRA_RESOURCES_TRANSPARENCY_H

#include <keltra/material.h>

#include "math/float_bits.h"

namespace keltra {

// KTMATERIAL::isTransparent without a floating-point comparison. False without a material.
inline bool isTransparent(const KTMATERIAL *material) {
    return material && bitsOf(material->getTransparency()) != kOneBits;
}

}  // namespace keltra

#endif
