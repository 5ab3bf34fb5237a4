// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_COMPOSED_H
#define KELTRA_CONVERT_COMPOSED_H

#include <assimp/matrix4x4.h>
#include <assimp/matrix4x4.inl>

namespace keltra::convert {

// Scale first, then rotation and position. The library's constructor scales last (assimp 5.2.5), which
// differs where the three scales do.
inline aiMatrix4x4 composed(const aiVector3D &scale, const aiQuaternion &rotation,
                            const aiVector3D &position) {
    const aiMatrix3x3 m = rotation.GetMatrix();
    return {m.a1 * scale.x, m.a2 * scale.y, m.a3 * scale.z, position.x,  //
            m.b1 * scale.x, m.b2 * scale.y, m.b3 * scale.z, position.y,  //
            m.c1 * scale.x, m.c2 * scale.y, m.c3 * scale.z, position.z,  //
            0.0f,           0.0f,           0.0f,           1.0f};
}

}  // namespace keltra::convert

#endif
