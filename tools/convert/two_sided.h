// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_TWO_SIDED_H
#define KELTRA_CONVERT_TWO_SIDED_H

// The engine draws the front sides of opaque triangles. Back sides are triangles of their own.

#include "tools/formats/kte_writer.h"

#include <vector>

namespace keltra::convert {

// Whether each edge of a triangle is that of another one, in the other direction: then back sides are seen
// from the inside only.
bool isClosed(const formats::MeshData &mesh);

// Adds the back sides to the mesh or, where it has no room, to a mesh behind it in the list.
void addBackSides(std::vector<formats::MeshData> &meshes, std::size_t index);

}  // namespace keltra::convert

#endif
