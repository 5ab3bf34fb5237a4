// SPDX-License-Identifier: Zlib
// A film on a television in a room: a texture, which the video writes into, on a material that nothing
// lights. A lamp before the screen has the film's colour, so the room shines with it. A button stops the
// film. Next: the same things one by one, beginning with a triangle (08_triangle).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

constexpr unsigned int kSide = 128;       // pixels of the film, in both directions
constexpr unsigned int kMostSteps = 200;  // of the decoder, for one picture
constexpr unsigned int kRate = 25, kPictures = 150;

// The mean colour of each half of a second, as ffmpeg tells it:
// ffmpeg -i film.m1v -vf "fps=2:round=down,scale=1:1:flags=area,format=rgb24" -f rawvideo - | od -An -tu1 -w3
constexpr int kTones = 12;
constexpr float kTone[kTones][3] = {{117, 146, 166}, {142, 134, 143}, {133, 101, 108}, {96, 67, 80},
                                    {45, 38, 58},    {21, 27, 51},    {37, 34, 55},    {79, 56, 72},
                                    {127, 94, 102},  {141, 125, 133}, {123, 143, 160}, {104, 149, 173}};

struct Show {
    KTNODE *scene = nullptr, *interface = nullptr;
    KTBUTTON *stop = nullptr;
    KTLIGHT *shine = nullptr;
    KTVIDEO *video = nullptr;
    unsigned int picture = 0;
    KTPACE pictures{kRate};  // a slow device shows the film slower, and does not fall behind more and more
};

bool load(Show *show) {
    show->scene = KELTRA::load("parlour.kte");
    show->interface = KELTRA::load("film.xml");
    KTNODE *stop = show->interface ? show->interface->findByNameInHierarchy("stop") : nullptr;
    KTMATERIAL *screen = KTMATERIAL::findByName("parlour.screen");
    if (!screen || !stop || stop->getType() != KT_BUTTON) return false;
    show->stop = static_cast<KTBUTTON *>(stop);
    example::smoothTextures();
    KTOPENGL::setGlobalAmbientLight(0.20f, 0.17f, 0.26f, 1.0f);
    example::addLight(show->scene, 1.5f, 0.9f, 0.45f, 3.2f)->setPosition(2.75f, 5.0f, 1.6f);  // the lamp
    show->shine = example::addLight(show->scene, 0.0f, 0.0f, 0.0f, 3.0f);
    show->shine->setPosition(-0.3f, 3.2f, 4.2f);

    // The texture is made before the film plays: RGB, as large as the picture, and without mipmaps, which a
    // video does not write. It is handed to whatever shows it.
    KTTEXTURE *picture = new KTTEXTURE;
    picture->setFilter(true, false, true);
    if (!picture->create(kSide, kSide, 3)) return false;
    screen->setTexture(0, picture);
    show->video = new KTVIDEO;
    show->video->setTexture(picture);
    if (!show->video->load("film.m1v")) return false;
    show->video->playLoop();
    return true;
}

// Decodes on until the next picture of the film has begun: a step is less than a picture, so some are needed.
bool advance(KTVIDEO *video) {
    const int pictureBegins = 4;
    for (unsigned int step = 0; step < kMostSteps; ++step) {
        if (!video->update(1)) return false;
        if (video->stream->state == pictureBegins) return true;
    }
    return false;
}

bool update(Show *show, float seconds) {
    for (unsigned int due = show->stop->isClicked() ? 0 : show->pictures.advance(seconds); due > 0; --due) {
        if (!advance(show->video)) return false;
        show->picture = (show->picture + 1) % kPictures;
    }
    // The light of the film: from one tone to the next.
    const unsigned int tone = show->picture * kTones;
    const float *from = kTone[tone / kPictures], *to = kTone[(tone / kPictures + 1) % kTones];
    const float part = 0.01f * static_cast<float>(tone % kPictures) / kPictures, rest = 0.01f - part;
    show->shine->setDiffuse(rest * from[0] + part * to[0], rest * from[1] + part * to[1],
                            rest * from[2] + part * to[2], 1.0f);
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a film on a television", &options, &exitCode)) return exitCode;

    // 1. Start.
    KTVIDEO::setMPGPath(options.data.c_str());  // not taken from the settings
    Show show;
    bool ok = example::start(options) && load(&show);
    KTCAMERA camera;
    camera.setTargetNode(&camera);  // itself: it looks at its fixed target
    camera.setTarget(R3XVECTOR3D(-0.1f, 3.2f, 2.0f));
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: outside of drawing, as a video binds its texture behind the engine's back.
        ok = update(&show, clock.tick());
        input.update(clock.getRealSeconds());
        camera.setPosition(1.6f + 0.8f * std::sin(0.3f * clock.getTime()), 4.6f, 13.6f);

        // 3. Draw.
        ok = ok && KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.scene->pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && show.interface->pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop. The list owns the video; the program closes the film that it opened.
    if (show.video) show.video->load(nullptr);
    return example::stop(ok);
}
