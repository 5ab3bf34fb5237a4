#ifndef KELTRA_CONVERT_NORMALS_H
#define KELTRA_CONVERT_NORMALS_H

#include <vector>

#include "tools/convert/transform.h"

struct aiMesh;

namespace keltra::convert {

// The normal of a triangle, as long as twice its area.
Vector faceNormal(const aiMesh &mesh, unsigned face);

// Unit normals of all corners of triangles, three for each face of the mesh. Those the mesh has; where they
// are absent or unusable, edges of up to 60 degrees are smoothed.
std::vector<Vector> cornerNormals(const aiMesh &mesh);

// What makes the fronts of triangles and the normals of their corners look the same way. Where most of them
// do not, the triangles' sense is right if it encloses a positive volume, and the normals' otherwise.
enum class Facing { kAgrees, kTurnNormals, kTurnTriangles };
Facing facingOf(const aiMesh &mesh, const std::vector<Vector> &cornerNormals);

}  // namespace keltra::convert

#endif
