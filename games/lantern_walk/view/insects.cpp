// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/view/insects.h"

#include <cmath>

#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {

bool MothView::load(KTNODE *stage) {
    for (int i = 0; i < kMostMoths; ++i) {
        const std::string name = "moth" + std::to_string(i + 1);
        Parts &part = parts[i];
        part = {findMesh(stage, name), findMesh(stage, name + "Left"), findMesh(stage, name + "Right")};
        if (!part.body || !part.left || !part.right) return false;
        for (KTMESH *mesh : {part.body, part.left, part.right})
            mesh->setAuxId(kMothCode + static_cast<unsigned>(i));
    }
    hideAll();
    return true;
}

void MothView::show(const Parts &part, bool status) {
    for (KTMESH *mesh : {part.body, part.left, part.right}) mesh->setDisplayStatus(status);
}

void MothView::hideAll() {
    for (const Parts &part : parts) show(part, false);
}

void MothView::update(const Moths &moths, float time, float azimuth) {
    for (int i = 0; i < moths.getCount(); ++i) {
        const Moth &moth = moths.get(i);
        const Parts &part = parts[i];
        show(part, moth.mood != MothMood::kAway);
        const float phase = 2.1f * static_cast<float>(i);
        // It circles closer and lower the nearer the end is.
        const bool isCircling = moth.mood == MothMood::kCircling;
        const float radius = isCircling ? 0.7f + 0.1f * moth.left : 0.25f;
        const float angle = 3.2f * time + phase;
        part.body->setPosition(moth.at.x + radius * std::sin(angle),
                               3.2f + 0.35f * std::sin(2.3f * time + phase),
                               moth.at.z + 0.7f + radius * std::cos(angle));
        part.body->setRotation(0.0f, azimuth, 0.0f);
        const float flap = 55.0f * std::sin(17.0f * time + phase);
        part.left->setRotation(0.0f, flap, 12.0f);
        part.right->setRotation(0.0f, -flap, -12.0f);
    }
}

}  // namespace lantern_walk
