// SPDX-License-Identifier: Zlib
#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using ShaderTest = EngineTest;

std::vector<KTSHADER *> named() {
    return {KTSHADER::pplDirect,        KTSHADER::pplOmni,
            KTSHADER::pplSpot,          KTSHADER::pplDirectA,
            KTSHADER::pplOmniA,         KTSHADER::pplSpotA,
            KTSHADER::pplDirectT,       KTSHADER::pplOmniT,
            KTSHADER::pplSpotT,         KTSHADER::pplDirectTA,
            KTSHADER::pplOmniTA,        KTSHADER::pplSpotTA,
            KTSHADER::pplSpotS,         KTSHADER::pplSpotSA,
            KTSHADER::pplSpotTS,        KTSHADER::pplSpotTSA,
            KTSHADER::passthrough,      KTSHADER::passthroughA,
            KTSHADER::passthroughZPass, KTSHADER::passthroughZPassA,
            KTSHADER::bloomBright,      KTSHADER::bloomToneMapping,
            KTSHADER::bloomCombine,     KTSHADER::bloomForceAlpha,
            KTSHADER::bloomV,           KTSHADER::bloomH,
            KTSHADER::gaussian,         KTSHADER::emitter,
            KTSHADER::dofCombine,       KTSHADER::dof,
            KTSHADER::skydome,          KTSHADER::water,
            KTSHADER::waterS,           KTSHADER::terrainComplex,
            KTSHADER::terrainSimple};
}

TEST_F(ShaderTest, EngineMakesItsShadersInOrder) {
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 35u);
    std::vector<KTSHADER *> listed;
    for (KTSHADER *shader = KTSHADER::getFirst(); shader; shader = shader->getNext())
        listed.push_back(shader);
    EXPECT_THAT(listed, ElementsAreArray(named()));
    for (const KTSHADER *shader : listed) {
        EXPECT_EQ(shader->getName(), "[shader " + std::to_string(shader->getId()) + "]");
        EXPECT_STREQ(shader->getVSFilename(), "[none]");
        EXPECT_STREQ(shader->getPSFilename(), "[none]");
        EXPECT_FALSE(shader->isOperative());
    }
}

TEST_F(ShaderTest, NamedShadersGoWithTheEngine) {
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 0u);
    EXPECT_THAT(named(), ::testing::Each(nullptr));
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 35u);
}

TEST_F(ShaderTest, StartThatFailsAfterTheShadersLeavesNone) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    ASSERT_TRUE(KELTRA::free());
    const unsigned elements = 1000;
    settings.setRenderingElements(elements);
    Allocations::failNext(elements * sizeof(KTELEMENT));
    EXPECT_FALSE(KELTRA::init(&settings));
    Allocations::clear();
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 0u);
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 35u);
}

