// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_VIDEO_FIXTURE_H
#define KELTRA_TESTS_VIDEO_FIXTURE_H

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {

using Bytes = std::vector<std::uint8_t>;

/// The engine and a folder of films. The films that ffmpeg made are 64 x 48 pixels (wide.m1v, 50 pictures)
/// and 32 x 32 (small.m1v, 25 pictures).
class VideoTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        KTVIDEO::setMPGPath(folder.prefix().c_str());
    }
    void TearDown() override {
        for (KTVIDEO *video = KTVIDEO::getFirst(); video; video = video->getNext()) video->load(nullptr);
        EngineTest::TearDown();
        KTVIDEO::setMPGPath(nullptr);
    }

    static Bytes film(const char *name) { return readFile(std::string(KELTRA_TEST_FILMS "/") + name); }
    static Bytes firstBytes(std::size_t size) {
        Bytes bytes = film("wide.m1v");
        bytes.resize(size);
        return bytes;
    }
    static Bytes joined(Bytes one, const Bytes &other) {
        one.insert(one.end(), other.begin(), other.end());
        return one;
    }

    /// An RGB texture without mipmaps.
    static KTTEXTURE *target(unsigned sizeX, unsigned sizeY, unsigned bpp = 3) {
        KTTEXTURE *texture = new KTTEXTURE;
        texture->setFilter(false, false, true);
        EXPECT_TRUE(texture->create(sizeX, sizeY, bpp));
        return texture;
    }
    /// A video with the film `bytes` loaded.
    KTVIDEO *loaded(const Bytes &bytes, KTTEXTURE *texture = nullptr) {
        folder.write("film.m1v", bytes);
        KTVIDEO *video = new KTVIDEO;
        video->setTexture(texture);
        EXPECT_TRUE(video->load("film.m1v"));
        return video;
    }
    /// Plays to the end of the film, at most `most` steps; the number of steps it took.
    static int playOut(KTVIDEO &video, int most = 100000) {
        video.play();
        int steps = 0;
        while (video.getStatus() == KT_VIDEO_PLAYING && steps < most) {
            EXPECT_TRUE(video.update(1));
            ++steps;
        }
        EXPECT_LT(steps, most) << "the film does not end";
        return steps;
    }
    static int uploads() { return GlRecorder::count("glTexSubImage2D"); }

    TempFolder folder;
};

}  // namespace keltra::test

#endif
