// SPDX-License-Identifier: Zlib
#include "tests/resources/video_fixture.h"

#include <algorithm>
#include <random>

#include "tests/support/allocations.h"
#include "tests/support/emulated.h"
#include "tests/support/same_verdict.h"

namespace keltra::test {
namespace {

using ::testing::IsEmpty;

/// Films that are damaged, or do not suit their texture.
class VideoDamageTest : public VideoTest {
   protected:
    void TearDown() override {
        Allocations::clear();
        VideoTest::TearDown();
    }

    /// Plays `bytes` once to the end. Whatever is in them, it ends, and the GL has no error.
    void survive(const Bytes &bytes) {
        folder.write("damaged.m1v", bytes);
        ASSERT_TRUE(video.load("damaged.m1v"));
        playOut(video);
        expectNoGlError();
        expectSameVerdict("video", bytes, showsPicture());
        GlRecorder::clear();
    }

    /// Whether the film "damaged.m1v" shows anything to a texture that takes every picture.
    bool showsPicture() {
        video.load("damaged.m1v");
        KTTEXTURE *small = video.getTexture();
        small->incReferences();
        video.setTexture(large);
        GlRecorder::clear();
        video.play();
        while (video.getStatus() == KT_VIDEO_PLAYING && uploads() == 0) video.update(1);
        const bool shows = uploads() != 0;
        video.setTexture(small);
        small->decReferences();
        return shows;
    }

    void SetUp() override {
        VideoTest::SetUp();
        video.setTexture(target(64, 48));
        large = target(512, 512);
        large->incReferences();
    }

    /// A film whose first sequence header has another size.
    static Bytes withSize(unsigned width, unsigned height) {
        Bytes bytes = film("wide.m1v");
        bytes[4] = static_cast<std::uint8_t>(width >> 4);
        bytes[5] = static_cast<std::uint8_t>(width << 4 | height >> 8);
        bytes[6] = static_cast<std::uint8_t>(height);
        return bytes;
    }

