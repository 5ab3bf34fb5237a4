// SPDX-License-Identifier: Zlib
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "tests/resources/video_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Both decoders may round each transform differently, and each picture depends on others.
constexpr int kLargestDifference = 6;
constexpr double kMeanDifference = 1.0;

TEST_F(VideoTest, ANewVideoIsStoppedAndNamedAfterItsId) {
    KTVIDEO video;
    EXPECT_EQ(video.getFilename(), "[video " + std::to_string(video.getId()) + "]");
    EXPECT_EQ(video.getStatus(), 0);
    EXPECT_EQ(video.getTexture(), nullptr);
    ASSERT_NE(video.stream, nullptr);
    EXPECT_EQ(video.stream->file, nullptr);
    EXPECT_EQ(video.stream->decoder, nullptr);
    EXPECT_EQ(video.stream->lastRead, 0);
}

TEST_F(VideoTest, VideosAreListedInTheOrderOfTheirMaking) {
    KTVIDEO one, two;
    EXPECT_EQ(KTVIDEO::getNumberOfVideos(), 2u);
    EXPECT_EQ(KTVIDEO::getFirst(), &one);
    EXPECT_EQ(one.getNext(), &two);
    EXPECT_EQ(two.getPrevious(), &one);
    EXPECT_EQ(KTVIDEO::findById(two.getId()), &two);
    EXPECT_EQ(KTVIDEO::findById(0), nullptr);
    EXPECT_EQ(KTVIDEO::findByFilename(one.getFilename()), &one);
    EXPECT_EQ(KTVIDEO::findByFilename(nullptr), nullptr);
    EXPECT_EQ(KTVIDEO::findByFilename("[VIDEO]"), nullptr);
}

TEST_F(VideoTest, CleanUpDestroysEveryVideo) {
    EXPECT_FALSE(KTVIDEO::cleanUp());
    new KTVIDEO;
    KTVIDEO onTheStack;
    EXPECT_TRUE(KTVIDEO::cleanUp());
    EXPECT_EQ(KTVIDEO::getNumberOfVideos(), 0u);
    EXPECT_FALSE(onTheStack.load("film.m1v"));
    EXPECT_FALSE(onTheStack.update(1));
}

TEST_F(VideoTest, FreeingTheEngineDestroysVideos) {
    new KTVIDEO;
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTVIDEO::getNumberOfVideos(), 0u);
}

TEST_F(VideoTest, LoadTakesTheNameAndStandsBeforeTheFirstRead) {
    KTVIDEO *video = loaded(film("wide.m1v"));
    EXPECT_STREQ(video->getFilename(), "film.m1v");
    EXPECT_EQ(KTVIDEO::findByFilename("film.m1v"), video);
    EXPECT_EQ(video->getStatus(), 0);
    EXPECT_EQ(video->stream->lastRead, -1);
    EXPECT_NE(video->stream->file, nullptr);
    EXPECT_NE(video->stream->decoder, nullptr);
    EXPECT_NE(video->stream->info, nullptr);
}

TEST_F(VideoTest, LoadOfNoFileClosesTheFilm) {
    const std::string longName(256, 'x');
    for (const char *name : {static_cast<const char *>(nullptr), "missing.m1v", longName.c_str()}) {
        KTVIDEO *video = loaded(film("wide.m1v"));
        video->play();
        EXPECT_FALSE(video->load(name));
        EXPECT_EQ(video->getStatus(), 0);
        EXPECT_EQ(video->stream->file, nullptr);
        EXPECT_EQ(video->stream->decoder, nullptr);
        EXPECT_STREQ(video->getFilename(), "film.m1v");
        video->play();
        EXPECT_FALSE(video->update(1));
    }
}

TEST_F(VideoTest, AStoppedVideoDoesNotUpdate) {
    KTVIDEO *video = loaded(film("wide.m1v"));
    EXPECT_FALSE(video->update(5));
    EXPECT_FALSE(video->update(0));
    EXPECT_EQ(video->stream->lastRead, -1);
    video->play();
    EXPECT_TRUE(video->update(0));
    EXPECT_EQ(video->stream->lastRead, -1);
    video->stop();
    EXPECT_FALSE(video->update(5));
}

