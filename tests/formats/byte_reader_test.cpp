// SPDX-License-Identifier: Zlib
#include "formats/byte_reader.h"

#include <gtest/gtest.h>

#include <memory>

namespace keltra::test {
namespace {

constexpr unsigned char kRecord[] = {0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc, 0xde, 0x00,
                                     0x00, 0x80, 0xbf, 'h',  'i',  0,    7};

TEST(ByteReaderTest, ReadsLittleEndianAtAnyAlignment) {
    ByteReader reader(kRecord, sizeof kRecord);
    EXPECT_EQ(reader.u8(), 0x12);
    EXPECT_EQ(reader.u16(), 0x5634);
    EXPECT_EQ(reader.u32(), 0xdebc9a78u);
    EXPECT_EQ(reader.f32(), -1.0f);
    EXPECT_STREQ(reader.string(3), "hi");
    EXPECT_EQ(reader.position(), 14u);
    EXPECT_EQ(reader.remaining(), 1u);
    EXPECT_EQ(*reader.take(1), 7);
    EXPECT_TRUE(reader.ok());
    EXPECT_EQ(reader.remaining(), 0u);
}

TEST(ByteReaderTest, EveryTruncationTurnsItBad) {
    for (std::size_t size = 0; size < sizeof kRecord; ++size) {
        std::unique_ptr<unsigned char[]> exact(
            new unsigned char[size]);  // the address sanitizer watches its end
        std::memcpy(exact.get(), kRecord, size);
        ByteReader reader(exact.get(), size);
        reader.u8();
        reader.u16();
        reader.u32();
        reader.f32();
        reader.string(3);
        reader.take(1);
        EXPECT_FALSE(reader.ok()) << size;
        EXPECT_LE(reader.position(), size);
    }
}

TEST(ByteReaderTest, BadForGood) {
    ByteReader reader(kRecord, 3);
    EXPECT_EQ(reader.u32(), 0u);
    EXPECT_FALSE(reader.ok());
    EXPECT_EQ(reader.remaining(), 0u);
    EXPECT_EQ(reader.u8(), 0) << "although there are bytes";
    EXPECT_EQ(reader.u16(), 0);
    EXPECT_EQ(reader.f32(), 0.0f);
    EXPECT_EQ(reader.take(0), nullptr);
    EXPECT_EQ(reader.string(10), nullptr);
    EXPECT_FALSE(reader.skip(0));
    EXPECT_EQ(reader.position(), 0u);
}

TEST(ByteReaderTest, TakesInPlaceAndSkips) {
    ByteReader reader(kRecord, sizeof kRecord);
    EXPECT_EQ(reader.take(4), kRecord);
    EXPECT_TRUE(reader.skip(3));
    EXPECT_EQ(reader.take(0), kRecord + 7);
    EXPECT_EQ(reader.position(), 7u);
    EXPECT_EQ(reader.take(SIZE_MAX), nullptr);
    EXPECT_FALSE(reader.ok());
}

TEST(ByteReaderTest, StringsAreBounded) {
    const char text[] = {'a', 'b', 'c', 0, 'd'};
    ByteReader fits(text, 5);
    EXPECT_STREQ(fits.string(4), "abc");
    EXPECT_EQ(fits.position(), 4u);
    EXPECT_EQ(fits.string(10), nullptr) << "no zero before the end";
    EXPECT_FALSE(fits.ok());

    ByteReader tooLong(text, 5);
    EXPECT_EQ(tooLong.string(3), nullptr);
    EXPECT_FALSE(tooLong.ok());

    ByteReader noRoom(text, 5);
    EXPECT_EQ(noRoom.string(0), nullptr);
    EXPECT_FALSE(noRoom.ok());
}

TEST(ByteReaderTest, NullIsEmpty) {
    ByteReader reader(nullptr, 100);
    EXPECT_EQ(reader.remaining(), 0u);
    EXPECT_NE(reader.take(0), nullptr);
    EXPECT_TRUE(reader.ok());
    EXPECT_EQ(reader.u8(), 0);
    EXPECT_FALSE(reader.ok());
}

}  // namespace
}  // namespace keltra::test
