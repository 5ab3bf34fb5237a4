// SPDX-License-Identifier: Zlib
#include "formats/scene_contents.h"

namespace keltra {

bool SceneContents::read(const void *bytes, std::size_t size, SceneFault &fault) {
    if (!checkScene(bytes, size, fault, this)) return false;
    if (whole) return true;
    return refuseMemory(&fault);
}

void SceneContents::material(const MaterialRecord &record) {
    SceneMaterial *added = arena.add(SceneMaterial{record, nullptr});
    if (!added) {
        whole = false;
        return;
    }
    (lastMaterial ? lastMaterial->next : materials) = added;
    lastMaterial = added;
}

void SceneContents::plain(const PlainRecord &record, unsigned int) {
    append({arena.add(record), nullptr, nullptr, nullptr});
}

void SceneContents::light(const LightRecord &record, unsigned int) {
    append({nullptr, arena.add(record), nullptr, nullptr});
}

void SceneContents::mesh(const MeshRecord &record, unsigned int) {
    append({nullptr, nullptr, arena.add(record), nullptr});
}

void SceneContents::append(const SceneNode &node) {
    SceneNode *added = node.plain || node.light || node.mesh ? arena.add(node) : nullptr;
    if (!added) {
        whole = false;
        return;
    }
    (lastNode ? lastNode->next : nodes) = added;
    lastNode = added;
}

}  // namespace keltra
