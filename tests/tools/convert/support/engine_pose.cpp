// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/engine_pose.h"

#include <keltra/element.h>
#include <keltra/glbridge.h>

#include <algorithm>

namespace keltra::test {
namespace {

constexpr double kOne = 65536.0;  // of 16.16

void collect(KTNODE *node, std::vector<KTMESH *> &meshes) {
    if (!node) return;
    if (node->getType() == KT_MESH) {
        KTMESH *mesh = static_cast<KTMESH *>(node);
        if (mesh->getNumberOfFaces() > 0) meshes.push_back(mesh);
    }
    for (unsigned i = 0; i < node->getNumberOfChildren(); ++i) collect(node->getChild(i), meshes);
}

Point transformed(const R3XMATRIX &m, const std::int32_t *fixed, double w) {
    const double v[3] = {fixed[0] / kOne, fixed[1] / kOne, fixed[2] / kOne};
    double result[3];
    for (int r = 0; r < 3; ++r)
        result[r] = double{m.m[r]} * v[0] + double{m.m[4 + r]} * v[1] + double{m.m[8 + r]} * v[2] +
                    double{m.m[12 + r]} * w;
    return {result[0], result[1], result[2]};
}

PosedMesh posed(KTMESH *mesh) {
    const std::int32_t *positions = mesh->isSkinned() ? mesh->skinnedVertices : mesh->vertices;
    const std::int32_t *normals = mesh->isSkinned() ? mesh->skinnedNormals : mesh->vertexNormals;
    PosedMesh result;
    result.mesh = mesh;
    for (unsigned v = 0; v < mesh->getNumberOfVertices(); ++v) {
        result.positions.push_back(transformed(*mesh->getCachedMatrix(), positions + 3 * v, 1.0));
        result.normals.push_back(transformed(*mesh->getCachedMatrix(), normals + 3 * v, 0.0));
    }
    return result;
}

void drawListWithoutWindow(KTNODE *root) {
    KTELEMENT::reset();
    KTMESH::reset();
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    root->pass();
    for (unsigned i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
        KTELEMENT &element = *KTELEMENT::elementPointer[i];
        KTNODE *node = element.getNode();
        if (node->getType() == KT_MESH) static_cast<KTMESH *>(node)->animate(element.getParam1());
    }
}

}  // namespace

std::vector<KTMESH *> meshesOf(KTNODE *root) {
    std::vector<KTMESH *> meshes;
    collect(root, meshes);
    return meshes;
}

std::vector<PosedMesh> posedMeshes(KTNODE *root) {
    std::vector<PosedMesh> result;
    for (KTMESH *mesh : meshesOf(root)) result.push_back(posed(mesh));
    return result;
}

Shape shapeOf(const std::vector<PosedMesh> &meshes) {
    Shape shape;
    for (const PosedMesh &mesh : meshes) {
        shape.corners.insert(shape.corners.end(), mesh.positions.begin(), mesh.positions.end());
        const std::uint16_t *face = mesh.mesh->faces;
        for (unsigned f = 0; f < mesh.mesh->getNumberOfFaces(); ++f, face += 3) {
            const Point sum = mesh.positions[face[0]] + mesh.positions[face[1]] + mesh.positions[face[2]];
            shape.middles.push_back(sum * (1.0 / 3.0));
        }
    }
    return shape;
}

std::vector<PosedMesh> drawInRounds(KTNODE *root, const std::function<void()> &draw) {
    constexpr std::size_t kARound = KTMESH::maxSkins;
    const std::vector<KTMESH *> meshes = meshesOf(root);
    std::vector<bool> hidden;
    for (KTMESH *mesh : meshes) hidden.push_back(mesh->isHidden());
    for (KTMESH *mesh : meshes) mesh->setDisplayStatus(false);
    std::vector<PosedMesh> result;
    for (std::size_t first = 0; first < meshes.size(); first += kARound) {
        const std::size_t end = std::min(meshes.size(), first + kARound);
        for (std::size_t i = first; i < end; ++i) meshes[i]->setDisplayStatus(true);
        draw();
        for (std::size_t i = first; i < end; ++i) {
            result.push_back(posed(meshes[i]));
            meshes[i]->setDisplayStatus(false);
        }
    }
    for (std::size_t i = 0; i < meshes.size(); ++i) meshes[i]->setDisplayStatus(!hidden[i]);
    return result;
}

std::vector<PosedMesh> poseWithoutWindow(KTNODE *root) {
    const bool started = KTELEMENT::init(0);
    const std::vector<PosedMesh> result = drawInRounds(root, [root] { drawListWithoutWindow(root); });
    if (started) KTELEMENT::free();
    return result;
}

Loaded::Loaded(const convert::Conversion &conversion) {
    for (const convert::OutputFile &file : conversion.files) folder.write(file.name, file.bytes);
    KELTRA::setKTEPath(folder.prefix().c_str());
    KTANIM::setKTAPath(folder.prefix().c_str());
    KTTEXTURE::setPath(folder.prefix().c_str());
    scene = KELTRA::load(conversion.report.sceneFile.c_str());
}

Loaded::~Loaded() {
    KTANIM::cleanUp();
    KTNODE::cleanUp();
    KTMATERIAL::cleanUp();
    KTTEXTURE::cleanUp();
    KELTRA::setKTEPath(nullptr);
    KTANIM::setKTAPath(nullptr);
    KTTEXTURE::setPath(nullptr);
}

KTANIM *loadAnimation(const std::string &file) {
    if (KTANIM *known = KTANIM::findByFilename(file.c_str())) return known;
    KTANIM *animation = new KTANIM;
    if (!animation->load(file.c_str())) {
        delete animation;
        return nullptr;
    }
    animation->setTranslating(true);
    return animation;
}

}  // namespace keltra::test
