// SPDX-License-Identifier: Zlib
// Values of files and setters that the GL refuses: none may make a GL error, and none may leave an earlier
// light's value in its place.

#include <limits>

#include "tests/scene/scene_parts.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinite = std::numeric_limits<float>::infinity();

class GlLimitsTest : public EngineTest {
   protected:
    /// The value that the newest call gave to GL light 0.
    static std::int64_t sent(GLenum parameter) {
        std::int64_t value = -1;
        for (const Call &call : GlRecorder::all("glLightx"))
            if (call.arguments[0] == GL_LIGHT0 && call.arguments[1] == parameter) value = call.arguments[2];
        return value;
    }
    void drawBy(KTLIGHT &light) {
        GlRecorder::clear();
        frame3D(nullptr, [&] { light.pass(); });
    }

    TempFolder folder;
};

std::int64_t fixed(float value) { return static_cast<std::int64_t>(value * 65536.0f); }

TEST_F(GlLimitsTest, ACutOffThatIsNoConeIsNone) {
    const struct {
        float given, sent;
    } rows[] = {{0.0f, 0.0f},       {45.0f, 45.0f},   {90.0f, 90.0f},      {90.5f, 180.0f},
                {120.0f, 180.0f},   {180.0f, 180.0f}, {181.0f, 180.0f},    {-1.0f, 180.0f},
                {40000.0f, 180.0f}, {kNan, 180.0f},   {kInfinite, 180.0f}, {-kInfinite, 180.0f}};
    KTLIGHT light;
    light.setLightType(KT_LIGHT_SPOT);
    light.setDirection(0.0f, 0.0f, -1.0f);
    for (const auto &row : rows) {
        light.setCutOff(row.given);
        drawBy(light);
        EXPECT_EQ(sent(GL_SPOT_CUTOFF), fixed(row.sent)) << row.given;
    }
}

TEST_F(GlLimitsTest, ExponentAndAttenuationStayWithinWhatTheGlTakes) {
    const struct {
        float given, exponent, constant, other;
    } rows[] = {{0.0f, 0.0f, 0.0f, 0.0f},
                {2.5f, 2.5f, 2.5f, 2.5f},
                {128.0f, 128.0f, 128.0f, 128.0f},
                {200.0f, 128.0f, 200.0f, 200.0f},
                {-0.25f, 0.0f, 1.0f, 0.0f},
                {kNan, 0.0f, 1.0f, 0.0f},
                {-kInfinite, 0.0f, 1.0f, 0.0f},
                {1.0e9f, 128.0f, 32767.998f, 32767.998f},
                {kInfinite, 128.0f, 32767.998f, 32767.998f}};
    KTLIGHT light;
    for (const auto &row : rows) {
        light.setExponent(row.given);
        light.setAttenuation(row.given, row.given, row.given);
        drawBy(light);
        EXPECT_EQ(sent(GL_SPOT_EXPONENT), fixed(row.exponent)) << row.given;
        EXPECT_EQ(sent(GL_CONSTANT_ATTENUATION), fixed(row.constant)) << row.given;
        EXPECT_EQ(sent(GL_LINEAR_ATTENUATION), fixed(row.other)) << row.given;
        EXPECT_EQ(sent(GL_QUADRATIC_ATTENUATION), fixed(row.other)) << row.given;
    }
}

TEST_F(GlLimitsTest, AFileWithAnyCutOffIsDrawnWithoutAGlError) {
    for (float cutOff : {120.0f, -30.0f, 1.0e30f, kNan, kInfinite}) {
        formats::Node spot = lightNode("spot");
        spot.light.type = formats::LightType::kSpot;
        spot.light.cutOff = cutOff;
        KTNODE *scene = loadNode(folder, plainNode("root", {spot, stripNode("mesh")}));
        ASSERT_NE(scene, nullptr);
        frame3D(nullptr, [&] { scene->pass(); });
        EXPECT_EQ(sent(GL_SPOT_CUTOFF), fixed(180.0f)) << cutOff;
    }
}

TEST_F(GlLimitsTest, AnEmitterWithFactorsThatTheGlLacksBlendsAsByDefault) {
    KTEMITTER emitter;
    emitter.setNumberOfParticles(2);
    const GLenum factors[] = {GL_ZERO, GL_ONE, GL_DST_COLOR, GL_SRC_ALPHA_SATURATE, 0x1234, 0xffffffff};
    for (GLenum source : factors) {
        for (GLenum destination : factors) {
            emitter.setBlendingSrc(source);
            emitter.setBlendingDst(destination);
            GlRecorder::clear();
            frame3D(nullptr, [&] { emitter.pass(); });
            const std::vector<std::int64_t> sentFactors = GlRecorder::all("glBlendFunc").at(0).arguments;
            const bool isSource = source < 0x1234, isDestination = destination <= GL_ONE;
            EXPECT_EQ(sentFactors[0], isSource ? source : GLenum(GL_SRC_ALPHA));
            EXPECT_EQ(sentFactors[1], isDestination ? destination : GLenum(GL_ONE_MINUS_SRC_ALPHA));
        }
    }
}

// Settings may ask for such a window, and some systems give one.
TEST_F(GlLimitsTest, AWindowWithoutPixelsIsDrawnWithoutAnError) {
    const int width = KTSETTINGS::windowX, height = KTSETTINGS::windowY;
    for (int x : {0, width}) {
        ASSERT_TRUE(KTSETTINGS::resize(0, 0, x, 0));
        KELTRA::clear(true, true, false);
        KELTRA::begin3D(nullptr);
        KELTRA::end3D();
        KELTRA::select(0, 0);
        KELTRA::begin2D();
        KELTRA::end2D();
        expectNoGlError();
    }
    EXPECT_TRUE(KTSETTINGS::resize(0, 0, width, height));
}

}  // namespace
}  // namespace keltra::test
