// SPDX-License-Identifier: Zlib
#include <keltra/anim.h>
#include <keltra/fault.h>
#include <keltra/foundation.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <memory>

#include "foundation/lifecycle.h"
#include "tests/scene/anim_file_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

/// The object holds an animation already, which a failed load must leave unchanged.
class AnimDamageTest : public AnimFileTest {
   protected:
    void SetUp() override {
        AnimFileTest::SetUp();
        anim = new KTANIM;
        ASSERT_TRUE(loadBytes(anim, formats::writeKta(numbered(4, 3)), "earlier.kta"));
        anim->setTranslating(true);
        before.reset(new KTANIM(*anim));
        live = memoryCounters().live;
    }

    void expectUntouched() {
        ASSERT_EQ(memoryCounters().live, live) << "a buffer is left behind";
        ASSERT_EQ(anim->id, before->id);
        ASSERT_STREQ(anim->name, "earlier.kta");
        ASSERT_TRUE(anim->translating);
        ASSERT_EQ(anim->numberOfBones, 4u);
        ASSERT_EQ(anim->numberOfFrames, 3u);
        ASSERT_EQ(std::memcmp(anim->boneNames, before->boneNames, sizeof anim->boneNames), 0);
        const auto same = [](const KTBONEFRAME &a, const KTBONEFRAME &b) {
            return a.rotation == b.rotation && a.position == b.position && a.set == b.set;
        };
        // The files of these tests reach no further into the grid.
        for (unsigned frame = 0; frame < 8; ++frame)
            ASSERT_TRUE(std::equal(anim->keyframes[frame], anim->keyframes[frame] + KTANIM::maxBones,
                                   before->keyframes[frame], same));
    }

    void expectRefused(const Bytes &bytes) {
        ASSERT_FALSE(loadBytes(anim, bytes));
        expectUntouched();
    }

    KTANIM *anim = nullptr;
    std::unique_ptr<KTANIM> before;
    std::uint32_t live = 0;
};

TEST_F(AnimDamageTest, NoFileIsRefused) {
    EXPECT_FALSE(anim->load(nullptr));
    EXPECT_FALSE(anim->load(""));
    EXPECT_FALSE(anim->load("missing.kta"));
    std::filesystem::create_directory(folder.path("folder.kta"));
    EXPECT_FALSE(anim->load("folder.kta"));
    expectUntouched();
}

// A file of the kernel claims a page and holds less.
TEST_F(AnimDamageTest, AFileThatEndsBeforeItsSizeIsRefused) {
    KTANIM::setKTAPath(nullptr);
    const char path[] = "/sys/devices/system/cpu/online";
    if (vnfFileSize(path) < 100) GTEST_SKIP() << "no file here is shorter than it claims";
    EXPECT_FALSE(anim->load(path));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_READ);
    expectUntouched();
}

TEST_F(AnimDamageTest, AnOverlongNameIsRefused) {
    KTANIM::setKTAPath(nullptr);
    const Bytes bytes = formats::writeKta(numbered(2, 2));
    // As many slashes as make the name 255, then 256 characters long.
    const std::size_t length = folder.write("test.kta", bytes).size();
    const auto ofLength = [&](std::size_t all) {
        return folder.prefix() + std::string(all - length, '/') + "test.kta";
    };
    EXPECT_FALSE(anim->load(ofLength(256).c_str()));
    EXPECT_FALSE(anim->load(std::string(100000, '/').c_str()));
    expectUntouched();
    const std::string longest = ofLength(255);
    EXPECT_TRUE(anim->load(longest.c_str()));
    EXPECT_EQ(anim->getName(), longest);
}

TEST_F(AnimDamageTest, EveryTruncationIsRefused) {
    const Bytes whole = formats::writeKta(numbered(3, 2));
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        expectRefused(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    }
    EXPECT_TRUE(loadBytes(anim, whole));
}

TEST_F(AnimDamageTest, EveryByteOfTheMagicCounts) {
    const Bytes whole = formats::writeKta(numbered(3, 2));
    for (std::size_t i = 0; i < 14; ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            Bytes bytes = whole;
            bytes[i] = static_cast<std::uint8_t>(bytes[i] ^ 1 << bit);
            expectRefused(bytes);
        }
    }
}

