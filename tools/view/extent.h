// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_EXTENT_H
#define KELTRA_VIEW_EXTENT_H

#include <keltra/vector.h>

#include <vector>

namespace keltra::view {

// The extent of a model over all measured poses.
struct Extent {
    R3XVECTOR3D centre;
    float radius = 1.0f;  // of the sphere around the centre that holds everything
    float girth = 1.0f;   // radius of the upright cylinder around the centre that holds everything
    // The median of the points, which is not affected by distant parts, and the radius around it that holds
    // three quarters of them.
    R3XVECTOR3D core;
    float coreRadius = 1.0f;
};

// Points that are not finite are ignored. The extent of no points, or of equal points, is a unit sphere.
Extent extentOf(const std::vector<R3XVECTOR3D> &points);

}  // namespace keltra::view

#endif
