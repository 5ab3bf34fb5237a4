// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ANIM_FILE_FIXTURE_H
#define KELTRA_TESTS_ANIM_FILE_FIXTURE_H

// Animations and their files, written byte by byte and compared value by value.

#include <cstdio>

#include "tests/scene/anim_fixture.h"
#include "tests/support/same_verdict.h"
#include "tools/formats/kta_writer.h"

namespace keltra::test {

using Bytes = std::vector<std::uint8_t>;

inline void putU16(Bytes *bytes, std::size_t offset, unsigned value) {
    (*bytes)[offset] = static_cast<std::uint8_t>(value);
    (*bytes)[offset + 1] = static_cast<std::uint8_t>(value >> 8);
}

class AnimFileTest : public AnimTest {
   protected:
    void SetUp() override { KTANIM::setKTAPath(folder.prefix().c_str()); }

    /// Bones "a", "bb", "ccc", ...; every value of every keyframe is another one, every third is set.
    static formats::Animation numbered(unsigned bones, unsigned frames) {
        formats::Animation animation;
        for (unsigned bone = 0; bone < bones; ++bone)
            animation.bones.push_back(std::string(bone % 20 + 1, static_cast<char>('a' + bone % 26)));
        float value = 0.0f;
        const auto next = [&value] { return value += 0.5f; };
        for (unsigned frame = 0; frame < frames; ++frame) {
            animation.frames.emplace_back();
            for (unsigned bone = 0; bone < bones; ++bone) {
                formats::Keyframe keyframe;
                keyframe.rotation = {next(), next(), next()};
                keyframe.position = {-next(), -next(), -next()};
                keyframe.set = (frame + bone) % 3 == 0;
                animation.frames.back().push_back(keyframe);
            }
        }
        return animation;
    }

    // A new file each time: writing over an old one makes some file systems wait for the disk.
    bool loadBytes(KTANIM *anim, const Bytes &bytes, const char *name = "test.kta") {
        std::remove(folder.path(name).c_str());
        folder.write(name, bytes);
        const bool loaded = anim->load(name);
        expectSameVerdict("kta", bytes, loaded);
        return loaded;
    }

    Bytes saved(KTANIM *anim) {
        EXPECT_TRUE(anim->save(folder.path("saved.kta").c_str()));
        return readFile(folder.path("saved.kta"));
    }

    static R3XVECTOR3D vector(formats::Vec3 v) { return R3XVECTOR3D(v.x, v.y, v.z); }

    static void expectHolds(KTANIM *anim, const formats::Animation &animation) {
        ASSERT_EQ(anim->getNumberOfBones(), animation.bones.size());
        ASSERT_EQ(anim->getNumberOfFrames(), animation.frames.size());
        for (unsigned bone = 0; bone < animation.bones.size(); ++bone)
            ASSERT_EQ(anim->getBoneName(bone), animation.bones[bone]);
        for (unsigned frame = 0; frame < animation.frames.size(); ++frame) {
            for (unsigned bone = 0; bone < animation.bones.size(); ++bone) {
                const formats::Keyframe &expected = animation.frames[frame][bone];
                const KTBONEFRAME &keyframe = *anim->getKeyframe(frame, bone);
                ASSERT_EQ(keyframe.rotation, vector(expected.rotation)) << frame << ' ' << bone;
                ASSERT_EQ(keyframe.position, vector(expected.position)) << frame << ' ' << bone;
                ASSERT_EQ(keyframe.set, expected.set) << frame << ' ' << bone;
            }
        }
    }
};

}  // namespace keltra::test

#endif