TEST_F(AnimDamageTest, LargerCountsThanTheFileHoldsAreRefused) {
    for (std::size_t offset : {formats::kKtaBoneCountOffset, formats::kKtaFrameCountOffset}) {
        const unsigned right = offset == formats::kKtaBoneCountOffset ? 3 : 2;
        for (unsigned count = right + 1; count < 65536; count += count < 1100 ? 1 : 997) {
            SCOPED_TRACE(count);
            Bytes bytes = formats::writeKta(numbered(3, 2));
            putU16(&bytes, offset, count);
            expectRefused(bytes);
        }
    }
}

TEST_F(AnimDamageTest, SmallerCountsReadNothingBeyondThem) {
    for (unsigned bones = 0; bones <= 3; ++bones) {
        for (unsigned frames = 0; frames <= 2; ++frames) {
            Bytes bytes = formats::writeKta(numbered(3, 2));
            putU16(&bytes, formats::kKtaBoneCountOffset, bones);
            putU16(&bytes, formats::kKtaFrameCountOffset, frames);
            KTANIM *fresh = new KTANIM;
            ASSERT_TRUE(loadBytes(fresh, bytes));
            EXPECT_EQ(fresh->getNumberOfBones(), bones);
            EXPECT_EQ(fresh->getNumberOfFrames(), frames);
            EXPECT_STREQ(fresh->getBoneName(bones), "");
            for (unsigned bone = 0; bone < 4; ++bone) EXPECT_EQ(fresh->getFrameRotation(frames, bone), kZero);
            delete fresh;
        }
    }
}

TEST_F(AnimDamageTest, CountsAboveTheLimitsAreRefusedHoweverLargeTheFile) {
    expectRefused(formats::writeKta(numbered(129, 1)));
    expectRefused(formats::writeKta(numbered(129, 0)));
    expectRefused(formats::writeKta(numbered(1, 1025)));
    Bytes noBones = formats::writeKta({});
    putU16(&noBones, formats::kKtaFrameCountOffset, 1025);
    expectRefused(noBones);
}

TEST_F(AnimDamageTest, BoneNamesAreShorterThanTheirArrays) {
    formats::Animation animation = numbered(2, 1);
    animation.bones[1] = std::string(256, 'n');
    expectRefused(formats::writeKta(animation));
    animation.bones[1] = std::string(255, 'n');
    EXPECT_TRUE(loadBytes(anim, formats::writeKta(animation)));
    EXPECT_EQ(anim->getBoneName(1), animation.bones[1]);
}

TEST_F(AnimDamageTest, AFailedAllocationIsRefused) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const Bytes bytes = formats::writeKta(numbered(3, 2));
    folder.write("test.kta", bytes);
    Allocations::failNext(bytes.size());
    EXPECT_FALSE(anim->load("test.kta"));
    Allocations::clear();
    EXPECT_STREQ(anim->getName(), "earlier.kta");
    EXPECT_EQ(anim->getNumberOfBones(), 4u);
}

#ifndef _WIN32
TEST_F(AnimDamageTest, EveryFileIsClosed) {
    const auto openFiles = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                             std::filesystem::directory_iterator());
    };
    const auto earlier = openFiles();
    const Bytes whole = formats::writeKta(numbered(3, 2));
    loadBytes(anim, whole);
    loadBytes(anim, Bytes(whole.begin(), whole.end() - 1));
    loadBytes(anim, {});
    anim->save(folder.path("saved.kta").c_str());
    anim->save("/dev/full");
    EXPECT_EQ(openFiles(), earlier);
}
#else
// A file that is open cannot be removed there.
TEST_F(AnimDamageTest, EveryFileIsClosed) {
    const Bytes whole = formats::writeKta(numbered(3, 2));
    for (const Bytes &bytes : {whole, Bytes(whole.begin(), whole.end() - 1), Bytes()}) {
        loadBytes(anim, bytes);
        EXPECT_TRUE(std::filesystem::remove(folder.path("test.kta")));
    }
    anim->save(folder.path("saved.kta").c_str());
    EXPECT_TRUE(std::filesystem::remove(folder.path("saved.kta")));
}
#endif

}  // namespace
}  // namespace keltra::test
