// SPDX-License-Identifier: Zlib
// A film that loops on a turning box and in a window: one texture, which the video writes into, on both. Next:
// the same things one by one, beginning with a triangle (08_triangle).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/support/example.h"

namespace {

constexpr unsigned int kSide = 128;       // pixels of the film, in both directions
constexpr unsigned int kMostSteps = 200;  // of the decoder, for one picture

struct Show {
    KTNODE *scene = nullptr, *interface = nullptr, *box = nullptr;
    KTVIDEO *video = nullptr;
    KTPACE pictures{25.0f};  // a slow device shows the film slower, and does not fall behind more and more
};

// The texture is made before the film plays: RGB, as large as the picture, and without mipmaps, which a video
// does not write. It is handed to everything that shows it.
bool load(Show *show) {
    show->scene = KELTRA::load("film.kte");
    show->interface = KELTRA::load("film.xml");
    if (!show->scene || !show->interface) return false;
    show->box = show->scene->findByNameInHierarchy("box");
    KTNODE *screen = show->interface->findByNameInHierarchy("screen");
    KTMATERIAL *material = KTMATERIAL::findByName("film.screen");
    if (!show->box || !screen || screen->getType() != KT_BOX || !material) return false;

    KTTEXTURE *picture = new KTTEXTURE;
    picture->setFilter(true, false, true);
    if (!picture->create(kSide, kSide, 3)) return false;
    material->setTexture(0, picture);
    KTBOX *face = static_cast<KTBOX *>(screen);
    face->setThickness(0);
    face->setTexture(picture);
    face->setBoxCoords(KTBOXCOORD(1.0f, 1.0f, true));  // films begin with their upper row

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

bool update(Show *show, float seconds, float time) {
    show->box->setRotation(22.0f, 40.0f * time - 30.0f, 0.0f);
    for (unsigned int due = show->pictures.advance(seconds); due > 0; --due)
        if (!advance(show->video)) return false;
    return true;
}

bool draw(const Show &show, KTCAMERA *camera) {
    return KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && show.scene->pass() &&
           KELTRA::end3D() && KELTRA::begin2D() && show.interface->pass() && KELTRA::end2D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a film on a box and in a window", &options, &exitCode))
        return exitCode;

    // 1. Start.
    KTVIDEO::setMPGPath(options.data.c_str());  // not taken from the settings
    Show show;
    bool ok = example::start(options);
    KTOPENGL::setBackgroundColor(0.06f, 0.05f, 0.11f, 1.0f);
    ok = ok && load(&show);
    KTCAMERA camera;
    camera.setPosition(0.0f, -1.9f, 12.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    float time = 0.0f;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: outside of drawing, as a video binds its texture behind the engine's back.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        ok = update(&show, seconds, time += seconds);

        // 3. Draw.
        ok = ok && draw(show, &camera);
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop. The list owns the video; the program closes the film that it opened.
    if (show.video) show.video->load(nullptr);
    return example::stop(ok);
}
