// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SCENE_PARTS_H
#define KELTRA_TESTS_SCENE_PARTS_H

// Small scenes for the tests of meshes, skins and scene files.

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"
#include "tools/formats/kte_writer.h"

namespace keltra::test {

inline formats::Node plainNode(const std::string &name, std::vector<formats::Node> children = {}) {
    formats::Node node;
    node.name = name;
    node.children = std::move(children);
    return node;
}

inline formats::Node lightNode(const std::string &name) {
    formats::Node node = plainNode(name);
    node.kind = formats::NodeKind::kLight;
    return node;
}

/// A mesh without geometry, as bones are.
inline formats::Node boneNode(const std::string &name, formats::Vec3 position = {},
                              std::vector<formats::Node> children = {}) {
    formats::Node node = plainNode(name, std::move(children));
    node.kind = formats::NodeKind::kMesh;
    node.position = position;
    return node;
}

/// A strip of triangles with `vertices` vertices, a texture coordinate for each and `vertices - 2` faces.
inline formats::Node stripNode(const std::string &name, unsigned vertices = 4,
                               const std::string &material = "") {
    formats::Node node = boneNode(name);
    formats::MeshData &mesh = node.mesh;
    mesh.material = material;
    mesh.radius = 2.0f;
    for (unsigned v = 0; v < vertices; ++v) {
        const float x = static_cast<float>(v / 2), y = static_cast<float>(v % 2);
        mesh.vertices.push_back({x, y, -0.5f * x});
        mesh.normals.push_back({0.0f, 0.25f, 1.0f});
        mesh.uvs.push_back({0.25f * x, y});
    }
    for (unsigned v = 2; v < vertices; ++v) {
        mesh.faces.push_back(
            {static_cast<uint16_t>(v - 2), static_cast<uint16_t>(v - 1), static_cast<uint16_t>(v)});
        mesh.faceNormals.push_back({0.0f, 0.5f, 1.5f});
    }
    return node;
}

/// The strip, each vertex following all of `bones` with equal weights.
inline formats::Node skinNode(const std::string &name, const std::vector<std::string> &bones,
                              unsigned vertices = 4, const std::string &material = "") {
    formats::Node node = stripNode(name, vertices, material);
    formats::MeshData &mesh = node.mesh;
    mesh.influences = static_cast<uint16_t>(bones.size());
    mesh.boneNames = bones;
    for (unsigned v = 0; v < vertices; ++v) {
        for (unsigned b = 0; b < bones.size(); ++b) {
            mesh.influenceBones.push_back(static_cast<uint8_t>(b));
            mesh.influenceWeights.push_back(1.0f / static_cast<float>(bones.size()));
        }
    }
    return node;
}

inline formats::Scene sceneOf(formats::Node root) {
    formats::Scene scene;
    scene.root = std::move(root);
    return scene;
}

/// Writes the scene to the folder and loads it.
inline KTNODE *loadScene(const TempFolder &folder, const formats::Scene &scene,
                         formats::KteVersion version = formats::KteVersion::k16a) {
    folder.write("scene.kte", formats::writeKte(scene, version));
    KELTRA::setKTEPath(folder.prefix().c_str());
    return KELTRA::load("scene.kte");
}

inline KTNODE *loadNode(const TempFolder &folder, formats::Node root) {
    return loadScene(folder, sceneOf(std::move(root)));
}

inline KTMESH *loadMesh(const TempFolder &folder, formats::Node root) {
    return static_cast<KTMESH *>(loadNode(folder, std::move(root)));
}

/// For tests without a window: the GL is stubbed, and what a test makes is destroyed behind it.
class SceneTest : public testing::Test {
   protected:
    SceneTest() {
        KTTEXTURE::setPath(folder.prefix().c_str());
        KTMESH::init();
    }
    ~SceneTest() override {
        KTNODE::cleanUp();
        KTMATERIAL::cleanUp();
        KTSHADER::cleanUp();
        KTTEXTURE::cleanUp();
        KTMESH::free();
        KTTEXTURE::setPath(nullptr);
        KELTRA::setKTEPath(nullptr);
    }

    TempFolder folder;

   private:
    GlRecorder::Stub stub;
};

}  // namespace keltra::test

#endif