// State numbers are those of the decoder: a buffer, a sequence, a group, a picture, its slices.
TEST_F(VideoTest, UpdateMakesTheStepsItWasAskedFor) {
    KTVIDEO *single = loaded(film("wide.m1v"));
    single->play();
    std::vector<int> states;
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(single->update(1));
        states.push_back(single->stream->state);
    }
    EXPECT_THAT(states, ElementsAre(0, 1, 3, 4, 7));
    EXPECT_EQ(single->stream->lastRead, 4096);

    KTVIDEO *atOnce = loaded(film("wide.m1v"));
    atOnce->play();
    ASSERT_TRUE(atOnce->update(5));
    EXPECT_EQ(atOnce->stream->state, 7);
}

TEST_F(VideoTest, AFinishedPictureIsBoundAndWritten) {
    KTTEXTURE *texture = target(64, 64);
    KTVIDEO *video = loaded(film("wide.m1v"), texture);
    video->play();
    GlRecorder::clear();
    while (uploads() == 0) ASSERT_TRUE(video->update(1));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glBindTexture", "glTexSubImage2D"));
    EXPECT_EQ(GlRecorder::count("glBindTexture", {GL_TEXTURE_2D, texture->getGLId()}), 1);
    EXPECT_EQ(
        GlRecorder::count("glTexSubImage2D", {GL_TEXTURE_2D, 0, 0, 0, 64, 48, GL_RGB, GL_UNSIGNED_BYTE}), 1);
    expectNoGlError();
}

