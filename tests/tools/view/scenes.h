// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_VIEW_SCENES_H
#define KELTRA_TESTS_TOOLS_VIEW_SCENES_H

#include "tools/formats/kte_writer.h"

#include <string>

namespace keltra::test {

// A triangle of that size at that place.
inline formats::Scene triangleScene(float size, const formats::Vec3 &place) {
    formats::Node mesh;
    mesh.kind = formats::NodeKind::kMesh;
    mesh.name = "triangle";
    mesh.position = place;
    mesh.mesh.radius = size;
    mesh.mesh.vertices = {{-size, -size, 0.0f}, {size, -size, 0.0f}, {0.0f, size, 0.0f}};
    mesh.mesh.normals.assign(3, {0.0f, 0.0f, 1.0f});
    mesh.mesh.faces = {{0, 1, 2}};
    mesh.mesh.faceNormals = {{0.0f, 0.0f, 1.0f}};
    mesh.mesh.material = "paint";
    mesh.mesh.minimum = {-size, -size, 0.0f};
    mesh.mesh.maximum = {size, size, 0.0f};
    formats::Scene scene;
    scene.root.name = "root";
    scene.root.children.push_back(mesh);
    formats::Material paint;
    paint.name = "paint";
    paint.diffuse = {0.9f, 0.2f, 0.1f, 1.0f};
    scene.materials.push_back(paint);
    return scene;
}

inline formats::Node light(const std::string &name, formats::LightType type, const formats::Vec3 &place,
                           const formats::Vec3 &direction, const formats::Vec3 &color = {1.0f, 0.8f, 0.5f}) {
    formats::Node node;
    node.kind = formats::NodeKind::kLight;
    node.name = name;
    node.position = place;
    node.light.type = type;
    node.light.direction = direction;
    node.light.cutOff = 25.0f;
    node.light.color = color;
    return node;
}

}  // namespace keltra::test

#endif
