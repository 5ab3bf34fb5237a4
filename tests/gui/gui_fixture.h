// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_GUI_FIXTURE_H
#define KELTRA_TESTS_GUI_FIXTURE_H

// The interface without an engine: the GL is stubbed, only the render list and the fonts are started. The
// screen is 240 x 320 pixels.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace keltra::test {

/// One quad as the GL was given it, in pixels and 0 to 1.
struct Quad {
    std::array<float, 4> corners;  // x1, y1, x2, y2
    std::array<float, 4> color;
    std::array<float, 8> texCoords;
};

class GuiTest : public ::testing::Test {
   protected:
    using Box4 = std::array<int, 4>;

    void SetUp() override {
        KTSETTINGS::windowX = 240;
        KTSETTINGS::windowY = 320;
        KTSETTINGS::landscape = false;
        KTOPENGL::blending = KTOPENGL::scissor = false;
        KTTEXTURE::texturingOff(KTTEXTURE::channels);
        KELTRA::videoMemoryTotal = 8388608;
        KELTRA::videoMemoryUsed = 0;
        ASSERT_TRUE(KTELEMENT::init(0));
        ASSERT_TRUE(KTFONT::init());
        font = new KTFONT;
        glyphs = new KTTEXTURE;
        ASSERT_TRUE(glyphs->create(16, 16, 4));
        font->setTexture(glyphs);
        GlRecorder::clear();
    }
    void TearDown() override {
        KTFONT::cleanUp();
        KTNODE::cleanUp();
        KTTEXTURE::cleanUp();
        KTFONT::free();
        KTELEMENT::free();
        KTSETTINGS::windowX = KTSETTINGS::windowY = 0;
        KTSETTINGS::landscape = false;
        KELTRA::videoMemoryTotal = 0;
    }

    /// Makes the 2D list of these nodes, as a frame leaves it.
    static void list(const std::vector<KTNODE *> &nodes) {
        KTELEMENT::reset();
        for (KTNODE *node : nodes) node->pass();
        KTELEMENT::sort2D();
    }
    /// Draws a whole 2D pass.
    static void draw(const std::vector<KTNODE *> &nodes) {
        KELTRA::begin2D();
        for (KTNODE *node : nodes) node->pass();
        KELTRA::end2D();
    }
    /// One frame of input; the list must stand. Returns what was activated.
    unsigned int point(int x, int y, int pressed, char key = 0) {
        unsigned int id = 12345;
        over = KTELEMENT::manageGUIEvents(key, x, y, pressed, 0, &id);
        return id;
    }

    /// All quads that were drawn, in order. Strings are drawn with glDrawElements and are not included.
    static std::vector<Quad> quads() {
        std::vector<Quad> all;
        for (const Call &call : GlRecorder::all("glDrawArrays")) {
            if (call.contents.size() != 32) {
                ADD_FAILURE() << "a quad of another layout";
                continue;
            }
            const auto value = [&call](int i) { return static_cast<float>(call.contents[i]) / 65536.0f; };
            Quad quad;
            // The corners of the strip: (x1, y1), (x2, y1), (x1, y2), (x2, y2).
            EXPECT_TRUE(value(0) == value(4) && value(1) == value(3) && value(2) == value(6) &&
                        value(5) == value(7));
            quad.corners = {value(0), value(1), value(6), value(7)};
            for (int i = 0; i < 4; ++i) quad.color[i] = value(8 + i);
            for (int i = 4; i < 16; ++i) EXPECT_EQ(value(8 + i), quad.color[i % 4]);
            for (int i = 0; i < 8; ++i) quad.texCoords[i] = value(24 + i);
            all.push_back(quad);
        }
        return all;
    }
    static int glyphsDrawn() {
        int count = 0;
        for (const Call &call : GlRecorder::all("glDrawElements"))
            count += static_cast<int>(call.arguments[1]) / 6;
        return count;
    }
    static int strings() { return GlRecorder::count("glDrawElements"); }
    /// Top left corner of the first glyph of the string drawn last, in pixels.
    static std::array<int, 2> textPlace() {
        return {KTFONT::fontCachedVertex[4] / 65536, KTFONT::fontCachedVertex[5] / 65536};
    }
    static std::vector<Box4> scissors() {
        std::vector<Box4> all;
        for (const Call &call : GlRecorder::all("glScissor")) {
            Box4 box;
            for (int i = 0; i < 4; ++i) box[i] = static_cast<int>(call.arguments[i]);
            all.push_back(box);
        }
        return all;
    }
    static float nan() { return std::numeric_limits<float>::quiet_NaN(); }

    const GlRecorder::Stub stub;
    KTFONT *font = nullptr;
    KTTEXTURE *glyphs = nullptr;
    bool over = false;
};

}  // namespace keltra::test

#endif
