#ifndef KELTRA_VIEW_EXTENT_H
#define KELTRA_VIEW_EXTENT_H

#include <keltra/vector.h>

#include <vector>

namespace keltra::view {

// The room that a model takes, all poses together.
struct Extent {
    R3XVECTOR3D centre;
    float radius = 1.0f;  // of the sphere around the centre that holds everything
    float girth = 1.0f;   // the same about the upright axis through the centre
    // Where most of it is, whatever stands far off: the median of the points, and the radius around it that
    // holds three quarters of them.
    R3XVECTOR3D core;
    float coreRadius = 1.0f;
};

// Of no point, or of one place only, the extent of a unit sphere; points that are no numbers count for
// nothing.
Extent extentOf(const std::vector<R3XVECTOR3D> &points);

}  // namespace keltra::view

#endif
