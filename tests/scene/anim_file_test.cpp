// SPDX-License-Identifier: Zlib
#include <keltra/anim.h>
#include <keltra/foundation.h>

#ifndef _WIN32
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <cstring>
#include <filesystem>
#include <limits>

#include "tests/scene/anim_file_fixture.h"
#include "tests/support/small_disk.h"
#include "tests/support/small_stack.h"
#include "tests/support/unprivileged.h"

namespace keltra::test {
namespace {

TEST_F(AnimFileTest, ReadsTheFormatByteForByte) {
    const Bytes bytes = {'K', 'T', 'A', ' ', 'f', 'i', 'l', 'e', ' ', 'v', '1', '.', '6', 'a', 26,  // magic
                         2,   0,   1,   0,                                                          // counts
                         'h', 'i', 'p', 0,   'a', 0,                                                // names
                         0,   0,   128, 63,  0,   0,   0,   64,  0,   0,   128, 191,     // hip: 1, 2, -1
                         0,   0,   0,   63,  0,   0,   0,   0,   0,   0,   32,  65,  1,  // 0.5, 0, 10, set
                         0,   0,   0,   0,   0,   0,   128, 63,  0,   0,   0,   64,      // a: 0, 1, 2
                         0,   0,   128, 191, 0,   0,   0,   63,  0,   0,   0,   0,   0};
    KTANIM *anim = new KTANIM;
    ASSERT_TRUE(loadBytes(anim, bytes));
    EXPECT_EQ(anim->getNumberOfBones(), 2u);
    EXPECT_EQ(anim->getNumberOfFrames(), 1u);
    EXPECT_STREQ(anim->getBoneName(0), "hip");
    EXPECT_STREQ(anim->getBoneName(1), "a");
    EXPECT_EQ(anim->getKeyframe(0, 0)->rotation, R3XVECTOR3D(1.0f, 2.0f, -1.0f));
    EXPECT_EQ(anim->getKeyframe(0, 0)->position, R3XVECTOR3D(0.5f, 0.0f, 10.0f));
    EXPECT_TRUE(anim->getKeyframe(0, 0)->set);
    EXPECT_EQ(anim->getKeyframe(0, 1)->rotation, R3XVECTOR3D(0.0f, 1.0f, 2.0f));
    EXPECT_FALSE(anim->getKeyframe(0, 1)->set);
    EXPECT_EQ(saved(anim), bytes);
}

TEST_F(AnimFileTest, LoadsWhatTheSampleWriterWrites) {
    const formats::Animation animation = numbered(5, 7);
    KTANIM *anim = new KTANIM;
    anim->setTranslating(true);
    ASSERT_TRUE(loadBytes(anim, formats::writeKta(animation)));
    expectHolds(anim, animation);
    EXPECT_TRUE(anim->getTranslating()) << "no part of the file";
}

TEST_F(AnimFileTest, SavesWhatTheSampleWriterWrites) {
    for (const formats::Animation &animation : {numbered(5, 7), numbered(20, 24)}) {
        KTANIM *anim = new KTANIM;
        const Bytes bytes = formats::writeKta(animation);
        ASSERT_TRUE(loadBytes(anim, bytes));
        EXPECT_EQ(saved(anim), bytes);
    }
}

TEST_F(AnimFileTest, SavesWhatTheConverterWrites) {
    for (const char *name : {"figure_walk.kta", "figure_wave.kta"}) {
        KTANIM *anim = new KTANIM;
        const Bytes bytes = readFile(KELTRA_EXAMPLE_DATA + std::string(name));
        ASSERT_TRUE(loadBytes(anim, bytes)) << name;
        EXPECT_EQ(saved(anim), bytes) << name;
    }
}

TEST_F(AnimFileTest, ASavedAnimationLoadsBackIdentical) {
    KTANIM *anim = newAnim(3, 4), *back = new KTANIM;
    const float odd[] = {-0.0f, std::numeric_limits<float>::quiet_NaN(), 1e-42f,
                         -std::numeric_limits<float>::infinity()};
    for (unsigned frame = 0; frame < 4; ++frame) {
        for (unsigned bone = 0; bone < 3; ++bone) {
            anim->setFrame(frame, bone, odd[frame], 0.1f, static_cast<float>(bone) / 3.0f);
            anim->getKeyframe(frame, bone)->position.set(odd[bone], 1e30f, 0.3f);
            if (bone == 1) anim->unsetFrame(frame, bone);
        }
    }
    anim->setBoneName(0, "hip");
    anim->setBoneName(2, std::string(255, 'z').c_str());
    ASSERT_TRUE(anim->save(folder.path("saved.kta").c_str()));
    ASSERT_TRUE(back->load("saved.kta"));
    EXPECT_EQ(std::memcmp(back->boneNames, anim->boneNames, sizeof anim->boneNames), 0);
    for (unsigned frame = 0; frame < 4; ++frame) {
        for (unsigned bone = 0; bone < 3; ++bone) {
            const KTBONEFRAME &one = *anim->getKeyframe(frame, bone),
                              &other = *back->getKeyframe(frame, bone);
            EXPECT_EQ(std::memcmp(&one.rotation, &other.rotation, sizeof one.rotation), 0)
                << frame << ' ' << bone;
            EXPECT_EQ(std::memcmp(&one.position, &other.position, sizeof one.position), 0)
                << frame << ' ' << bone;
            EXPECT_EQ(one.set, other.set);
        }
    }
}

TEST_F(AnimFileTest, ByteFourteenIsWrittenAndNotChecked) {
    KTANIM *anim = new KTANIM;
    Bytes bytes = formats::writeKta(numbered(1, 1));
    EXPECT_EQ(bytes[14], 26);
    bytes[14] = 'x';
    ASSERT_TRUE(loadBytes(anim, bytes));
    EXPECT_EQ(saved(anim)[14], 26);
}

TEST_F(AnimFileTest, AnySetByteButZeroIsTrue) {
    KTANIM *anim = new KTANIM;
    Bytes bytes = formats::writeKta(numbered(1, 1));
    bytes.back() = 0xfe;
    ASSERT_TRUE(loadBytes(anim, bytes));
    EXPECT_TRUE(anim->getKeyframe(0, 0)->set);
    EXPECT_EQ(saved(anim).back(), 1);
}

TEST_F(AnimFileTest, ThePathStandsBeforeLoadedNamesOnly) {
    KTANIM *anim = newAnim(1, 1);
    KTANIM::setKTAPath("/no/such/folder/");
    const std::string path = folder.path("a.kta");
    ASSERT_TRUE(anim->save(path.c_str()));
    EXPECT_FALSE(anim->load(path.c_str()));
    EXPECT_FALSE(anim->load("a.kta"));
    KTANIM::setKTAPath((folder.prefix() + "a").c_str());
    EXPECT_TRUE(anim->load(".kta")) << "nothing is put between the two";
    EXPECT_STREQ(anim->getName(), ".kta") << "without the directory";
    EXPECT_EQ(KTANIM::findByFilename(".kta"), anim);
    KTANIM::setKTAPath(nullptr);
    EXPECT_TRUE(anim->load(path.c_str()));
}

TEST_F(AnimFileTest, AFileWithoutFramesLoadsTheNames) {
    KTANIM *anim = newAnim(1, 1);
    anim->setFrame(0, 0, 1.0f, 2.0f, 3.0f);
    ASSERT_TRUE(loadBytes(anim, formats::writeKta(numbered(3, 0))));
    EXPECT_EQ(anim->getNumberOfBones(), 3u);
    EXPECT_EQ(anim->getNumberOfFrames(), 0u);
    EXPECT_STREQ(anim->getBoneName(2), "ccc");
    EXPECT_EQ(anim->getFrameRotation(0, 0), R3XVECTOR3D(1.0f, 2.0f, 3.0f))
        << "keyframes are left as they were";
    EXPECT_EQ(saved(anim), formats::writeKta(numbered(3, 0)));
}

TEST_F(AnimFileTest, AFileWithoutAnythingLoads) {
    KTANIM *anim = newAnim(1, 1);
    ASSERT_TRUE(loadBytes(anim, formats::writeKta({})));
    EXPECT_EQ(anim->getNumberOfBones(), 0u);
    // Frames without bones take no bytes.
    Bytes bytes = formats::writeKta({});
    putU16(&bytes, formats::kKtaFrameCountOffset, 1024);
    ASSERT_TRUE(loadBytes(anim, bytes));
    EXPECT_EQ(anim->getNumberOfFrames(), 1024u);
}

TEST_F(AnimFileTest, TheLargestAnimationGoesInAndOut) {
    const formats::Animation animation = numbered(128, 1024);
    const Bytes bytes = formats::writeKta(animation);
    KTANIM *anim = new KTANIM;
    ASSERT_TRUE(loadBytes(anim, bytes));
    expectHolds(anim, animation);
    EXPECT_EQ(saved(anim), bytes);
}

TEST_F(AnimFileTest, BytesBehindTheLastKeyframeAreIgnored) {
    KTANIM *anim = new KTANIM;
    Bytes bytes = formats::writeKta(numbered(2, 2));
    bytes.insert(bytes.end(), 1000, 0xff);
    EXPECT_TRUE(loadBytes(anim, bytes));
    expectHolds(anim, numbered(2, 2));
}

TEST_F(AnimFileTest, SaveNeedsAPathThatCanBeWritten) {
    KTANIM *anim = newAnim(1, 1);
    EXPECT_FALSE(anim->save(nullptr));
    EXPECT_FALSE(anim->save(""));
    EXPECT_FALSE(anim->save(folder.prefix().c_str()));
    EXPECT_FALSE(anim->save(folder.path("missing/a.kta").c_str()));
#ifndef _WIN32
    EXPECT_FALSE(anim->save("/dev/full"));
#endif
}

#ifndef _WIN32  // no limit of a file's size
TEST_F(AnimFileTest, WithoutRoomTheOldFileStays) {
    const std::string path = folder.path("saved.kta");
    const Bytes old = saved(newAnim(2, 2));
    KTANIM *large = newAnim(20, 100);
    bool written;
    {
        const SmallDisk disk(4096);
        written = large->save(path.c_str());
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(readFile(path), old);
    EXPECT_FALSE(std::filesystem::exists(path + ".part"));
    EXPECT_TRUE(large->save(path.c_str()));
    EXPECT_GT(readFile(path).size(), 20u * 100u * 25u);
}
#endif

TEST_F(AnimFileTest, WhatASaveLeftBehindIsReplaced) {
    const std::string path = folder.path("saved.kta");
    saved(newAnim(2, 2));
    folder.write("saved.kta.part", Bytes(100000, 7));
    KTANIM *anim = newAnim(3, 1);
    EXPECT_EQ(saved(anim), saved(anim));
    EXPECT_FALSE(std::filesystem::exists(path + ".part"));
    EXPECT_LT(readFile(path).size(), 1000u);
}

#ifndef _WIN32  // neither rights nor links of POSIX
TEST_F(AnimFileTest, AFolderThatTakesNoNewFilesHasItsOldOnesWritten) {
    const std::string path = folder.path("saved.kta");
    const Bytes old = saved(newAnim(2, 2));
    ASSERT_EQ(chmod(path.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder.prefix().c_str(), 0555), 0);
    bool written;
    {
        const Unprivileged user;
        written = newAnim(3, 1)->save(path.c_str());
    }
    EXPECT_EQ(chmod(folder.prefix().c_str(), 0755), 0);
    EXPECT_TRUE(written);
    EXPECT_NE(readFile(path), old);
}

TEST_F(AnimFileTest, ALinkStaysALink) {
    saved(newAnim(2, 2));
    const std::string link = folder.path("link.kta");
    ASSERT_EQ(symlink("saved.kta", link.c_str()), 0);
    ASSERT_TRUE(newAnim(3, 1)->save(link.c_str()));
    struct stat status;
    ASSERT_EQ(lstat(link.c_str(), &status), 0);
    EXPECT_TRUE(S_ISLNK(status.st_mode));
    EXPECT_EQ(readFile(link), readFile(folder.path("saved.kta")));
}
#endif

TEST_F(AnimFileTest, SaveOfDamagedCountsAndNamesStaysInTheGrid) {
    KTANIM *anim = new KTANIM;
    anim->numberOfBones = anim->numberOfFrames = 65535;
    std::memset(anim->boneNames[0], 'n', sizeof anim->boneNames[0]);
    ASSERT_TRUE(anim->save(folder.path("saved.kta").c_str()));
    KTANIM *back = new KTANIM;
    ASSERT_TRUE(back->load("saved.kta"));
    EXPECT_EQ(back->getNumberOfBones(), 128u);
    EXPECT_EQ(back->getNumberOfFrames(), 1024u);
    EXPECT_EQ(back->getBoneName(0), std::string(255, 'n'));
}

TEST_F(AnimFileTest, LoadingNeedsLittleStack) {
    const formats::Animation animation = numbered(128, 40);
    folder.write("test.kta", formats::writeKta(animation));
    KTANIM *anim = new KTANIM;
    bool loaded = false, written = false;
    const std::string path = folder.path("saved.kta");
    EXPECT_TRUE(runOnSmallStack([&] {
        loaded = anim->load("test.kta");
        written = anim->save(path.c_str());
    }));
    EXPECT_TRUE(loaded && written);
    expectHolds(anim, animation);
}

}  // namespace
}  // namespace keltra::test