TEST_F(VideoTest, TheTextureCacheIsNotToldOfTheBinding) {
    KTTEXTURE *texture = target(64, 48);
    KTTEXTURE *other = target(8, 8);
    KTVIDEO *video = loaded(film("wide.m1v"), texture);
    ASSERT_TRUE(other->render(nullptr));
    video->play();
    GlRecorder::clear();
    while (uploads() == 0) ASSERT_TRUE(video->update(1));
    EXPECT_EQ(KTTEXTURE::channelCache[0], other);
    GlRecorder::clear();
    ASSERT_TRUE(other->render(nullptr));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(VideoTest, WithoutATextureDecodingGoesOn) {
    KTVIDEO *video = loaded(film("wide.m1v"));
    GlRecorder::clear();
    EXPECT_GT(playOut(*video), 100);
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

// Pictures arrive in another order than they are shown, so each comes a picture late. At the end of the file
// the last but one is still waiting and the last one not complete; an end code gives both.
TEST_F(VideoTest, EveryPictureOfAFilmIsWritten) {
    const Bytes endCode = {0, 0, 1, 0xb7};
    KTVIDEO *video = loaded(joined(film("wide.m1v"), endCode), target(64, 48));
    GlRecorder::clear();
    playOut(*video);
    EXPECT_EQ(uploads(), 50);
    video = loaded(film("wide.m1v"), target(64, 48));
    GlRecorder::clear();
    playOut(*video);
    EXPECT_EQ(uploads(), 48);
}

TEST_F(VideoTest, PicturesMatchTheReferenceDecoder) {
    const Bytes reference = film("wide.rgb");
    const std::size_t size = 64 * 48 * 3;
    ASSERT_EQ(reference.size(), 50 * size);
    KTVIDEO *video = loaded(joined(film("wide.m1v"), {0, 0, 1, 0xb7}), target(64, 48));
    GlRecorder::clear();
    playOut(*video);
    const std::vector<Call> calls = GlRecorder::all("glTexSubImage2D");
    ASSERT_EQ(calls.size(), 50u);
    for (std::size_t i = 0; i < calls.size(); ++i) {
        ASSERT_EQ(calls[i].bytes.size(), size);
        int largest = 0;
        long sum = 0;
        for (std::size_t k = 0; k < size; ++k) {
            const int difference = std::abs(calls[i].bytes[k] - reference[i * size + k]);
            largest = std::max(largest, difference);
            sum += difference;
        }
        EXPECT_LE(largest, kLargestDifference) << "picture " << i;
        EXPECT_LE(static_cast<double>(sum) / size, kMeanDifference) << "picture " << i;
    }
}

TEST_F(VideoTest, APlayedFilmStopsAtItsBeginning) {
    KTVIDEO *video = loaded(film("small.m1v"), target(32, 32));
    GlRecorder::clear();
    const int steps = playOut(*video);
    const int pictures = uploads();
    EXPECT_EQ(video->getStatus(), 0);
    EXPECT_EQ(video->stream->lastRead, -1);
    EXPECT_FALSE(video->update(1));
    EXPECT_EQ(playOut(*video), steps);
    EXPECT_EQ(uploads(), 2 * pictures);
}

TEST_F(VideoTest, ALoopingFilmGoesOn) {
    KTVIDEO *video = loaded(film("small.m1v"), target(32, 32));
    const int steps = playOut(*video);
    GlRecorder::clear();
    video->playLoop();
    ASSERT_TRUE(video->update(static_cast<unsigned>(3 * steps)));
    EXPECT_EQ(video->getStatus(), 2);
    EXPECT_EQ(video->stream->lastRead, -1);
    EXPECT_EQ(uploads(), 3 * 23);
}

TEST_F(VideoTest, RewindActsAtTheEndOnly) {
    KTVIDEO *video = loaded(film("wide.m1v"), target(64, 48));
    const int steps = playOut(*video);
    video->play();
    ASSERT_TRUE(video->update(20));
    const long place = std::ftell(video->stream->file);
    video->rewind();
    EXPECT_EQ(std::ftell(video->stream->file), place);
    ASSERT_TRUE(video->update(static_cast<unsigned>(steps) - 21));
    EXPECT_EQ(video->getStatus(), 3);
    ASSERT_TRUE(video->update(1));
    EXPECT_EQ(video->getStatus(), 0);
    EXPECT_EQ(video->stream->lastRead, -1);
}

TEST_F(VideoTest, StepsLeftAtTheEndAreMadeFromTheBeginning) {
    KTVIDEO *video = loaded(firstBytes(1));
    video->play();
    EXPECT_TRUE(video->update(3));
    EXPECT_EQ(video->getStatus(), 0);
    EXPECT_EQ(video->stream->lastRead, 1);
}

TEST_F(VideoTest, ReadsAreOf4096Bytes) {
    struct {
        std::size_t size;
        std::vector<int> reads;
    } const table[] = {{1, {1, 0}}, {4095, {4095, 0}}, {4096, {4096, 0}}, {4097, {4096, 1, 0}}};
    for (const auto &row : table) {
        for (const bool loop : {false, true}) {
            KTVIDEO *video = loaded(firstBytes(row.size));
            if (loop)
                video->playLoop();
            else
                video->play();
            std::vector<int> reads;
            for (int steps = 0; steps < 1000 && (reads.empty() || reads.back() != 0); ++steps) {
                ASSERT_TRUE(video->update(1));
                const int read = video->stream->lastRead;
                if (read == -1)
                    reads.push_back(0);  // the end was reached and the film opened anew
                else if (video->stream->state == 0)
                    reads.push_back(read);
            }
            EXPECT_EQ(reads, row.reads) << row.size << " bytes";
            EXPECT_EQ(video->getStatus(), loop ? 2 : 0);
        }
    }
}

#ifndef _WIN32  // where a file that is open cannot be removed
TEST_F(VideoTest, AFilmThatIsGoneAtItsEndClosesTheVideo) {
    KTVIDEO *video = loaded(firstBytes(1));
    video->playLoop();
    ASSERT_TRUE(video->update(1));
    std::filesystem::remove(folder.path("film.m1v"));
    EXPECT_FALSE(video->update(10));
    EXPECT_EQ(video->stream->file, nullptr);
    EXPECT_EQ(video->stream->lastRead, 0);
    EXPECT_FALSE(video->update(10));
    // Rewinding it tries again.
    video->rewind();
    EXPECT_FALSE(video->update(1));
    folder.write("film.m1v", firstBytes(1));
    video->rewind();
    EXPECT_TRUE(video->update(1));
    EXPECT_EQ(video->getStatus(), 0);
    EXPECT_EQ(video->stream->lastRead, -1);
}
#endif

TEST_F(VideoTest, UsesOfTheTextureAreCounted) {
    KTTEXTURE *one = target(64, 48), *two = target(64, 48);
    {
        KTVIDEO video;
        video.setTexture(one);
        video.setTexture(one);
        EXPECT_EQ(one->getReferences(), 1);
        EXPECT_EQ(video.getTexture(), one);
        {
            KTVIDEO copy = video;
            EXPECT_EQ(copy.getTexture(), one);
            EXPECT_EQ(one->getReferences(), 1);
        }
        EXPECT_EQ(one->getReferences(), 1);
        video.setTexture(two);
        EXPECT_EQ(one->getReferences(), 0);
        EXPECT_EQ(two->getReferences(), 1);
    }
    EXPECT_EQ(two->getReferences(), 0);
}

TEST_F(VideoTest, GarbageCollectionLeavesTheTargetAlone) {
    KTTEXTURE *texture = target(64, 48);
    KTVIDEO *video = loaded(film("wide.m1v"), texture);
    KTTEXTURE::garbageCollect(1u << 30);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
    EXPECT_EQ(video->getTexture(), texture);
}

TEST_F(VideoTest, ADestroyedTextureIsForgotten) {
    KTTEXTURE *texture = target(64, 48);
    KTVIDEO *video = loaded(film("wide.m1v"), texture);
    KTVIDEO copy = *video;
    delete texture;
    EXPECT_EQ(video->getTexture(), nullptr);
    EXPECT_EQ(copy.getTexture(), nullptr);
    GlRecorder::clear();
    playOut(*video);
    EXPECT_EQ(uploads(), 0);
}

TEST_F(VideoTest, ACopySharesTheFilm) {
    KTVIDEO *video = loaded(film("wide.m1v"));
    KTVIDEO copy = *video;
    KTVIDEO assigned;
    assigned = *video;
    EXPECT_EQ(KTVIDEO::getNumberOfVideos(), 2u);
    EXPECT_EQ(copy.getId(), video->getId());
    EXPECT_EQ(copy.stream, video->stream);
    EXPECT_EQ(assigned.stream, video->stream);
    EXPECT_FALSE(copy.isRegistered());
    delete video;
    copy.play();
    EXPECT_TRUE(copy.update(5));
    EXPECT_EQ(copy.stream->state, 7);
    copy.load(nullptr);
    assigned.play();
    EXPECT_FALSE(assigned.update(1));
}

TEST_F(VideoTest, DestroyingAVideoLeavesItsFilmOpen) {
    KTVIDEO *video = loaded(film("wide.m1v"));
    KTVIDEOSTREAM kept = *video->stream;
    delete video;
    EXPECT_EQ(std::fseek(kept.file, 0, SEEK_SET), 0);
    EXPECT_EQ(std::fgetc(kept.file), 0);
    // The test must close it.
    KTVIDEO heir;
    heir.stream->file = kept.file;
    heir.stream->decoder = kept.decoder;
    EXPECT_FALSE(heir.load(nullptr));
}

TEST_F(VideoTest, DecodingAllocatesNothing) {
    KTVIDEO *video = loaded(film("wide.m1v"));
    video->playLoop();
    ASSERT_TRUE(video->update(10));
    Allocations::startCounting();
    video->update(90);
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

TEST_F(VideoTest, ThePathIsAPrefix) {
    KTVIDEO::setMPGPath("films/");
    EXPECT_STREQ(KTVIDEO::getMPGPath(), "films/");
    KTVIDEO::setMPGPath(nullptr);
    EXPECT_STREQ(KTVIDEO::getMPGPath(), "");
    const std::string longPath(1000, 'x');
    KTVIDEO::setMPGPath(longPath.c_str());
    EXPECT_EQ(std::string(KTVIDEO::getMPGPath()), std::string(255, 'x'));
    KTVIDEO video;
    EXPECT_FALSE(video.load("film.m1v"));
}

}  // namespace
}  // namespace keltra::test
