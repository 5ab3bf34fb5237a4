// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ANIM_FIXTURE_H
#define KELTRA_TESTS_ANIM_FIXTURE_H

#include <keltra/anim.h>

#include "tests/scene/scene_parts.h"

namespace keltra::test {

inline const R3XVECTOR3D kZero(0.0f, 0.0f, 0.0f);

class AnimTest : public SceneTest {
   protected:
    ~AnimTest() override {
        KTANIM::cleanUp();
        KTANIM::setKTAPath(nullptr);
    }

    static KTANIM *newAnim(unsigned bones, unsigned frames) {
        KTANIM *anim = new KTANIM;
        anim->setNumberOfBones(bones);
        anim->setNumberOfFrames(frames);
        return anim;
    }

    static float angle(KTANIM *anim, unsigned frame, unsigned bone = 0) {
        return anim->getFrameRotation(frame, bone).x;
    }

    KTNODE *loadBones() {
        return loadNode(folder, plainNode("root", {boneNode("hip", {1, 2, 3}, {boneNode("knee", {4, 5, 6})}),
                                                   boneNode("arm", {7, 8, 9})}));
    }
};

}  // namespace keltra::test

#endif
