// SPDX-License-Identifier: Zlib
#include "tools/view/backdrop.h"

#include <keltra/keltra.h>

#include <GLES/gl.h>

#include <cmath>
#include <cstring>
#include <vector>

namespace keltra::view {
namespace {

constexpr unsigned kTile = 4, kRows = 512;
constexpr GLfixed kFixed = 65536;

struct Stop {
    float at;      // share of the height, from the bottom
    float rgb[3];  // 0 to 255
};
constexpr Stop kStops[] = {
    {0.00f, {34.0f, 38.0f, 46.0f}},
    {0.22f, {70.0f, 78.0f, 92.0f}},
    {0.55f, {54.0f, 62.0f, 76.0f}},
    {1.00f, {24.0f, 28.0f, 36.0f}},
};

// Thresholds of ordered dithering.
constexpr int kOrder[kTile][kTile] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

float shadeAt(float at, int channel) {
    const Stop *stop = kStops + 1;
    while (at > stop->at) ++stop;
    const Stop &below = stop[-1];
    const float share = (at - below.at) / (stop->at - below.at);
    const float eased = share * share * (3.0f - 2.0f * share);
    return below.rgb[channel] + eased * (stop->rgb[channel] - below.rgb[channel]);
}

// One of the two nearest values that a channel of `bits` bits can have.
unsigned char dithered(float shade, unsigned bits, int order) {
    const float steps = static_cast<float>((1 << bits) - 1);
    const float threshold = (static_cast<float>(order) + 0.5f) / 16.0f;
    const float step = std::floor(shade / 255.0f * steps + threshold);
    return static_cast<unsigned char>(std::lround(step * 255.0f / steps));
}

std::vector<char> paint() {
    const bool coarse = KTSETTINGS::getSDLColorDepth() <= 16;
    const unsigned bits[3] = {coarse ? 5u : 8u, coarse ? 6u : 8u, coarse ? 5u : 8u};
    const unsigned height = static_cast<unsigned>(KTSETTINGS::getSDLWindowY());
    std::vector<char> pixels(kTile * kRows * 3);
    for (unsigned y = 0; y < kRows; ++y) {
        const float at = y < height ? static_cast<float>(y) / static_cast<float>(height - 1) : 1.0f;
        for (unsigned x = 0; x < kTile; ++x) {
            for (unsigned channel = 0; channel < 3; ++channel) {
                pixels[(y * kTile + x) * 3 + channel] = static_cast<char>(
                    dithered(shadeAt(at, static_cast<int>(channel)), bits[channel], kOrder[y % kTile][x]));
            }
        }
    }
    return pixels;
}

}  // namespace

Backdrop::Backdrop() : texture(new KTTEXTURE) {
    texture->incReferences();
    texture->setFilter(false, false, false);
}

// One texel is one pixel: the tile repeats horizontally; of its rows only as many as the screen has are
// shown.
void Backdrop::draw() const {
    // A texture without a file has to be made again after eviction.
    if (!texture->isLoaded() && texture->create(kTile, kRows, 3)) {
        texture->modify(paint().data(), false);
        // Not the name of dynamic textures, by which a model could find it.
        std::strcpy(texture->filename, "[backdrop]");
    }
    const GLfixed across = KTSETTINGS::getSDLWindowX() * kFixed / static_cast<GLfixed>(kTile);
    const GLfixed up = KTSETTINGS::getSDLWindowY() * (kFixed / static_cast<GLfixed>(kRows));
    const GLfixed corners[] = {-kFixed, -kFixed, kFixed, -kFixed, -kFixed, kFixed, kFixed, kFixed};
    const GLfixed texels[] = {0, 0, across, 0, 0, up, across, up};
    const bool culled = KTOPENGL::isCulled();
    KTLIGHT::lightingOff();
    KTOPENGL::blendingOff();
    KTOPENGL::cullingOff();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    texture->render(nullptr);
    glDisable(GL_DEPTH_TEST);
    KTOPENGL::vertexArrayOn();
    KTOPENGL::textureArrayOn();
    KTOPENGL::normalArrayOff();
    KTOPENGL::colorArrayOff();
    KT_glMatrixMode(GL_PROJECTION);
    KT_glPushMatrix();
    KT_glLoadIdentity();
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadIdentity();
    KT_glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glVertexPointer(2, GL_FIXED, 0, corners);
    glTexCoordPointer(2, GL_FIXED, 0, texels);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    KT_glMatrixMode(GL_PROJECTION);
    KT_glPopMatrix();
    KT_glMatrixMode(GL_MODELVIEW);
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    glEnable(GL_DEPTH_TEST);
    if (culled) KTOPENGL::cullingOn();
}

}  // namespace keltra::view