    KTVIDEO video;
    KTTEXTURE *large = nullptr;
};

TEST_F(VideoDamageTest, APictureLargerThanTheTextureIsNotWritten) {
    for (const auto &[sizeX, sizeY] : {std::pair<unsigned, unsigned>{63, 48}, {64, 47}, {32, 32}, {1, 1}}) {
        KTVIDEO *film64 = loaded(film("wide.m1v"), target(sizeX, sizeY));
        GlRecorder::clear();
        playOut(*film64);
        EXPECT_THAT(GlRecorder::names(), IsEmpty()) << sizeX << " x " << sizeY;
        expectNoGlError();
    }
}

TEST_F(VideoDamageTest, ATextureThatIsNotRgbOrNotResidentIsNotWritten) {
    KTTEXTURE *unloaded = target(64, 48);
    unloaded->unload(false);
    for (KTTEXTURE *texture : {target(64, 48, 4), target(64, 48, 5), unloaded, new KTTEXTURE}) {
        KTVIDEO *film64 = loaded(film("wide.m1v"), texture);
        GlRecorder::clear();
        playOut(*film64);
        EXPECT_THAT(GlRecorder::names(), IsEmpty());
        expectNoGlError();
    }
}

// The fields of a texture are public; only the image that the GL holds matters.
TEST_F(VideoDamageTest, ATextureThatClaimsToBeLargerIsNotWritten) {
    KTTEXTURE *texture = target(16, 16);
    texture->sizeX = texture->sizeY = 512;
    KTVIDEO *film64 = loaded(film("wide.m1v"), texture);
    GlRecorder::clear();
    playOut(*film64);
    EXPECT_EQ(uploads(), 0);
    expectNoGlError();
}

TEST_F(VideoDamageTest, TheSizeMayChangeMidway) {
    const Bytes wide = film("wide.m1v"), small = film("small.m1v"), endCode = {0, 0, 1, 0xb7};
    for (const Bytes &between : {Bytes(), endCode}) {
        KTVIDEO *mixed = loaded(joined(joined(joined(wide, between), small), wide), target(64, 64));
        GlRecorder::clear();
        playOut(*mixed);
        const int wideUploads = GlRecorder::count("glTexSubImage2D", {GL_TEXTURE_2D, 0, 0, 0, 64, 48});
        const int smallUploads = GlRecorder::count("glTexSubImage2D", {GL_TEXTURE_2D, 0, 0, 0, 32, 32});
        EXPECT_EQ(wideUploads, 50 + 48);
        EXPECT_EQ(smallUploads, 25);
        EXPECT_EQ(wideUploads + smallUploads, uploads());
    }
}

TEST_F(VideoDamageTest, PicturesBeyondTheLargestTextureAreNotDecoded) {
    const Bytes small = film("small.m1v");
    for (const auto &[width, height] : {std::pair<unsigned, unsigned>{4095, 4095}, {513, 16}, {16, 513}}) {
        KTVIDEO *mixed = loaded(joined(withSize(width, height), small), target(512, 512));
        GlRecorder::clear();
        playOut(*mixed);
        // The headers that are repeated in the film have its true size.
        for (const Call &call : GlRecorder::all("glTexSubImage2D")) {
            EXPECT_LE(call.arguments[4], 64);
            EXPECT_LE(call.arguments[5], 48);
        }
        EXPECT_EQ(GlRecorder::count("glTexSubImage2D", {GL_TEXTURE_2D, 0, 0, 0, 32, 32}), 23);
    }
}

TEST_F(VideoDamageTest, ALargeHeaderTakesNoMemory) {
    Bytes header = withSize(4095, 4095);
    header.resize(64);
    KTVIDEO *film4095 = loaded(header, target(64, 48));
    film4095->play();
    ASSERT_TRUE(film4095->update(1));
    Allocations::startCounting();
    EXPECT_TRUE(film4095->update(1));
    EXPECT_EQ(Allocations::stopCounting(), 0);
    EXPECT_EQ(film4095->stream->state, 1);
}

TEST_F(VideoDamageTest, AFilmWithoutMemoryForItsPicturesShowsNothing) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    Bytes once = film("wide.m1v");
    once.resize(4096);
    KTVIDEO *film64 = loaded(once, target(64, 48));
    GlRecorder::clear();
    const std::size_t room = 64 * (48 + 32) * 3 * 5 + 65536;
    Allocations::failNext(room);
    playOut(*film64);
    EXPECT_EQ(uploads(), 0);
    // The next attempt has the memory.
    playOut(*film64);
    EXPECT_GT(uploads(), 0);
}

// Each allocation of a film fails once: the decoder itself would write to null.
TEST_F(VideoDamageTest, AFilmThatRunsOutOfMemoryIsClosed) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    const Bytes bytes = joined(firstBytes(8192), film("small.m1v"));
    KTVIDEO *mixed = loaded(bytes);
    mixed->load(nullptr);
    int closed = 0;
    for (long nth = 1; nth < 1000; ++nth) {
        KTFAULTS::clear();
        Allocations::failNth(nth);
        const bool opened = mixed->load("film.m1v");
        mixed->play();
        bool decoding = opened;
        while (decoding && mixed->getStatus() == KT_VIDEO_PLAYING) decoding = mixed->update(1);
        const bool failed = Allocations::hasFailed();
        if (opened && !decoding) {
            ++closed;
            EXPECT_EQ(mixed->getStatus(), KT_VIDEO_STOPPED);
            EXPECT_EQ(mixed->stream->file, nullptr);
            ASSERT_NE(KTFAULTS::getLast(), nullptr) << nth;
            EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_OUT_OF_MEMORY);
        }
        mixed->load(nullptr);
        EXPECT_EQ(Allocations::live(), 0) << nth;
        Allocations::clear();
        if (!failed) break;
    }
    EXPECT_GT(closed, 10);
    mixed->setTexture(target(64, 48));
    ASSERT_TRUE(mixed->load("film.m1v"));
    GlRecorder::clear();
    playOut(*mixed);
    EXPECT_GT(uploads(), 0) << "the next attempt has the memory";
}

TEST_F(VideoDamageTest, AVideoWithoutMemoryForItsStreamLoadsNothing) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    folder.write("film.m1v", film("wide.m1v"));
    Allocations::failNext(sizeof(KTVIDEOSTREAM));
    KTVIDEO empty;
    EXPECT_EQ(empty.stream, nullptr);
    EXPECT_FALSE(empty.load("film.m1v"));
    EXPECT_FALSE(empty.load(nullptr));
    empty.playLoop();
    EXPECT_FALSE(empty.update(1));
    KTVIDEO copy = empty;
    EXPECT_FALSE(copy.update(1));
}

TEST_F(VideoDamageTest, TheLargestPictureIsDecoded) {
    KTVIDEO *film512 = loaded(withSize(512, 512), target(512, 512));
    film512->play();
    GlRecorder::clear();
    while (uploads() == 0 && film512->getStatus()) ASSERT_TRUE(film512->update(1));
    EXPECT_EQ(GlRecorder::count("glTexSubImage2D", {GL_TEXTURE_2D, 0, 0, 0, 512, 512}), 1);
    expectNoGlError();
}

