// SPDX-License-Identifier: Zlib
// Textures: one picture on four lanes, with the four filters. Far away the lanes without mipmaps flicker; the
// smooth ones have no edges close by. Below stands what each of them takes of the 8 MB for textures: mipmaps
// cost four times as much. Next: lights, and how far they reach (10_lights).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>

#include "examples/support/example.h"

namespace {

constexpr int kLanes = 4;
constexpr float kWidth = 1.3f, kLength = 72.0f, kSquare = 1.3f;  // of a lane, and of a picture on it
const struct {
    const char *name;
    bool smooth, mipmapped;
    float x;
} kFilters[kLanes] = {{"nearest", false, false, 4.0f},
                      {"smooth", true, false, 66.0f},
                      {"mipmap", false, true, 123.0f},
                      {"both", true, true, 187.0f}};

struct Show {
    KTNODE road, panel;
    KTLABEL *told = nullptr;
    unsigned kilobytes[kLanes];
};

KTLABEL *addLabel(Show *show, KTFONT *font, float x, float y) {
    KTLABEL *label = new KTLABEL;
    label->setFont(font);
    label->setPosition(x, y);
    label->link(&show->panel);
    return label;
}

// The account of video memory goes up when a texture is uploaded, which is when it is first drawn. `render`
// does that now. A texture that is loaded anew is a texture of its own.
bool addLane(Show *show, int lane) {
    const unsigned before = KTENGINESTATE::getUsedVideoMemory();
    KTTEXTURE *texture = new KTTEXTURE;
    texture->setFilter(kFilters[lane].smooth, kFilters[lane].mipmapped, false);  // false: it repeats
    if (!texture->load("scene_mosaic_d.tga") || !texture->render(nullptr)) return false;
    KTMATERIAL *material = KTSHAPES::makeMaterial(kFilters[lane].name, 0.0f, 0.0f, 0.0f, texture);
    material->setEmission(1.0f, 0.94f, 0.86f, 1.0f);
    example::place(KTSHAPES::makePlane(kWidth, kLength, 1, 24), material, &show->road,
                   kWidth * (static_cast<float>(lane) - 1.5f), 0.0f, -0.5f * kLength);
    KTMESH *plane = static_cast<KTMESH *>(show->road.getChild(static_cast<unsigned>(lane)));
    for (unsigned i = 0; i < plane->getNumberOfVertices(); ++i)
        plane->uvs[2 * i + 1] = static_cast<int>(plane->uvs[2 * i + 1] * (kWidth / kSquare));
    show->kilobytes[lane] = (KTENGINESTATE::getUsedVideoMemory() - before) / 1024;
    return true;
}

bool build(Show *show) {
    for (int lane = 0; lane < kLanes; ++lane)
        if (!addLane(show, lane)) return false;
    KTBOX *back = new KTBOX;
    back->setSizes(240, 62);
    back->setPosition(0.0f, 258.0f);
    back->setThickness(0);
    back->setColor(0.08f, 0.07f, 0.15f, 0.85f);
    back->link(&show->panel);
    KTFONT *font = example::loadFont();
    for (int lane = 0; lane < kLanes; ++lane)
        addLabel(show, font, kFilters[lane].x, 262.0f)
            ->write("^c8748%s\n^c8888%u KB", kFilters[lane].name, show->kilobytes[lane]);
    show->told = addLabel(show, font, 4.0f, 298.0f);
    return example::loadWithSky("meadow.kte") != nullptr;
}

void tell(Show *show) {
    show->told->write("^c6778%u of %u KB are in use", KTENGINESTATE::getUsedVideoMemory() / 1024,
                      KTENGINESTATE::getVideoMemory() / 1024);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows filters and what they take", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options) && build(&show);
    KTCAMERA camera;
    example::lookAt(&camera, 0.0f, 0.8f, 0.9f, 0.0f, 0.36f, -3.0f);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    float way = 0.0f;
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: the road comes closer, and begins anew after each picture.
        way = std::fmod(way + 0.6f * clock.tick(), kSquare);
        input.update(clock.getRealSeconds());
        show.road.setPosition(0.0f, 0.0f, way);
        tell(&show);

        // 3. Draw.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin3D(&camera) && show.road.pass() &&
             KELTRA::end3D() && KELTRA::begin2D() && show.panel.pass() && KELTRA::end2D();
        input.dispatch();
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
