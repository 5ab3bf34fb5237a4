// SPDX-License-Identifier: Zlib
// A skinned character and its animations: twenty figures march, and wave at a tap or after a while. A frame
// skins sixteen meshes; the four figures passed last are not drawn.

#include <GLES/gl.h>
#include <SDL.h>
#include <keltra/keltra.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "examples/support/example.h"

namespace {

// Of runs with a given number of frames, which must repeat exactly.
constexpr float kFrameTime = 1.0f / 30.0f;
constexpr float kRate = 24.0f;        // keyframes a second
constexpr float kSwitchAfter = 4.0f;  // seconds
constexpr int kColumns = 4, kRows = 5;
constexpr float kStride = 1.36f;  // of a circle of the walk, which has two steps
constexpr float kGroundRepeat = 4.0f;

struct Show {
    KTNODE *stage = nullptr, *ground = nullptr;
    std::vector<KTNODE *> figures;
    std::vector<KTANIM *> animations;  // walk, wave; the list of animations owns them
    std::size_t playing = 0;
    float time = 0.0f, walked = 0.0f, sinceSwitch = 0.0f;  // seconds
};

// One file a figure: they share the material and have bones of their own.
bool loadFigures(Show *show) {
    for (int i = 0; i < kColumns * kRows; ++i) {
        KTNODE *figure = KELTRA::load("figure.kte");
        if (figure == nullptr) return false;
        const int row = i / kColumns, column = i % kColumns;
        const float x = 1.5f * (static_cast<float>(column) - 1.5f + (row % 2 ? 0.2f : -0.2f));
        figure->setPosition(x, 0.0f, 2.0f - 2.6f * static_cast<float>(row));
        show->figures.push_back(figure);
    }
    return true;
}

bool loadAnimations(Show *show) {
    for (const char *file : {"figure_walk.kta", "figure_wave.kta"}) {
        KTANIM *animation = new KTANIM;
        if (!animation->load(file)) return false;
        animation->setTranslating(true);  // the hips move up and down
        show->animations.push_back(animation);
    }
    return true;
}

bool load(Show *show) {
    show->stage = KELTRA::load("meadow.kte");
    if (show->stage == nullptr || !loadFigures(show) || !loadAnimations(show)) return false;
    show->ground = show->stage->findByNameInHierarchy("ground");
    KTNODE *sky = show->stage->findByNameInHierarchy("sky");
    if (show->ground == nullptr || sky == nullptr || !sky->unlink()) return false;
    KELTRA::setSkybox(sky);
    KTOPENGL::setGlobalAmbientLight(0.30f, 0.30f, 0.34f, 1.0f);
    for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture != nullptr; texture = texture->getNext()) {
        texture->setFilter(true, true, false);
    }
    return true;
}

// A tap makes the next animation due. True once the program is to end.
bool handleEvents(Show *show) {
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        const bool escape = event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE;
        if (event.type == SDL_QUIT || escape) return true;
        if (event.type == SDL_MOUSEBUTTONDOWN) show->sinceSwitch = kSwitchAfter;
    }
    return false;
}

void animate(Show *show, float seconds) {
    show->time += seconds;
    show->sinceSwitch += seconds;
    if (show->sinceSwitch > kSwitchAfter) {
        show->playing = (show->playing + 1) % show->animations.size();
        show->sinceSwitch = 0.0f;
    }
    KTANIM *animation = show->animations[show->playing];
    const unsigned frames = animation->getNumberOfFrames();
    unsigned phase = static_cast<unsigned>(show->time * kRate);
    for (KTNODE *figure : show->figures) {
        animation->apply(phase % frames, figure);
        phase += 5;  // the figures march out of step
    }
    if (show->playing != 0) return;
    show->walked += seconds;  // the figures stay in the picture, the ground moves below them
    const float circles = show->walked * kRate / static_cast<float>(frames);
    show->ground->setPosition(0.0f, 0.0f, -std::fmod(circles * kStride, kGroundRepeat));
}

bool draw(const Show &show, KTCAMERA *camera) {
    bool ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(camera) && show.stage->pass();
    for (KTNODE *figure : show.figures) ok = ok && figure->pass();
    return ok && KELTRA::end3D() && KELTRA::begin2D() && KELTRA::end2D();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows a character that walks and waves", &options, &exitCode))
        return exitCode;

    // 1. Start.
    KTSETTINGS settings;
    settings.setKTEPath(options.data.c_str());
    settings.setKTAPath(options.data.c_str());
    settings.setTexturePath(options.data.c_str());
    if (!KELTRA::init(&settings)) {
        std::fprintf(stderr, "03_character: the engine does not start\n");
        return 1;
    }
    Show show;
    bool ok = load(&show);
    if (!ok) std::fprintf(stderr, "03_character: files are missing in %s\n", options.data.c_str());
    {
        KTCAMERA camera;
        camera.setTargetNode(&camera);  // itself: it looks at its fixed target
        camera.setPosition(1.4f, 4.8f, 12.2f);
        camera.setTarget(-0.25f, 2.2f, -1.0f);
        for (int frame = 1; ok && !handleEvents(&show); ++frame) {
            // 2. Per frame.
            const bool last = frame == options.frames;
            animate(&show, options.frames > 0 ? kFrameTime : std::fmax(KELTRA::getFPSfactor(), 0.0f));

            // 3. Draw.
            ok = draw(show, &camera);
            if (ok && last && !options.shot.empty()) ok = example::saveShot(options.shot);
            ok = ok && KELTRA::swap() && glGetError() == GL_NO_ERROR;
            if (!ok) std::fprintf(stderr, "03_character: frame %d could not be drawn\n", frame);
            if (last) break;
        }
    }

    // 4. Stop: the lists that own nodes and animations destroy them.
    KELTRA::setSkybox(nullptr);
    return KELTRA::free() && ok ? 0 : 1;
}
