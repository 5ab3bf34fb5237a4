// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_NORMALS_H
#define KELTRA_CONVERT_NORMALS_H

#include "tools/convert/transform.h"

#include <vector>

struct aiMesh;

namespace keltra::convert {

// The normal of a triangle; its length is twice the area.
Vector faceNormal(const aiMesh &mesh, unsigned face);

// Unit normals of all triangle corners, three per face of the mesh. Without normals in the mesh, edges of up
// to 60 degrees are smoothed; an unusable normal becomes the triangle's.
std::vector<Vector> cornerNormals(const aiMesh &mesh);

// What has to be flipped so that the triangles' front sides and the normals of their corners agree. If most
// do not, the winding is right if it encloses a positive volume; otherwise the normals are.
enum class Facing { kAgrees, kFlipNormals, kFlipTriangles };
Facing facingOf(const aiMesh &mesh, const std::vector<Vector> &cornerNormals);

}  // namespace keltra::convert

#endif