// A sequence without a picture, behind one of another size: the decoder would hand out what it has freed.
TEST_F(VideoDamageTest, AnEmptySequenceShowsNothing) {
    const Bytes wide = film("wide.m1v"), small = film("small.m1v");
    const Bytes header(wide.begin(), wide.begin() + 20);
    survive(joined(joined(small, header), small));
    survive(joined(joined(joined(small, header), {0, 0, 1, 0xb7}), small));
}

TEST_F(VideoDamageTest, TruncatedFilmsEnd) {
    const Bytes whole = film("wide.m1v");
    const std::size_t positions = 500 / sampled(20);
    for (std::size_t i = 0; i < positions; ++i)
        survive(
            Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size() * i / positions)));
}

TEST_F(VideoDamageTest, RandomBytesSplicedInDoNoHarm) {
    const Bytes whole = film("wide.m1v"), other = film("small.m1v");
    std::mt19937 random(19);
    for (int round = 0; round < 200 / sampled(20); ++round) {
        Bytes bytes = whole;
        for (unsigned splices = 1 + random() % 20; splices; --splices) {
            const auto at = bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size());
            Bytes spliced(random() % 100);
            for (std::uint8_t &byte : spliced) byte = static_cast<std::uint8_t>(random());
            if (round % 2) {
                const std::size_t from = random() % other.size();
                const std::size_t length = std::min<std::size_t>(other.size() - from, random() % 1000);
                spliced.assign(other.begin() + static_cast<std::ptrdiff_t>(from),
                               other.begin() + static_cast<std::ptrdiff_t>(from + length));
            }
            bytes.insert(at, spliced.begin(), spliced.end());
        }
        survive(bytes);
    }
}

TEST_F(VideoDamageTest, SingleBitsMayBeWrong) {
    const Bytes whole = film("wide.m1v");
    std::mt19937 random(5);
    for (int round = 0; round < 200 / sampled(20); ++round) {
        Bytes bytes = whole;
        for (unsigned flips = 1 + random() % 30; flips; --flips)
            bytes[random() % bytes.size()] ^= static_cast<std::uint8_t>(1u << random() % 8);
        survive(bytes);
    }
}

TEST_F(VideoDamageTest, OtherFilesAreNoFilms) {
    survive({});
    survive(Bytes(10000, 0));
    survive(Bytes(10000, 0xff));
    survive(Bytes{0, 0, 1, 0xb3});
    Bytes startCodes;
    for (int i = 0; i < 5000; ++i) {
        const std::uint8_t code[] = {0, 0, 1, static_cast<std::uint8_t>(i * 7)};
        startCodes.insert(startCodes.end(), code, code + 4);
    }
    survive(startCodes);
    // A folder opens like a file and has no bytes.
    KTVIDEO::setMPGPath(nullptr);
    if (video.load("/tmp")) playOut(video);
}

// Damaged parts show the picture before, not uninitialised memory: the same each time.
TEST_F(VideoDamageTest, WhatDamageShowsIsDefined) {
    Bytes bytes = film("wide.m1v");
    const Bytes header(bytes.begin(), bytes.begin() + 20);
    // Without its first key picture the film begins with pictures that refer to it.
    std::size_t second = 0;
    int pictures = 0;
    for (std::size_t i = 0; i + 4 < bytes.size() && !second; ++i)
        if (!bytes[i] && !bytes[i + 1] && bytes[i + 2] == 1 && !bytes[i + 3] && ++pictures == 2) second = i;
    ASSERT_NE(second, 0u);
    bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(second));
    bytes.insert(bytes.begin(), header.begin(), header.end());
    std::vector<Bytes> first;
    for (int round = 0; round < 3; ++round) {
        KTVIDEO *damaged = loaded(bytes, target(64, 48));
        GlRecorder::clear();
        playOut(*damaged);
        std::vector<Bytes> shown;
        for (const Call &call : GlRecorder::all("glTexSubImage2D")) shown.push_back(call.bytes);
        ASSERT_FALSE(shown.empty());
        std::size_t grey = 0;  // the picture that is missing, where the first one repeats it
        for (std::size_t i = 0; i < shown[0].size(); i += 3)
            grey +=
                std::all_of(&shown[0][i], &shown[0][i] + 3, [](std::uint8_t value) { return value == 130; });
        EXPECT_GT(grey, shown[0].size() / 3 / 8);
        if (round == 0) first = shown;
        EXPECT_EQ(shown, first);
        damaged->load(nullptr);
        std::vector<Bytes> litter(64, Bytes(64 * 48 * 3, static_cast<std::uint8_t>(40 * round + 7)));
    }
}

}  // namespace
}  // namespace keltra::test
