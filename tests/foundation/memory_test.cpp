// SPDX-License-Identifier: Zlib
#include <gtest/gtest.h>
#include <keltra/foundation.h>
#ifdef _WIN32
#include <windows.h>
#else
#include <sys/sysinfo.h>
#endif

#include <cstdint>
#include <cstdlib>

#include "foundation/lifecycle.h"
#include "foundation/quiet.h"
#include "platform/platform.h"
#include "tests/foundation/foundation_fixture.h"
#include "tests/support/allocations.h"
#include "tools/support/interpose.h"

namespace {

// The memory figures of the system, replaced by a test's own.
bool memoryIsFaked = false;
bool memoryFails = false;
unsigned long totalPages = 0, freePages = 0;
constexpr unsigned int kPage = 4096;

}  // namespace

#ifdef _WIN32
KELTRA_INTERPOSE(void, WINAPI, GlobalMemoryStatus, (MEMORYSTATUS * status)) {
    static auto *const next = keltra::nextFunction<void WINAPI(MEMORYSTATUS *)>("GlobalMemoryStatus");
    if (!memoryIsFaked) return next(status);
    status->dwTotalPhys = status->dwAvailPhys = 0;
    if (memoryFails) return;
    status->dwTotalPhys = SIZE_T(totalPages) * kPage;
    status->dwAvailPhys = SIZE_T(freePages) * kPage;
}
#else
KELTRA_INTERPOSE(int, , sysinfo, (struct sysinfo * info) noexcept) {
    if (!memoryIsFaked) return keltra::nextFunction<int(struct sysinfo *)>("sysinfo")(info);
    if (memoryFails) return -1;
    *info = {};
    info->totalram = totalPages;
    info->bufferram = freePages / 4;
    info->freeram = freePages - info->bufferram;
    info->mem_unit = kPage;
    return 0;
}
#endif

namespace keltra::test {
namespace {

class MemoryTest : public FoundationTest {
   protected:
    ~MemoryTest() override { memoryIsFaked = memoryFails = false; }

