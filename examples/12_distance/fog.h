// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_FOG_H
#define KELTRA_EXAMPLES_FOG_H

#include <GLES/gl.h>
#include <keltra/keltra.h>
#include <keltra/kit/shapes.h>

#include <cmath>

constexpr float kReach = 34.0f;  // units that one sees
constexpr float kMist[4] = {0.80f, 0.66f, 0.74f, 1.0f};

inline int fixed(float value) { return static_cast<int>(value * 65536.0f); }

// Nodes that are opaque are drawn in the order in which they were passed: all that come after it are in fog.
class Fog : public KTNODE {
   public:
    Fog() { setIdentity(KT_CUSTOM, "fog"); }
    bool render(void *) override {
        if (!isOn) return true;
        const GLfixed color[] = {fixed(kMist[0]), fixed(kMist[1]), fixed(kMist[2]), fixed(kMist[3])};
        glFogx(GL_FOG_MODE, GL_LINEAR);
        glFogx(GL_FOG_START, fixed(4.0f));
        glFogx(GL_FOG_END, fixed(kReach));
        glFogxv(GL_FOG_COLOR, color);
        glEnable(GL_FOG);
        return true;
    }
    bool isOn = true;
};

// A sphere that is seen from inside: its faces are turned around. Its picture has the fog's colour from the
// horizon downward.
inline KTMESH *makeSky() {
    constexpr int kHeight = 64;
    unsigned char pixels[3 * 2 * kHeight];
    for (int i = 0; i < 2 * kHeight; ++i) {
        const float up = std::fmax(0.0f, float(i / 2) / (kHeight - 1) - 0.5f) * 2.0f, part = std::sqrt(up);
        const float zenith[] = {0.26f, 0.32f, 0.58f};
        for (int c = 0; c < 3; ++c)
            pixels[3 * i + c] =
                static_cast<unsigned char>(255.0f * (kMist[c] + part * (zenith[c] - kMist[c])));
    }
    KTTEXTURE *texture = new KTTEXTURE;
    texture->setFilter(true, false, true);
    texture->create(2, kHeight, 3);
    texture->modify(reinterpret_cast<const char *>(pixels), false);
    KTMESH *sky = KTSHAPES::makeSphere(80.0f, 16, 16);
    for (unsigned i = 0; i < 3 * sky->getNumberOfFaces(); i += 3) {
        const auto corner = sky->faces[i];
        sky->faces[i] = sky->faces[i + 1];
        sky->faces[i + 1] = corner;
    }
    sky->setMaterial(KTSHAPES::makeMaterial("sky", 1.0f, 1.0f, 1.0f, texture));
    return sky;
}

#endif
