// SPDX-License-Identifier: Zlib
#include "formats/tga_file.h"

#include <gtest/gtest.h>
#include <keltra/fault.h>

#include <algorithm>
#include <random>

#include "foundation/block.h"
#include "foundation/memory.h"
#include "tests/formats/tga_bytes.h"
#include "tests/support/allocations.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

struct Read {
    bool isRead = false;
    Bytes pixels;
    KTFAULT fault = {};
};

// The fault that the last file had.
KTFAULT told;

class TgaFileTest : public testing::Test {
   protected:
    TgaFileTest() {
        KTFAULTS::setHandler([](const KTFAULT *fault, void *) { told = *fault; }, nullptr);
    }
    ~TgaFileTest() override { KTFAULTS::setHandler(nullptr, nullptr); }

    Read read(const Bytes &bytes) {
        const std::string path = folder.write("picture.tga", bytes);
        Read result;
        TgaImage image = {};
        std::uint8_t *pixels = nullptr;
        told = {};
        {
            FaultScope scope(KT_CALL("KTTEXTURE::load"), path.c_str());
            result.isRead = readTga(scope, image, pixels);
        }
        result.fault = told;
        if (pixels) result.pixels.assign(pixels, pixels + image.bytes());
        releaseBlock(pixels);
        return result;
    }

    TempFolder folder;
};

Read decode(const Bytes &bytes) {
    Read result;
    TgaImage image = {};
    Fault fault;
    if (parseTga(bytes.data(), bytes.size(), image, &fault)) {
        result.pixels.resize(image.bytes());
        result.isRead = decodeTga(image, result.pixels.data(), &fault);
    }
    if (!result.isRead) {
        result.pixels.clear();
        result.fault = toPublic(fault);
    }
    return result;
}

// Packets of all lengths; several pieces of the file long.
Bytes packets(unsigned bits, std::uint8_t descriptor) {
    std::mt19937 random(bits + descriptor);
    Bytes file = tgaHeader(kRunLength, 150, 161, bits, descriptor);
    for (unsigned left = 150 * 161; left;) {
        const bool isRun = random() % 4 == 0;
        const unsigned length = std::min<unsigned>(left, random() % 128 + 1);
        file.push_back(static_cast<std::uint8_t>((isRun ? 128 : 0) + length - 1));
        for (unsigned i = 0; i < (isRun ? 1 : length) * bits / 8; ++i)
            file.push_back(static_cast<std::uint8_t>(random()));
        left -= length;
    }
    return file;
}

TEST_F(TgaFileTest, ReadsWhatTheDecoderGives) {
    for (unsigned bits : {24u, 32u}) {
        for (std::uint8_t descriptor : {std::uint8_t{0}, std::uint8_t{32}}) {
            for (const Bytes &file : {packets(bits, descriptor), uncompressedTga(150, 161, bits, descriptor),
                                      uncompressedTga(7, 1, bits, descriptor)}) {
                const Read whole = decode(file), inPieces = read(file);
                ASSERT_TRUE(whole.isRead);
                EXPECT_TRUE(inPieces.isRead);
                EXPECT_TRUE(inPieces.pixels == whole.pixels) << bits << " " << int{descriptor};
            }
        }
    }
}

TEST_F(TgaFileTest, TellsTheSameOfFilesThatEndEarly) {
    const Bytes whole = packets(32, 0);
    std::size_t refused = 0;
    for (std::size_t size = whole.size() - 1; size > whole.size() - 600; --size) {
        const Bytes file(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const Read decoded = decode(file), inPieces = read(file);
        ASSERT_FALSE(decoded.isRead);
        refused += !inPieces.isRead && inPieces.pixels.empty();
        ASSERT_EQ(inPieces.fault.byte, decoded.fault.byte) << size;
        ASSERT_STREQ(inPieces.fault.field, decoded.fault.field) << size;
    }
    EXPECT_EQ(refused, 599u);
}

TEST_F(TgaFileTest, TakesThePicturesMemoryAndAPieceOfTheFile) {
    const Bytes raw = uncompressedTga(200, 100, 32), packed = packets(32, 0);
    const std::uint32_t before = memoryCounters().totalBytes;
    read(raw);
    EXPECT_EQ(memoryCounters().totalBytes - before, 200u * 100 * 4);
    const std::uint32_t between = memoryCounters().totalBytes;
    read(packed);
    EXPECT_LE(memoryCounters().totalBytes - between, 150u * 161 * 4 + 16384);
}

TEST_F(TgaFileTest, EachFailedAllocationIsRefused) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const Bytes packed = packets(24, 0);
    for (std::size_t size : {std::size_t{150 * 161 * 3}, std::size_t{16384}}) {
        Allocations::failNext(size);
        const Read refused = read(packed);
        EXPECT_FALSE(refused.isRead) << size;
        EXPECT_TRUE(refused.pixels.empty()) << size;
        EXPECT_EQ(refused.fault.code, KT_FAULT_OUT_OF_MEMORY) << size;
    }
    Allocations::clear();
    EXPECT_TRUE(read(packed).isRead);
}

TEST_F(TgaFileTest, TheDecoderTakesPixelsAtAnyAddress) {
    const Bytes file = packets(32, 0), raw = uncompressedTga(31, 5, 32);
    for (std::size_t shift = 0; shift < 4; ++shift) {
        for (const Bytes &bytes : {file, raw}) {
            Bytes shifted(bytes.size() + shift);
            std::copy(bytes.begin(), bytes.end(), shifted.begin() + static_cast<std::ptrdiff_t>(shift));
            TgaImage image = {};
            ASSERT_TRUE(parseTga(shifted.data() + shift, bytes.size(), image));
            Bytes pixels(image.bytes());
            ASSERT_TRUE(decodeTga(image, pixels.data()));
            EXPECT_TRUE(pixels == decode(bytes).pixels) << shift;
        }
    }
    const Bytes numbers = numbered(31 * 5 * 4);
    EXPECT_TRUE(decode(raw).pixels == exchanged(numbers, 4));
}

}  // namespace
}  // namespace keltra::test
