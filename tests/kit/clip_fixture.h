// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_KIT_CLIP_FIXTURE_H
#define KELTRA_TESTS_KIT_CLIP_FIXTURE_H

#include <keltra/kit/clip.h>

#include <memory>
#include <string>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {

/// Clips made in code, and a character of three nodes: body, bone0 below it, bone1 below bone0.
class KitClipFixture : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        body.setName("body");
        bone0.setName("bone0");
        bone1.setName("bone1");
        bone0.link(&body);
        bone1.link(&bone0);
        KTFAULTS::clear();
    }
    void TearDown() override {
        KTANIM::setKTAPath(nullptr);
        EngineTest::TearDown();
    }

    static KTANIM *newAnimation(unsigned bones, unsigned frames) {
        KTANIM *animation = new KTANIM;
        animation->setNumberOfBones(bones);
        animation->setNumberOfFrames(frames);
        for (unsigned i = 0; i < bones; ++i) animation->setBoneName(i, ("bone" + std::to_string(i)).c_str());
        return animation;
    }
    /// Of two bones; the rotation about x goes from `from` by `step` a frame, the position along x and z too.
    static std::unique_ptr<KTCLIP> newClip(float from, float step, unsigned frames = 10) {
        KTANIM *animation = newAnimation(2, frames);
        for (unsigned frame = 0; frame < frames; ++frame) {
            for (unsigned bone = 0; bone < 2; ++bone) {
                const float value = from + step * static_cast<float>(frame);
                animation->keyframes[frame][bone].rotation.set(value, 0.0f, 0.0f);
                animation->keyframes[frame][bone].position.set(value, 1.0f, 2.0f * value);
            }
        }
        std::unique_ptr<KTCLIP> clip(new KTCLIP);
        EXPECT_TRUE(clip->take(animation));
        clip->setFrameRate(10.0f);
        return clip;
    }

    KTNODE body, bone0, bone1;
};

}  // namespace keltra::test

#endif
