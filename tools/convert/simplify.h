// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SIMPLIFY_H
#define KELTRA_CONVERT_SIMPLIFY_H

#include "tools/formats/kte_writer.h"

#include <cstddef>

namespace keltra::convert {

// Reduces a mesh to `share` of its triangles, from 0 to 1, or to fewer more than that where its shape does
// not allow it. Vertices that remain keep their places, texture coordinates and weights; seams of the texture
// and of the weights stay closed. With `keepEdges` the open edges stay as they are, because another mesh
// continues there. Returns the deviation as a share of the mesh's size.
float simplify(formats::MeshData &mesh, double share, bool keepEdges);

}  // namespace keltra::convert

#endif