    static void setPagesInUse(unsigned long used, unsigned long total = 4000) {
        memoryIsFaked = true;
        totalPages = total;
        freePages = total - used;
    }
};

TEST_F(MemoryTest, CountsAllocationsReleasesAndBytes) {
    const MemoryCounters before = memoryCounters();
    void *blocks[3];
    for (void *&block : blocks) block = vnfMalloc(100);
    vnfFree(blocks[0]);
    vnfFree(blocks[1]);
    const MemoryCounters after = memoryCounters();
    vnfFree(blocks[2]);

    EXPECT_EQ(after.live - before.live, 1u);
    EXPECT_EQ(after.allocations - before.allocations, 3u);
    EXPECT_EQ(after.releases - before.releases, 2u);
    EXPECT_EQ(after.totalBytes - before.totalBytes, 300u);
    EXPECT_EQ(memoryCounters().totalBytes, after.totalBytes) << "releasing never lowers the total";
}

TEST_F(MemoryTest, ReleasingNullIsCountedAndHarmless) {
    const MemoryCounters before = memoryCounters();
    vnfFree(nullptr);
    EXPECT_EQ(memoryCounters().live, before.live - 1);
    EXPECT_EQ(memoryCounters().releases, before.releases + 1);
    vnfFree(vnfMalloc(0));
}

TEST_F(MemoryTest, AFailedAllocationIsCounted) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const MemoryCounters before = memoryCounters();
    Allocations::failNext(12345);
    EXPECT_EQ(vnfMalloc(12345), nullptr);
    EXPECT_EQ(memoryCounters().live, before.live + 1);
    EXPECT_EQ(memoryCounters().allocations, before.allocations + 1);
    EXPECT_EQ(memoryCounters().totalBytes, before.totalBytes + 12345);
}

// In a child: nothing lowers the total again.
TEST_F(MemoryTest, TheTotalStopsAtItsLimit) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    EXPECT_EXIT(
        {
            for (int i = 0; i < 2; ++i) {
                Allocations::failNext(UINT32_MAX);
                vnfMalloc(UINT32_MAX);
            }
            std::_Exit(memoryCounters().totalBytes == UINT32_MAX ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(MemoryTest, ThePeakIsTheLargestSample) {
    setPagesInUse(1000);
    vnfOpenLog(nullptr);
    EXPECT_EQ(memoryCounters().peak, 1000 * kPage);

    setPagesInUse(1500);
    vnfFree(vnfMalloc(1));
    setPagesInUse(1200);
    vnfFree(vnfMalloc(1));
    EXPECT_EQ(memoryCounters().peak, 1500 * kPage);
}

TEST_F(MemoryTest, ReleasingTakesNoSample) {
    setPagesInUse(1000);
    vnfOpenLog(nullptr);
    void *block = vnfMalloc(1);
    setPagesInUse(2000);
    vnfFree(block);
    EXPECT_EQ(memoryCounters().peak, 1000 * kPage);
}

TEST_F(MemoryTest, BlocksOfTheEngineAreSampledWithTheNextLogOrFrame) {
    setPagesInUse(1000);
    startLog();
    setPagesInUse(1500);
    vnfFree(allocate(100));
    EXPECT_EQ(memoryCounters().peak, 1000 * kPage);
    vnfLog("a line\n");
    EXPECT_EQ(memoryCounters().peak, 1500 * kPage);
    setPagesInUse(1600);
    sampleLateBlocks();
    EXPECT_EQ(memoryCounters().peak, 1500 * kPage) << "nothing was allocated";
    vnfFree(allocate(0));
    sampleLateBlocks();
    EXPECT_EQ(memoryCounters().peak, 1600 * kPage);
    vnfCloseLog();
}

TEST_F(MemoryTest, ManyBytesAreSampledAtOnce) {
    setPagesInUse(1000);
    vnfOpenLog(nullptr);
    setPagesInUse(1500);
    for (int i = 0; i < 2; ++i) vnfFree(allocate(32 << 10));
    EXPECT_EQ(memoryCounters().peak, 1500 * kPage);
    setPagesInUse(1700);
    vnfFree(allocate(1 << 20));
    EXPECT_EQ(memoryCounters().peak, 1700 * kPage);
}

TEST_F(MemoryTest, OpeningTheLogRestartsThePeak) {
    setPagesInUse(3000);
    vnfFree(vnfMalloc(1));
    setPagesInUse(500);
    vnfOpenLog(nullptr);
    EXPECT_EQ(memoryCounters().peak, 500 * kPage);
}

TEST_F(MemoryTest, ThePeakGoesBeyondTwoAndFourGibibytes) {
#if defined(_WIN32) && !defined(_WIN64)  // which tells the size in 32 bits
    constexpr unsigned long kAll = (1 << 20) - 1;
#else
    constexpr unsigned long kAll = 8 << 20;
#endif
    setPagesInUse(768 << 10, kAll);
    startLog();
    vnfCloseLog();
    EXPECT_NE(messages().find("Max. physical memory usage: 3072.00 mb (3221225472 bytes)\n"),
              std::string::npos);
    if (kAll < 1536 << 10) return;
    setPagesInUse(1536 << 10, kAll);
    startLog();
    vnfCloseLog();
    EXPECT_NE(messages().find("Max. physical memory usage: 6144.00 mb (4294967295 bytes)\n"),
              std::string::npos);
}

// The memory of all processes together is far below the memory in use once files are cached.
TEST_F(MemoryTest, TheCacheOfFilesIsNoMemoryInUse) {
    const PhysicalMemory memory = platformMemory();
    const std::uint64_t cache = platformReclaimableMemory(memory);
    const std::uint64_t filled = memory.total - memory.available;
    if (cache <= filled / 100) GTEST_SKIP() << "the system has no files cached";
    vnfOpenLog(nullptr);
    EXPECT_LT(memoryCounters().peak, filled - cache / 2);
}

TEST_F(MemoryTest, ASystemThatTellsTwoSizesIsAskedForNoCache) {
    PhysicalMemory other = platformMemory();
    other.total += kPage;
    EXPECT_EQ(platformReclaimableMemory(other), 0u);
}

TEST_F(MemoryTest, ASystemThatTellsNothingCountsAsUnused) {
    setPagesInUse(1000);
    memoryFails = true;
    EXPECT_EQ(platformMemory().total, 0u);
    EXPECT_EQ(platformMemory().available, 0u);
    vnfOpenLog(nullptr);
    EXPECT_EQ(memoryCounters().peak, 0u);
}

TEST_F(MemoryTest, TheSummaryShowsThePeak) {
    setPagesInUse(384);
    startLog();
    vnfCloseLog();
    EXPECT_NE(messages().find("Max. physical memory usage: 1.50 mb (1572864 bytes)\n"), std::string::npos);
}

TEST_F(MemoryTest, FileSizeIsInBytes) {
    const std::string path = folder.write("data.bin", std::string(1234, 'x'));
    EXPECT_EQ(vnfFileSize(path.c_str()), 1234);
    EXPECT_EQ(vnfFileSize(folder.write("empty.bin", std::string()).c_str()), 0);
}

TEST_F(MemoryTest, FileSizeOfWhatCannotBeMeasuredIsMinusOne) {
    EXPECT_EQ(vnfFileSize(nullptr), -1);
    EXPECT_EQ(vnfFileSize(folder.path("missing").c_str()), -1);
    EXPECT_EQ(vnfFileSize(folder.prefix().c_str()), -1);
}

TEST_F(MemoryTest, FileExistsWhenItCanBeOpened) {
    EXPECT_TRUE(vnfFileExists(folder.write("data.bin", std::string()).c_str()));
    EXPECT_FALSE(vnfFileExists(folder.path("missing").c_str()));
    EXPECT_FALSE(vnfFileExists(nullptr));
}

}  // namespace
}  // namespace keltra::test
