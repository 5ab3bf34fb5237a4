// SPDX-License-Identifier: Zlib
#include <keltra/emitter.h>

#include <string>

#include "tests/resources/texture_fixture.h"
#include "tests/support/same_verdict.h"

namespace keltra::test {
namespace {

/// `body` within the root element, in a file that is loaded.
class EmitterFileTest : public TextureTest {
   protected:
    static bool loadText(KTEMITTER &emitter, const TempFolder &folder, const std::string &text) {
        const bool loaded = emitter.load(folder.write("emitter.xml", text).c_str());
        expectSameVerdict("emitter", text, loaded);
        return loaded;
    }
    bool load(KTEMITTER &emitter, const std::string &body) {
        return loadText(emitter, folder, "<?xml version='1.0'?><emitter>" + body + "</emitter>");
    }
};

TEST_F(EmitterFileTest, EveryKeyHasItsPlace) {
    write("dot.tga", 8, 4);
    KTEMITTER emitter;
    ASSERT_TRUE(
        load(emitter,
             "<blendingDst value='1'/><blendingSrc value='770'/><colorEnd x='0.5' y='0' z='1'/>"
             "<colorStart x='1' y='0.25' z='0'/><upVector x='1' y='2' z='3'/><rotation x='4' y='5' z='6'/>"
             "<gravity x='7' y='-8' z='9.5'/><center x='10' y='11' z='12'/><spinning value='13.5'/><maxSpin "
             "value='14'/>"
             "<maxParticleSize value='15'/><radius value='16.5'/><emitterSize x='17.5' y='18.5'/><maxAngle "
             "value='19.5'/>"
             "<maxVelocity value='20'/><maxEnergy value='21'/><nbOfParticles value='22'/><texture "
             "value='dot.tga'/>"
             "<type value='2'/>"));
    EXPECT_EQ(emitter.getEmitterType(), 2);
    EXPECT_STREQ(emitter.getTexture()->getFilename(), "dot.tga");
    EXPECT_EQ(emitter.getTexture()->getSizeX(), 8u);
    EXPECT_EQ(emitter.getTexture()->getReferences(), 1);
    EXPECT_EQ(emitter.getNumberOfParticles(), 22);
    EXPECT_EQ(emitter.getMaximumEnergy(), 21u);
    EXPECT_EQ(emitter.getMaximumVelocity(), 20u);
    EXPECT_EQ(emitter.getMaximumAngle(), 19.5f);
    EXPECT_EQ(emitter.getSizeX(), 17.5f);
    EXPECT_EQ(emitter.getSizeY(), 18.5f);
    EXPECT_EQ(emitter.getRadius(), 16.5f);
    EXPECT_EQ(emitter.getMaximumParticuleSize(), 15u);
    EXPECT_EQ(emitter.getMaximumSpin(), 14u);
    EXPECT_EQ(emitter.getSpinning(), 13.5f);
    EXPECT_TRUE(emitter.getPosition() == R3XVECTOR3D(10.0f, 11.0f, 12.0f)) << "the node's place";
    EXPECT_TRUE(emitter.getCenter() == R3XVECTOR3D()) << "not where particles are born";
    EXPECT_TRUE(emitter.getGravity() == R3XVECTOR3D(7.0f, -8.0f, 9.5f));
    EXPECT_TRUE(emitter.getRotation() == R3XVECTOR3D(4.0f, 5.0f, 6.0f));
    EXPECT_TRUE(emitter.getUpVector() == R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(emitter.getColorStart() == R3XVECTOR3D(1.0f, 0.25f, 0.0f));
    EXPECT_TRUE(emitter.getColorEnd() == R3XVECTOR3D(0.5f, 0.0f, 1.0f));
    EXPECT_TRUE(emitter.colorDelta == R3XVECTOR3D(-0.5f, -0.25f, 1.0f));
    EXPECT_EQ(emitter.getBlendingSrc(), unsigned(GL_SRC_ALPHA));
    EXPECT_EQ(emitter.getBlendingDst(), unsigned(GL_ONE));
}

TEST_F(EmitterFileTest, KeysWithoutAnElementKeepTheirValues) {
    KTEMITTER emitter;
    emitter.setBlendingSrc(GL_ONE);
    emitter.setBlendingDst(GL_ONE);
    emitter.setMaximumSpin(7);
    emitter.setGravity(1.0f, 2.0f, 3.0f);
    emitter.setNumberOfParticles(40);
    ASSERT_TRUE(load(emitter,
                     "<unknown value='3'><maxSpin value='99'/></unknown><gravity "
                     "y='5'/><maxEnergy/><texture/>text<!-- c -->"));
    EXPECT_EQ(emitter.getBlendingSrc(), unsigned(GL_ONE));
    EXPECT_EQ(emitter.getBlendingDst(), unsigned(GL_ONE));
    EXPECT_EQ(emitter.getMaximumSpin(), 7u);
    EXPECT_EQ(emitter.getMaximumEnergy(), 100u);
    EXPECT_TRUE(emitter.getGravity() == R3XVECTOR3D(1.0f, 5.0f, 3.0f));
    EXPECT_EQ(emitter.getNumberOfParticles(), 0) << "the number starts from 0 in every file";
}

TEST_F(EmitterFileTest, AMaximumIsNotNegative) {
    for (const auto &[text, maximum] :
         {std::pair<std::string, unsigned>{"-1", 0}, {"0", 0}, {"1", 1}, {"2", 2}}) {
        KTEMITTER emitter;
        ASSERT_TRUE(load(emitter, ("<maxEnergy value='" + text + "'/>").c_str()));
        EXPECT_EQ(emitter.getMaximumEnergy(), maximum) << text;
    }
}

TEST_F(EmitterFileTest, NumbersAreReadAsTheCLibraryReadsThem) {
    KTEMITTER emitter;
    ASSERT_TRUE(load(emitter,
                     "<maxEnergy value=' 12.9 of them'/><maxSpin value='many'/><radius value='1e1 "
                     "m'/><spinning value='x'/>"
                     "<emitterSize x='nan' y='1e99'/>"));
    EXPECT_EQ(emitter.getMaximumEnergy(), 12u);
    EXPECT_EQ(emitter.getMaximumSpin(), 0u);
    EXPECT_EQ(emitter.getRadius(), 10.0f);
    EXPECT_EQ(emitter.getSpinning(), 0.0f);
    EXPECT_EQ(emitter.getSizeX(), 0.0f);
    EXPECT_EQ(emitter.getSizeY(), 0.0f);
}

TEST_F(EmitterFileTest, OutrageousNumbersHaveDefinedResults) {
    KTEMITTER emitter;
    ASSERT_TRUE(load(emitter,
                     "<type value='-2147483649'/><nbOfParticles value='1000000000'/><maxEnergy "
                     "value='-1'/><maxVelocity value='0'/>"
                     "<maxParticleSize value='-2147483648'/><maxSpin value='99999999999'/><gravity x='3e38' "
                     "y='-3e38' z='inf'/>"));
    EXPECT_EQ(emitter.getMaximumEnergy(), 0u);
    EXPECT_EQ(emitter.getMaximumParticuleSize(), 0u);
    EXPECT_EQ(emitter.getMaximumSpin(), 2147483647u);
    frame3D(nullptr, [&] { emitter.pass(); });
    EXPECT_EQ(emitter.getNumberOfParticles(), 512);
    ASSERT_TRUE(load(emitter, "<nbOfParticles value='-3'/>"));
    frame3D(nullptr, [&] { emitter.pass(); });
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 0u);
}

TEST_F(EmitterFileTest, FactorsThatGLDoesNotKnowAreSkipped) {
    KTEMITTER emitter;
    const auto loadFactors = [&](int source, int destination) {
        emitter.setBlendingSrc(GL_ONE);
        emitter.setBlendingDst(GL_ONE);
        EXPECT_TRUE(load(emitter, "<nbOfParticles value='3'/><blendingSrc value='" + std::to_string(source) +
                                      "'/><blendingDst value='" + std::to_string(destination) + "'/>"));
        frame3D(nullptr, [&] { emitter.pass(); });
    };
    for (int code = -1; code < 0x310; code += code == 2 ? 0x2f0 : 1) {
        loadFactors(code, code);
        const bool both = code == 0 || code == 1 || (code >= 0x302 && code <= 0x305);
        EXPECT_EQ(emitter.getBlendingSrc() == unsigned(code), both || (code >= 0x306 && code <= 0x308))
            << code;
        EXPECT_EQ(emitter.getBlendingDst() == unsigned(code), both || code == 0x300 || code == 0x301) << code;
    }
}

TEST_F(EmitterFileTest, AnotherRootLoadsNothingAndSucceeds) {
    KTEMITTER emitter;
    emitter.setMaximumEnergy(5);
    EXPECT_TRUE(loadText(emitter, folder, "<particles><maxEnergy value='9'/></particles>"));
    EXPECT_TRUE(loadText(emitter, folder, "<other/><emitter><maxEnergy value='9'/></emitter>"));
    EXPECT_TRUE(loadText(emitter, folder, "<Emitter><maxEnergy value='9'/></Emitter>"));
    EXPECT_TRUE(loadText(emitter, folder, "<!-- nothing -->"));
    EXPECT_EQ(emitter.getMaximumEnergy(), 5u);
    EXPECT_NE(emitter.getTexture(), nullptr);
}

TEST_F(EmitterFileTest, EveryLoadGivesParticlesBackAndMakesAFreshTexture) {
    write("dot.tga", 8, 4);
    KTEMITTER emitter;
    ASSERT_TRUE(load(emitter, "<nbOfParticles value='30'/><texture value='dot.tga'/>"));
    frame3D(nullptr, [&] { emitter.pass(); });
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 30u);
    const std::string missing = folder.path("missing.xml");
    for (const char *path : {static_cast<const char *>(nullptr), "", missing.c_str()}) {
        EXPECT_FALSE(emitter.load(path));
        EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 0u);
        EXPECT_EQ(emitter.getNumberOfParticles(), 0);
        ASSERT_NE(emitter.getTexture(), nullptr);
        EXPECT_EQ(emitter.getTexture()->getBitmap(), nullptr);
        EXPECT_EQ(emitter.getTexture()->getReferences(), 1);
        EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
    }
    ASSERT_TRUE(load(emitter, "<nbOfParticles value='20'/><texture value='missing.tga'/>"));
    frame3D(nullptr, [&] { emitter.pass(); });
    EXPECT_EQ(KTEMITTER::numberbOfParticlesUsed, 20u) << "what was initialized claims what the file asks for";
    EXPECT_EQ(emitter.getTexture()->getBitmap(), nullptr);
}

}  // namespace
}  // namespace keltra::test