TEST_F(ShaderTest, LoadingAndRenderingDoNothing) {
    KTSHADER shader;
    GlRecorder::clear();
    EXPECT_TRUE(shader.load("a.vs", "a.ps", true));
    EXPECT_TRUE(shader.load(nullptr, nullptr));
    EXPECT_TRUE(shader.loadVertexShader("a.vs", nullptr));
    EXPECT_TRUE(shader.loadPixelShader("a.ps", "X"));
    EXPECT_FALSE(shader.isOperative());
    EXPECT_STREQ(shader.getVSFilename(), "[none]");
    EXPECT_TRUE(shader.render(nullptr));
    EXPECT_EQ(KTSHADER::currentShader, nullptr);
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(ShaderTest, BindingIsRefused) {
    KTSHADER shader;
    float values[4] = {};
    EXPECT_FALSE(shader.bindParam(0, "x", true));
    EXPECT_FALSE(KTSHADER::bindTexture(0));
    EXPECT_FALSE(KTSHADER::bindSizes(1, 1));
    EXPECT_FALSE(KTSHADER::bindNearAndFarPlane(1.0f, 2.0f));
    EXPECT_FALSE(KTSHADER::bindFocusAndRange(1.0f, 2.0f));
    EXPECT_FALSE(KTSHADER::bindLuminanceAndExposure(1.0f, 2.0f));
    EXPECT_FALSE(KTSHADER::bindBones(1, values, values, 0, 1));
    EXPECT_FALSE(KTSHADER::unbindBones());
}

TEST_F(ShaderTest, ParametersAreZeroAnd28BeyondTheLast) {
    const KTSHADER shader;
    for (unsigned i = 0; i < 28; ++i) EXPECT_EQ(shader.getParam(i), 0u);
    EXPECT_EQ(shader.getParam(28), 28u);
    EXPECT_EQ(shader.getParam(0xFFFFFFFF), 28u);
}

TEST_F(ShaderTest, DisableForgetsTheCurrentShaderOnce) {
    KTSHADER shader;
    EXPECT_TRUE(KTSHADER::enable());
    KTSHADER::currentShader = &shader;
    EXPECT_TRUE(KTSHADER::disable());
    EXPECT_EQ(KTSHADER::currentShader, nullptr);
    KTSHADER::currentShader = &shader;
    EXPECT_TRUE(KTSHADER::disable());
    EXPECT_EQ(KTSHADER::currentShader, &shader) << "disabled already: nothing changes";
    KTSHADER::reset();
    EXPECT_EQ(KTSHADER::currentShader, nullptr);
    EXPECT_FALSE(KTSHADER::enabled);
}

TEST_F(ShaderTest, IsOperativeWhenBothProgramsAreReady) {
    KTSHADER shader;
    shader.vertexReady = true;
    EXPECT_FALSE(shader.isOperative());
    shader.pixelReady = true;
    EXPECT_TRUE(shader.isOperative());
    shader.forceDeactivation();
    EXPECT_FALSE(shader.vertexReady || shader.pixelReady);
}

TEST_F(ShaderTest, EffectSwitchesAreOff) {
    EXPECT_FALSE(KTSHADER::useSkinning() || KTSHADER::usePPL() || KTSHADER::useBloom() ||
                 KTSHADER::useShadows());
    EXPECT_FALSE(KTSHADER::usePassthrough() || KTSHADER::useEmitter() || KTSHADER::useDOF());
    EXPECT_FALSE(KTSHADER::useSkydome() || KTSHADER::useWater() || KTSHADER::useTerrain());
}

TEST_F(ShaderTest, IsFoundOnTheList) {
    KTSHADER shader;
    shader.setName("mine");
    shader.setName(nullptr);
    shader.setName(std::string(256, 'n').c_str());
    EXPECT_EQ(KTSHADER::findByName("mine"), &shader);
    EXPECT_EQ(KTSHADER::findByName("Mine"), nullptr);
    EXPECT_EQ(KTSHADER::findByName(nullptr), nullptr);
    EXPECT_EQ(KTSHADER::findById(shader.getId()), &shader);
    EXPECT_EQ(shader.getPrevious(), KTSHADER::terrainSimple);
    EXPECT_EQ(shader.getNext(), nullptr);
}

// As many as are found by a table.
TEST_F(ShaderTest, IsFoundByItsLastNameAmongMany) {
    std::vector<KTSHADER> shaders(100);
    for (KTSHADER &shader : shaders) shader.setName("one of many");
    shaders[50].setName("mine");
    EXPECT_EQ(KTSHADER::findByName("mine"), &shaders[50]);
    shaders[50].setName("yours");
    EXPECT_EQ(KTSHADER::findByName("yours"), &shaders[50]);
    EXPECT_EQ(KTSHADER::findByName("mine"), nullptr);
    shaders[10].setName("yours");
    EXPECT_EQ(KTSHADER::findByName("yours"), &shaders[10]) << "the oldest of that name";
}

TEST_F(ShaderTest, PathIsCutAt255Characters) {
    KTSHADER::setPath(std::string(300, 'p').c_str());
    EXPECT_EQ(KTSHADER::getPath(), std::string(255, 'p'));
    KTSHADER::setPath(nullptr);
    EXPECT_STREQ(KTSHADER::getPath(), "");
}

TEST_F(ShaderTest, DestroyedShaderLeavesNoPointer) {
    KTMATERIAL material, copyOfMaterial(material);
    material.setShader(KTSHADER::water);
    copyOfMaterial.setShader(KTSHADER::water);
    KTSHADER::currentShader = KTSHADER::water;
    delete KTSHADER::water;
    EXPECT_EQ(KTSHADER::water, nullptr);
    EXPECT_EQ(KTSHADER::currentShader, nullptr);
    EXPECT_EQ(material.getShader(), nullptr);
    EXPECT_EQ(copyOfMaterial.getShader(), nullptr);
}

TEST_F(ShaderTest, CleanUpDestroysTheApplicationsShadersToo) {
    KTSHADER onStack;
    new KTSHADER;
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 37u);
    EXPECT_TRUE(KTSHADER::cleanUp());
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 0u);
    EXPECT_THAT(named(), ::testing::Each(nullptr));
    EXPECT_FALSE(KTSHADER::cleanUp());
}

TEST_F(ShaderTest, CopyIsOnNoList) {
    KTSHADER shader;
    {
        KTSHADER copy(shader), assigned;
        EXPECT_EQ(copy.getId(), shader.getId());
        copy.setName("copy");
        EXPECT_EQ(KTSHADER::getNumberOfShaders(), 37u);
        const unsigned own = assigned.getId();
        assigned = shader;
        EXPECT_EQ(assigned.getId(), shader.getId());
        EXPECT_EQ(KTSHADER::findById(own), nullptr);
    }
    EXPECT_EQ(KTSHADER::getNumberOfShaders(), 36u);
    EXPECT_EQ(KTSHADER::findById(shader.getId()), &shader);
    EXPECT_EQ(KTSHADER::findByName("copy"), nullptr);
}

}  // namespace
}  // namespace keltra::test
