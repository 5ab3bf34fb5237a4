// SPDX-License-Identifier: Zlib
// The grid of an animation: clear, and without memory where it is not used.

#include <keltra/anim.h>

#ifdef _WIN32
#include <windows.h>

#include <psapi.h>
#else
#include <sys/mman.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "tests/scene/anim_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

// Bytes of this process that are in memory.
long residentBytes() {
#ifdef _WIN32
    PROCESS_MEMORY_COUNTERS memory;
    const BOOL read = GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return read ? static_cast<long>(memory.WorkingSetSize) : 0;
#else
    long pages = 0, resident = 0;
    std::FILE *file = std::fopen("/proc/self/statm", "r");
    if (!file) return 0;
    const int read = std::fscanf(file, "%ld %ld", &pages, &resident);
    std::fclose(file);
    return read == 2 ? resident * sysconf(_SC_PAGESIZE) : 0;
#endif
}

TEST_F(AnimTest, RowsThatAreNotUsedTakeNoMemory) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    constexpr long kAnims = 10, kRows = 24, kBones = 20;
    const long before = residentBytes();
    ASSERT_GT(before, 0);
    for (int i = 0; i < kAnims; ++i) {
        KTANIM *anim = newAnim(kBones, kRows);
        for (unsigned frame = 0; frame < kRows; ++frame) anim->setFrame(frame, 0, 1.0f, 2.0f, 3.0f);
    }
    const long used = residentBytes() - before, whole = kAnims * static_cast<long>(sizeof(KTANIM));
    EXPECT_LT(used, whole / 10) << "of " << whole;
}

#ifndef _WIN32
// The pages that are wholly in the grid and in memory.
long residentPages(const KTANIM &anim) {
    const std::uintptr_t page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE)),
                         grid = reinterpret_cast<std::uintptr_t>(anim.keyframes),
                         begin = (grid + page - 1) / page * page,
                         end = (grid + sizeof anim.keyframes) / page * page;
    std::vector<unsigned char> states((end - begin) / page);
    EXPECT_EQ(mincore(reinterpret_cast<void *>(begin), end - begin, states.data()), 0);
    return std::count_if(states.begin(), states.end(), [](unsigned char state) { return state & 1; });
}

// Page by page: the test above asks the same of the process, on Windows too.
TEST_F(AnimTest, UntouchedPagesTakeNoMemory) {
    const long page = sysconf(_SC_PAGESIZE), row = sizeof(KTBONEFRAME[KTANIM::maxBones]);
    const std::unique_ptr<KTANIM> anim(newAnim(KTANIM::maxBones, KTANIM::maxFrames));
    EXPECT_EQ(residentPages(*anim), 0);
    anim->setFrame(512, 64, 1.0f, 2.0f, 3.0f);
    const long ofOneKeyframe = residentPages(*anim);
    EXPECT_GE(ofOneKeyframe, 1);
    EXPECT_LE(ofOneKeyframe, 2);
    for (unsigned bone = 0; bone < KTANIM::maxBones; ++bone) anim->setFrame(100, bone, 1.0f, 2.0f, 3.0f);
    const long ofOneRow = residentPages(*anim) - ofOneKeyframe;
    EXPECT_GE(ofOneRow, row / page);
    EXPECT_LE(ofOneRow, row / page + 2);
}

// A file writes the rows that it has, and a pose reads one.
TEST_F(AnimTest, AFileTakesThePagesOfItsFrames) {
    constexpr unsigned kFrames = 20;
    KTANIM *written = newAnim(2, kFrames);
    written->setBoneName(0, "hip");
    written->setBoneName(1, "arm");
    for (unsigned frame = 0; frame < kFrames; ++frame) written->setFrame(frame, 1, 1.0f, 2.0f, 3.0f);
    KTANIM::setKTAPath(folder.prefix().c_str());
    ASSERT_TRUE(written->save(folder.path("clip.kta").c_str()));
    const std::unique_ptr<KTANIM> read(new KTANIM);
    ASSERT_TRUE(read->load("clip.kta"));
    EXPECT_TRUE(read->apply(kFrames - 1, loadBones()));
    const long page = sysconf(_SC_PAGESIZE), row = sizeof(KTBONEFRAME[KTANIM::maxBones]);
    EXPECT_GE(residentPages(*read), 1);
    EXPECT_LE(residentPages(*read), kFrames * row / page + 2);
}

// The C library may give a grid the memory of an earlier one, after clearing all of it.
TEST_F(AnimTest, UntouchedPagesOfMemoryThatWasUsedTakeNone) {
    for (int i = 0; i < 8; ++i) {
        const std::unique_ptr<KTANIM> anim(new KTANIM);
        EXPECT_EQ(residentPages(*anim), 0) << i;
        std::memset(static_cast<void *>(anim->keyframes), 0xa5, sizeof anim->keyframes);
        EXPECT_GT(residentPages(*anim), 0) << i;
    }
}
#endif

TEST_F(AnimTest, IsClearInMemoryThatWasUsed) {
    const auto isClear = [](KTANIM &anim) {
        for (unsigned frame = 0; frame <= KTANIM::maxFrames; ++frame)
            for (const KTBONEFRAME &keyframe : anim.keyframes[frame])
                if (keyframe.rotation != kZero || keyframe.position != kZero || keyframe.set) return false;
        return true;
    };
    const std::unique_ptr<unsigned char[]> place(new unsigned char[sizeof(KTANIM) + alignof(KTANIM)]);
    std::memset(place.get(), 0xa5, sizeof(KTANIM) + alignof(KTANIM));
    void *aligned = place.get();
    std::size_t room = sizeof(KTANIM) + alignof(KTANIM);
    ASSERT_TRUE(std::align(alignof(KTANIM), sizeof(KTANIM), aligned, room));
    KTANIM *placed = new (aligned) KTANIM;
    EXPECT_TRUE(isClear(*placed));
    placed->~KTANIM();
    for (int i = 0; i < 8; ++i) {
        const std::unique_ptr<KTANIM> anim(new KTANIM);
        ASSERT_TRUE(isClear(*anim)) << i;
        std::memset(static_cast<void *>(anim->keyframes), 0xa5, sizeof anim->keyframes);
    }
}

}  // namespace
}  // namespace keltra::test
