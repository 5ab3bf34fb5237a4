// SPDX-License-Identifier: Zlib
// Scene files of both versions: as they are, and made of the input as far as the writer makes them
// well-formed.

#include "fuzz/harness.h"
#include "tools/formats/kte_writer.h"

using namespace keltra::fuzz;
namespace formats = keltra::formats;

namespace {

formats::Node nodeOf(Bytes &bytes, unsigned depth) {
    formats::Node node;
    node.kind = static_cast<formats::NodeKind>(bytes.u8() % 3);
    node.name = bytes.text(9);
    node.position = {bytes.real(), bytes.real(), bytes.real()};
    node.light.type = static_cast<formats::LightType>(bytes.u8() % 3);
    node.light.cutOff = bytes.real();
    formats::MeshData &mesh = node.mesh;
    mesh.material = bytes.text(3);
    mesh.radius = bytes.real();
    const unsigned vertices = bytes.u8() % 20, faces = bytes.u8() % 20, influences = bytes.u8() % 5;
    mesh.vertices.assign(vertices, {bytes.real(), bytes.real(), bytes.real()});
    mesh.normals.assign(vertices, {0.0f, bytes.real(), 1.0f});
    mesh.uvs.assign(bytes.flag() ? vertices : bytes.u8() % 40, {bytes.real(), 0.5f});
    for (unsigned i = 0; vertices && i < faces; ++i) {
        const auto index = [&] {
            return static_cast<std::uint16_t>(bytes.u8() % (vertices + (i % 16 == 15)));
        };
        mesh.faces.push_back({index(), index(), index()});
        mesh.faceNormals.push_back({0.0f, 0.0f, 1.0f});
    }
    mesh.influences = static_cast<std::uint16_t>(influences);
    for (unsigned i = 0; i < vertices * influences; ++i) {
        mesh.influenceBones.push_back(bytes.u8() % 8);
        mesh.influenceWeights.push_back(bytes.real());
    }
    for (unsigned i = 0; i < influences * 2; ++i) mesh.boneNames.push_back(bytes.text(9));
    for (unsigned i = bytes.u8() % 4; depth < 12 && i; --i) node.children.push_back(nodeOf(bytes, depth + 1));
    return node;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Bytes bytes(data, size);
    std::vector<std::uint8_t> made(data, data + size);
    if (size && *data != 'K') {
        formats::Scene scene;
        const auto version = bytes.flag() ? formats::KteVersion::k15a : formats::KteVersion::k16a;
        for (unsigned i = bytes.u8() % 4; i; --i) {
            formats::Material material;
            material.name = bytes.text(3);
            material.transparency = bytes.real();
            material.shininess = bytes.real();
            scene.materials.push_back(material);
        }
        scene.root = nodeOf(bytes, 0);
        made = formats::writeKte(scene, version);
    }
    begin();
    KTNODE *root = KELTRA::load(fileOf(made.data(), made.size()));
    compareVerdict("kte", made.data(), made.size(), root);
    if (root) useTree(root, bytes, false);
    finish(made.size());
    return 0;
}
