// SPDX-License-Identifier: Zlib
// Meshes of other meshes and of arrays, and what belongs to surfaces.
#include <keltra/kit/shapes.h>

#include <keltra/material.h>
#include <keltra/matrix.h>
#include <keltra/mesh.h>
#include <keltra/texture.h>

#include "kit/fault.h"
#include "kit/mesh_builder.h"
#include "kit/transform.h"

#include <new>

using keltra::kit::MeshBuilder;

namespace {

constexpr float kFixed = 1.0f / 65536.0f;

R3XVECTOR3D vectorOf(const std::int32_t *values) {
    return R3XVECTOR3D(float(values[0]), float(values[1]), float(values[2])) * kFixed;
}

KTMESH *asPart(KTNODE &node, const KTMATERIAL *material) {
    if (!node.isOfClass(KT_MESH)) return nullptr;
    KTMESH &mesh = static_cast<KTMESH &>(node);
    const bool counts = mesh.getMaterial() == material && !mesh.isHidden() && !mesh.isSkinned() &&
                        mesh.vertices && mesh.vertexNormals && mesh.faces && mesh.getNumberOfFaces() > 0;
    return counts ? &mesh : nullptr;
}

void addPart(MeshBuilder *merged, const KTMESH &part, const KTNODE *root) {
    const R3XMATRIX matrix = keltra::kit::matrixTo(part, root);
    const unsigned int first = merged->vertexCount();
    for (unsigned int i = 0; i < part.getNumberOfVertices(); ++i) {
        const R3XVECTOR4D place = matrix.transform(vectorOf(part.vertices + 3 * i));
        const R3XVECTOR3D normal = matrix.rotate(R3XVECTOR4D(vectorOf(part.vertexNormals + 3 * i)));
        const bool hasUV = part.uvs && i < part.getNumberOfUVs();
        merged->vertex(R3XVECTOR3D(place.x, place.y, place.z), normal,
                       hasUV ? float(part.uvs[2 * i]) * kFixed : 0.0f,
                       hasUV ? float(part.uvs[2 * i + 1]) * kFixed : 0.0f);
    }
    for (const std::uint16_t *face = part.faces, *const end = face + 3 * part.getNumberOfFaces(); face != end;
         face += 3)
        merged->face(first + face[0], first + face[1], first + face[2]);
}

R3XVECTOR3D corner(const KTARRAYS &arrays, unsigned int vertex) {
    return R3XVECTOR3D(arrays.vertices + 3 * vertex);
}

// The sum of the normals of the faces at a vertex, each as long as its face is large.
R3XVECTOR3D summedNormal(const KTARRAYS &arrays, unsigned int vertex) {
    R3XVECTOR3D sum;
    for (unsigned int i = 0; i < arrays.numberOfFaces; ++i) {
        const std::uint16_t *const face = arrays.faces + 3 * i;
        if (face[0] != vertex && face[1] != vertex && face[2] != vertex) continue;
        const R3XVECTOR3D from = corner(arrays, face[0]);
        sum += (corner(arrays, face[1]) - from) ^ (corner(arrays, face[2]) - from);
    }
    if (sum.squaredLength() > 0.0f) sum.normalize();
    return sum;
}

}  // namespace

KTMESH *KTSHAPES::makeArrays(const KTARRAYS &arrays) {
    const char *const call = "KTSHAPES::makeArrays";
    if (!arrays.vertices || !arrays.faces)
        return keltra::kit::failNull(call, arrays.vertices ? "faces" : "vertices"), nullptr;
    for (unsigned int i = 0; i < 3 * arrays.numberOfFaces; ++i)
        if (arrays.faces[i] >= arrays.numberOfVertices)
            return keltra::kit::failRange(call, "faces", arrays.faces[i], long(arrays.numberOfVertices) - 1),
                   nullptr;
    MeshBuilder mesh(call, arrays.numberOfVertices, arrays.numberOfFaces);
    for (unsigned int i = 0; mesh.isGood() && i < arrays.numberOfVertices; ++i)
        mesh.vertex(corner(arrays, i),
                    arrays.normals ? R3XVECTOR3D(arrays.normals + 3 * i) : summedNormal(arrays, i),
                    arrays.uvs ? arrays.uvs[2 * i] : 0.0f, arrays.uvs ? arrays.uvs[2 * i + 1] : 0.0f);
    for (unsigned int i = 0; mesh.isGood() && i < arrays.numberOfFaces; ++i)
        mesh.face(arrays.faces[3 * i], arrays.faces[3 * i + 1], arrays.faces[3 * i + 2]);
    return mesh.finish(arrays.uvs != nullptr);
}

