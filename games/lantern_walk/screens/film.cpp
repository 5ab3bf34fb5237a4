// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/screens/film.h"

namespace lantern_walk {
namespace {

constexpr unsigned kSide = 128;       // pixels of the film, in both directions
constexpr unsigned kMostSteps = 200;  // of the decoder, for one picture
constexpr int kPictureBegins = 4;

}  // namespace

bool Film::start(const std::string &folder) {
    if (!vnfFileExists((folder + "intro.m1v").c_str())) return false;
    KTVIDEO::setMPGPath(folder.c_str());
    video = new KTVIDEO;
    if (!video->load("intro.m1v") || !page.load(folder + "film.xml", {})) return stop(), false;
    KTBOX *screen = page.getBox("screen");
    picture = new KTTEXTURE;
    picture->setFilter(true, false, true);
    if (!screen || !picture->create(kSide, kSide, 3)) return stop(), false;
    screen->setTexture(picture);
    screen->setBoxCoords(KTBOXCOORD(1.0f, 1.0f, true));  // films begin with their upper row
    video->setTexture(picture);
    video->play();
    return true;
}

bool Film::update(float seconds) {
    for (unsigned due = pictures.advance(seconds); due > 0; --due) {
        if (!showNext()) return false;
    }
    return true;
}

// Decodes on until the next picture has begun: a step is less than a picture.
bool Film::showNext() {
    for (unsigned step = 0; step < kMostSteps; ++step) {
        if (!video->update(1) || video->getStatus() == KT_VIDEO_STOPPED) return false;
        if (video->stream->state == kPictureBegins) return true;
    }
    return false;
}

void Film::stop() {
    if (!video) return;
    video->load(nullptr);
    delete video;
    video = nullptr;
    delete picture;
    picture = nullptr;
}

}  // namespace lantern_walk
