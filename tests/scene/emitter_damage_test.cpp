// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>

#include <random>
#include <string>

#include "tests/resources/texture_fixture.h"
#include "tests/support/emulated.h"
#include "tests/support/same_verdict.h"
#include "tests/support/small_stack.h"

namespace keltra::test {
namespace {

const std::string kWhole =
    "<?xml version=\"1.0\"?>\n<!-- sparks -->\n<emitter>\n  <type value=\"2\"/>\n  <texture "
    "value=\"dot.tga\"/>\n"
    "  <nbOfParticles value=\"30\"/>\n  <maxEnergy value=\"80\"/>\n  <maxVelocity value=\"9\"/>\n  <radius "
    "value=\"1.5\"/>\n"
    "  <gravity x=\"0\" y=\"-9.8\" z=\"0\"/>\n  <colorStart x=\"1\" y=\"&#48;\" z=\"0\"/>\n  <blendingDst "
    "value=\"1\"/>\n</emitter>\n";

/// Damaged files, each loaded into the same emitter in a thread with the device's stack.
class EmitterDamageTest : public TextureTest {
   protected:
    void SetUp() override {
        TextureTest::SetUp();
        write("dot.tga", 4, 4);
    }

    bool load(const std::string &text) {
        const bool loaded = emitter.load(folder.write("damaged.xml", text).c_str());
        expectSameVerdict("emitter", text, loaded);
        EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
        EXPECT_NE(emitter.getTexture(), nullptr);
        if (!loaded) {
            EXPECT_EQ(emitter.getNumberOfParticles(), 0);
            EXPECT_EQ(emitter.getTexture()->getBitmap(), nullptr);
        }
        return loaded;
    }

    // Everything that was loaded can be drawn.
    void draw() {
        frame3D(nullptr, [&] { emitter.pass(); });
        EXPECT_LE(KTEMITTER::numberbOfParticlesUsed, 512u);
    }

    KTEMITTER emitter;
};

TEST_F(EmitterDamageTest, EveryTruncationIsRefusedOrHoldsNothing) {
    ASSERT_TRUE(runOnSmallStack([&] {
        EXPECT_TRUE(load(kWhole));
        const std::size_t end = kWhole.rfind('>');
        for (std::size_t size = 0; size <= end; ++size) {
            if (!load(kWhole.substr(0, size))) continue;
            EXPECT_LE(size, kWhole.find("<emitter")) << "only what ends before the root is a document";
            EXPECT_EQ(emitter.getNumberOfParticles(), 0);
        }
    }));
}

TEST_F(EmitterDamageTest, SplicedBytesAreRefusedOrDrawn) {
    std::mt19937 random(20040117);
    const int rounds = 1000 / sampled(10);
    int loaded = 0;
    for (int round = 0; round < rounds; ++round) {
        std::string text = kWhole;
        const std::size_t length = 1 + random() % 6;
        std::string splice;
        while (splice.size() < length)
            splice +=
                static_cast<char>(random() % 3 ? "0123456789-.<>/\"' e"[random() % 19] : random() % 256);
        text.replace(random() % text.size(), random() % 2 ? length : 0, splice);
        bool parsed = false;
        ASSERT_TRUE(runOnSmallStack([&] { parsed = load(text); }));
        loaded += parsed;
        if (parsed && loaded % 16 == 0) draw();
        if (HasFailure()) FAIL() << text;
    }
    EXPECT_GT(loaded, rounds / 20);
    EXPECT_LT(loaded, rounds - rounds / 20);
}

TEST_F(EmitterDamageTest, DeepNestingIsRefusedOnTheDevicesStack) {
    for (int depth : {60, 300, 100000}) {
        std::string text = "<emitter>";
        for (int i = 0; i < depth; ++i) text += "<type value='1'>";
        for (int i = 0; i < depth; ++i) text += "</type>";
        text += "</emitter>";
        bool parsed = false;
        ASSERT_TRUE(runOnSmallStack([&] { parsed = load(text); }));
        EXPECT_EQ(parsed, depth == 60);
    }
}

TEST_F(EmitterDamageTest, ManyAndLongElementsAreReadOrRefused) {
    std::string many = "<emitter>";
    for (int i = 0; i < 10000; ++i) many += "<nbOfParticles value='" + std::to_string(i) + "'/>";
    EXPECT_TRUE(load(many + "</emitter>"));
    EXPECT_EQ(emitter.getNumberOfParticles(), 9999);
    draw();
    const std::string name(300000, 'n');
    EXPECT_TRUE(load("<emitter><texture value='" + name + "'/><" + name + "/></emitter>"));
    EXPECT_EQ(emitter.getTexture()->getBitmap(), nullptr);
    EXPECT_FALSE(load(std::string("<emitter><type value='1\0'/></emitter>", 36)));
}

}  // namespace
}  // namespace keltra::test