KTMESH *KTSHAPES::merge(KTNODE *root, KTMATERIAL *material) {
    const char *const call = "KTSHAPES::merge";
    if (!root) return keltra::kit::failNull(call, "root"), nullptr;
    unsigned int vertices = 0, faces = 0;
    keltra::kit::visitTree(*root, [&](KTNODE &node) {
        const KTMESH *const part = asPart(node, material);
        vertices += part ? part->getNumberOfVertices() : 0;
        faces += part ? part->getNumberOfFaces() : 0;
    });
    if (faces == 0)
        return keltra::kit::fail(KT_FAULT_STATE, call, {nullptr, 0, nullptr, "no meshes to merge", nullptr}),
               nullptr;
    MeshBuilder merged(call, vertices, faces);
    if (!merged.isGood()) return nullptr;
    keltra::kit::visitTree(*root, [&](KTNODE &node) {
        KTMESH *const part = asPart(node, material);
        if (!part) return;
        addPart(&merged, *part, root);
        part->setDisplayStatus(false);
    });
    KTMESH *const mesh = merged.finish();
    mesh->setMaterial(material);
    return mesh;
}

KTMATERIAL *KTSHAPES::makeMaterial(const char *name, float r, float g, float b, KTTEXTURE *texture) {
    KTMATERIAL *const material = new (std::nothrow) KTMATERIAL;
    if (!material) return keltra::kit::failMemory("KTSHAPES::makeMaterial"), nullptr;
    if (name) material->setName(name);
    material->setAmbient(r, g, b, 1.0f);
    material->setDiffuse(r, g, b, 1.0f);
    material->setSpecular(0.0f, 0.0f, 0.0f, 1.0f);
    material->setTexture(0, texture);
    return material;
}

KTBOXCOORD KTSHAPES::getCell(unsigned int columns, unsigned int rows, unsigned int index) {
    if (columns == 0) columns = 1;
    if (rows == 0) rows = 1;
    const float width = 1.0f / static_cast<float>(columns), height = 1.0f / static_cast<float>(rows);
    const float left = width * static_cast<float>(index % columns);
    const float top = 1.0f - height * static_cast<float>(index / columns % rows);
    KTBOXCOORD cell;
    const float corners[8] = {left, top, left + width, top, left, top - height, left + width, top - height};
    for (int i = 0; i < 8; ++i) cell.coord[i] = corners[i];
    return cell;
}

bool KTSHAPES::setCell(KTMESH *quad, unsigned int columns, unsigned int rows, unsigned int index) {
    const char *const call = "KTSHAPES::setCell";
    if (!quad) return keltra::kit::failNull(call, "quad");
    if (!quad->uvs || quad->getNumberOfVertices() != 4 || quad->getNumberOfUVs() != 4)
        return keltra::kit::fail(KT_FAULT_STATE, call,
                                 {nullptr, 0, nullptr, "the mesh is none of makeQuad", nullptr});
    const KTBOXCOORD cell = getCell(columns, rows, index);
    // Of the box: top left, top right, bottom left, bottom right. Of the quad: around from the bottom left.
    const int order[4] = {2, 3, 1, 0};
    for (int i = 0; i < 4; ++i) {
        quad->uvs[2 * i] = keltra::kit::toFixed(cell.coord[2 * order[i]]);
        quad->uvs[2 * i + 1] = keltra::kit::toFixed(cell.coord[2 * order[i] + 1]);
    }
    return true;
}
