// SPDX-License-Identifier: Zlib
#include "tools/formats/kta_reader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "tests/tools/example_data.h"

namespace keltra::formats {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes again(const Bytes &bytes) {
    const std::optional<Animation> animation = readKta(bytes);
    return animation ? writeKta(*animation) : Bytes();
}

// Any bits in every value, not-a-numbers too.
Animation randomAnimation(unsigned seed, unsigned bones, unsigned frames) {
    std::mt19937 random(seed);
    const auto real = [&random] {
        const std::uint32_t bits = static_cast<std::uint32_t>(random());
        float value = 0.0f;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    };
    Animation animation;
    animation.endOfText = static_cast<std::uint8_t>(random());
    for (unsigned bone = 0; bone < bones; ++bone)
        animation.bones.push_back(std::string(random() % 256, static_cast<char>(1 + random() % 255)));
    animation.frames.resize(frames);
    for (std::vector<Keyframe> &frame : animation.frames) {
        for (unsigned bone = 0; bone < bones; ++bone) {
            Keyframe keyframe;
            keyframe.rotation = {real(), real(), real()};
            keyframe.position = {real(), real(), real()};
            keyframe.set = random() % 2 == 0;
            if (keyframe.set) keyframe.setByte = static_cast<std::uint8_t>(1 + random() % 255);
            frame.push_back(keyframe);
        }
    }
    animation.rest.assign(random() % 9, static_cast<std::uint8_t>(random()));
    return animation;
}

TEST(KtaReader, ExampleFilesComeBackByteForByte) {
    const std::vector<test::ExampleFile> animations = test::exampleFiles("figure_", ".kta");
    for (const test::ExampleFile &file : animations) EXPECT_EQ(again(file.bytes), file.bytes) << file.name;
    EXPECT_EQ(animations.size(), 2u);
}

TEST(KtaReader, ReadsWhatTheWriterWasGiven) {
    const Animation walk = test::exampleAnimation("figure_walk.kta");
    const std::optional<Animation> read = readKta(writeKta(walk));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->bones, walk.bones);
    ASSERT_EQ(read->frames.size(), walk.frames.size());
    EXPECT_EQ(read->frames[3][2].rotation, walk.frames[3][2].rotation);
    EXPECT_EQ(read->frames[3][2].position, walk.frames[3][2].position);
    EXPECT_EQ(read->frames[3][2].set, walk.frames[3][2].set);
}

TEST(KtaReader, RandomAnimationsComeBackByteForByte) {
    for (unsigned seed = 1; seed <= 200; ++seed) {
        const Bytes bytes = writeKta(randomAnimation(seed, seed % 7, seed % 11));
        ASSERT_EQ(again(bytes), bytes) << seed;
    }
}

TEST(KtaReader, TakesTheLimitsAndNothingBeyond) {
    const Bytes largest = writeKta(randomAnimation(1, 128, 1024));
    EXPECT_EQ(again(largest), largest);
    std::string reason;
    EXPECT_FALSE(readKta(writeKta(randomAnimation(1, 129, 1)), &reason));
    EXPECT_EQ(reason, "byte 15, bone count: more than 128");
    EXPECT_FALSE(readKta(writeKta(randomAnimation(1, 1, 1025)), &reason));
    EXPECT_EQ(reason, "byte 17, frame count: more than 1024");
}

TEST(KtaReader, TakesFramesWithoutBonesAndBonesWithoutFrames) {
    const Bytes frames = writeKta(randomAnimation(1, 0, 5)), bones = writeKta(randomAnimation(2, 5, 0));
    EXPECT_EQ(again(frames), frames);
    EXPECT_EQ(again(bones), bones);
}

TEST(KtaReader, RefusesEveryTruncation) {
    Animation animation = randomAnimation(3, 3, 2);
    animation.rest.clear();
    const Bytes whole = writeKta(animation);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::string reason;
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_FALSE(readKta(cut, &reason)) << size;
        EXPECT_FALSE(reason.empty()) << size;
    }
}

TEST(KtaReader, WhateverItAcceptsComesBackByteForByte) {
    const Bytes whole = writeKta(randomAnimation(3, 3, 2));
    std::size_t accepted = 0, refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (unsigned flip = 1; flip < 256; ++flip) {
            Bytes bytes = whole;
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ flip);
            const std::optional<Animation> animation = readKta(bytes);
            ++(animation ? accepted : refused);
            if (animation) {
                ASSERT_EQ(writeKta(*animation), bytes) << at << " " << flip;
            }
        }
    }
    EXPECT_GT(accepted, 10000u);
    EXPECT_GT(refused, 1000u);
}

}  // namespace
}  // namespace keltra::formats
