// SPDX-License-Identifier: Zlib
#include <algorithm>
#include <limits>
#include <vector>

#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kOne = 65536;
constexpr std::int64_t kTwoTenths = 13107;
constexpr std::int64_t kSixTenths = 39321;

class MaterialTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        KTTEXTURE::texturingOff(16);
        KTOPENGL::blendingOff();
        KTMATERIAL::reset();
        GlRecorder::clear();
    }
    void TearDown() override {
        KTSETTINGS::useShaders = false;
        KTSHADER::disable();
        EngineTest::TearDown();
    }

    static std::vector<std::int64_t> color(GLenum pname) {
        for (const Call &call : GlRecorder::all("glMaterialxv"))
            if (call.arguments[1] == pname) return call.contents;
        return {};
    }
    static std::int64_t shininess() { return GlRecorder::last("glMaterialx").arguments[2]; }
};

TEST_F(MaterialTest, FreshMaterialSetsItsDefaults) {
    KTMATERIAL material;
    EXPECT_EQ(material.getName(), "[material " + std::to_string(material.getId()) + "]");
    EXPECT_EQ(material.getTimeStamp(), 0);
    EXPECT_EQ(material.getReferences(), 0);
    EXPECT_EQ(material.getAmbient(), R3XVECTOR4D(0.2f, 0.2f, 0.2f, 1));
    EXPECT_EQ(material.getDiffuse(), R3XVECTOR4D(0.6f, 0.6f, 0.6f, 1));
    EXPECT_EQ(material.getSpecular(), R3XVECTOR4D(0.2f, 0.2f, 0.2f, 1));
    EXPECT_EQ(material.getEmission(), R3XVECTOR4D(0, 0, 0, 1));
    EXPECT_EQ(material.getTransparency(), 1);
    EXPECT_EQ(material.getShininess(), 0);
    EXPECT_FALSE(material.isTransparent());
    EXPECT_FALSE(material.isTextured());
    EXPECT_FALSE(material.isSkinned());
    EXPECT_EQ(material.getShader(), nullptr);
    EXPECT_TRUE(material.render(nullptr));
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glMaterialxv", "glMaterialxv", "glMaterialxv", "glMaterialxv", "glMaterialx"));
    const std::vector<Call> calls = GlRecorder::calls();
    const GLenum order[] = {GL_EMISSION, GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_SHININESS};
    for (std::size_t i = 0; i < calls.size(); ++i) {
        EXPECT_EQ(calls[i].arguments[0], GL_FRONT_AND_BACK);
        EXPECT_EQ(calls[i].arguments[1], order[i]);
    }
    EXPECT_THAT(color(GL_AMBIENT), ElementsAre(kTwoTenths, kTwoTenths, kTwoTenths, kOne));
    EXPECT_THAT(color(GL_DIFFUSE), ElementsAre(kSixTenths, kSixTenths, kSixTenths, kOne));
    EXPECT_THAT(color(GL_SPECULAR), ElementsAre(kTwoTenths, kTwoTenths, kTwoTenths, kOne));
    EXPECT_THAT(color(GL_EMISSION), ElementsAre(0, 0, 0, kOne));
    EXPECT_EQ(shininess(), 0);
    EXPECT_FALSE(KTOPENGL::blending);
}

TEST_F(MaterialTest, FreshMaterialSwitchesBlendingAndTexturingOff) {
    KTOPENGL::blendingOn();
    KTTEXTURE::texturingOn(2);
    GlRecorder::clear();
    KTMATERIAL material;
    material.render(nullptr);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_BLEND}), 1);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_TEXTURE_2D}), 1);
    EXPECT_EQ(GlRecorder::count("glBlendFunc"), 0);
    EXPECT_FALSE(KTOPENGL::blending);
}

TEST_F(MaterialTest, TransparencyIsTheAlphaOfAllColors) {
    KTMATERIAL material;
    material.setTransparency(0.5f);
    material.setAmbient(1.0f, 1.0f, 1.0f, 0.1f);
    EXPECT_TRUE(material.isTransparent());
    material.render(nullptr);
    for (GLenum pname : {GL_EMISSION, GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR})
        EXPECT_EQ(color(pname)[3], kOne / 2);
    EXPECT_EQ(material.getAmbient().w, 0.5f) << "the stored alpha follows";
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
    EXPECT_EQ(GlRecorder::count("glBlendFunc", {GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA}), 1);
    EXPECT_TRUE(KTOPENGL::blending);
}

TEST_F(MaterialTest, BlendFunctionIsSetForEveryTransparentMaterial) {
    KTMATERIAL first, second;
    first.setTransparency(0.5f);
    second.setTransparency(0.25f);
    first.render(nullptr);
    second.render(nullptr);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
    EXPECT_EQ(GlRecorder::count("glBlendFunc"), 2);
}

TEST_F(MaterialTest, CurrentMaterialIsSetOnce) {
    KTMATERIAL material;
    material.render(nullptr);
    EXPECT_EQ(KTMATERIAL::currentMaterial, &material);
    GlRecorder::clear();
    KELTRA::timeStamp = 90000;
    EXPECT_TRUE(material.render(nullptr));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    EXPECT_EQ(material.getTimeStamp(), 90000);
    material.setShininess(10.0f);
    material.render(nullptr);
    EXPECT_THAT(GlRecorder::names(), IsEmpty()) << "a change shows after a reset";
    KTMATERIAL::reset();
    material.render(nullptr);
    EXPECT_EQ(shininess(), 10 * kOne);
}

TEST_F(MaterialTest, ShininessStaysWithinWhatGlTakes) {
    struct {
        float given;
        std::int64_t set;
    } const table[] = {{128.0f, 128 * kOne},
                       {0.5f, kOne / 2},
                       {129.0f, 128 * kOne},
                       {-1.0f, 0},
                       {std::numeric_limits<float>::infinity(), 128 * kOne},
                       {std::numeric_limits<float>::quiet_NaN(), 0}};
    KTMATERIAL material;
    for (const auto &row : table) {
        material.setShininess(row.given);
        KTMATERIAL::reset();
        material.render(nullptr);
        EXPECT_EQ(shininess(), row.set) << row.given;
    }
}

TEST_F(MaterialTest, TextureInAHigherSlotIsBoundThere) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(2, 2, 3));
    KTMATERIAL material;
    EXPECT_TRUE(material.setTexture(3, &texture));
    EXPECT_FALSE(material.isTextured());
    material.render(nullptr);
    EXPECT_EQ(KTTEXTURE::channelCache[3], &texture);
    EXPECT_TRUE(KTTEXTURE::channelActive[3]);
    EXPECT_EQ(GlRecorder::last("glBindTexture").arguments[1], texture.getGLId());
    EXPECT_EQ(GlRecorder::count("glDisable"), 0);
    material.setTexture(3, nullptr);
}

TEST_F(MaterialTest, SetTextureCountsUses) {
    KTTEXTURE a, b;
    KTMATERIAL material;
    EXPECT_TRUE(material.setTexture(0, &a));
    EXPECT_TRUE(material.isTextured());
    EXPECT_EQ(a.getReferences(), 1);
    EXPECT_TRUE(material.setTexture(0, &b));
    EXPECT_EQ(a.getReferences(), 0);
    EXPECT_EQ(b.getReferences(), 1);
    EXPECT_TRUE(material.setTexture(15, &b));
    EXPECT_EQ(b.getReferences(), 2);
    EXPECT_FALSE(material.setTexture(16, &a));
    EXPECT_EQ(material.getTexture(16), nullptr);
    EXPECT_EQ(material.getTexture(15), &b);
    EXPECT_TRUE(material.setTexture(0, nullptr));
    EXPECT_EQ(b.getReferences(), 1);
    EXPECT_TRUE(material.setTexture(15, &b)) << "the same once more";
    EXPECT_EQ(b.getReferences(), 1);
}

TEST_F(MaterialTest, CloneCopiesTheSurface) {
    KTTEXTURE texture;
    KTMATERIAL source, target;
    source.setName("stone");
    source.setDiffuse(0.1f, 0.2f, 0.3f, 0.4f);
    source.setEmission(R3XVECTOR4D(0.5f, 0.6f, 0.7f, 0.8f));
    source.setTransparency(0.25f);
    source.setShininess(9.0f);
    source.setTexture(4, &texture);
    source.setShader(KTSHADER::gaussian);
    source.setSkinning(true);
    source.incReferences();
    const unsigned id = target.getId();
    target.clone(&source);
    EXPECT_EQ(target.getName(), "stone" + std::to_string(id));
    EXPECT_EQ(target.getDiffuse(), source.getDiffuse());
    EXPECT_EQ(target.getEmission(), source.getEmission());
    EXPECT_EQ(target.getTransparency(), 0.25f);
    EXPECT_EQ(target.getShininess(), 9.0f);
    EXPECT_EQ(target.getTexture(4), &texture);
    EXPECT_EQ(target.getShader(), KTSHADER::gaussian);
    EXPECT_FALSE(target.isSkinned());
    EXPECT_EQ(target.getId(), id);
    EXPECT_EQ(target.getReferences(), 0);
    EXPECT_EQ(texture.getReferences(), 1);
    target.clone(nullptr);
    EXPECT_EQ(target.getShininess(), 9.0f);
}

TEST_F(MaterialTest, CloneOfALongNameIsCut) {
    KTMATERIAL source, target;
    source.setName(std::string(255, 'n').c_str());
    target.clone(&source);
    EXPECT_EQ(target.getName(), std::string(255, 'n'));
}

TEST_F(MaterialTest, NamesThatDoNotFitAreRefused) {
    KTMATERIAL material;
    material.setName("short");
    material.setName(nullptr);
    material.setName(std::string(256, 'n').c_str());
    EXPECT_STREQ(material.getName(), "short");
}

TEST_F(MaterialTest, IsFoundOnTheList) {
    const unsigned before = KTMATERIAL::getNumberOfMaterials();
    KTMATERIAL first, second;
    first.setName("Glass");
    second.setName("Glass");
    EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), before + 2);
    EXPECT_EQ(KTMATERIAL::findByName("Glass"), &first);
    EXPECT_EQ(KTMATERIAL::findByName("glass"), nullptr);
    EXPECT_EQ(KTMATERIAL::findByName(nullptr), nullptr);
    EXPECT_EQ(KTMATERIAL::findById(second.getId()), &second);
    EXPECT_EQ(first.getNext(), &second);
    EXPECT_EQ(second.getPrevious(), &first);
}

TEST_F(MaterialTest, CleanUpLeavesTexturesAlone) {
    KTTEXTURE texture;
    KTMATERIAL *material = new KTMATERIAL;
    material->setTexture(0, &texture);
    material->render(nullptr);
    EXPECT_TRUE(KTMATERIAL::cleanUp());
    EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), 0u);
    EXPECT_EQ(KTMATERIAL::currentMaterial, nullptr);
    EXPECT_EQ(texture.getReferences(), 1);
    EXPECT_FALSE(KTMATERIAL::cleanUp());
}

TEST_F(MaterialTest, DestroyedMaterialLeavesItsMeshes) {
    KTMESH mesh, copyOfMesh(mesh);
    KTMATERIAL *material = new KTMATERIAL;
    mesh.setMaterial(material);
    copyOfMesh.setMaterial(material);
    delete material;
    EXPECT_EQ(mesh.getMaterial(), nullptr);
    EXPECT_EQ(copyOfMesh.getMaterial(), nullptr);
}

TEST_F(MaterialTest, ATextureWrittenToTheFieldIsForgotten) {
    KTMATERIAL material;
    {
        KTTEXTURE texture;
        material.texture[3] = &texture;
    }
    EXPECT_EQ(material.getTexture(3), nullptr) << "a few materials are searched for any texture";
    const std::vector<KTMATERIAL> more(200);
    {
        KTTEXTURE texture;
        material.texture[3] = &texture;
        texture.markHeld();
    }
    EXPECT_EQ(material.getTexture(3), nullptr) << "and all for one that is held";
}

TEST_F(MaterialTest, DestroyingACopyLeavesTheOriginal) {
    KTTEXTURE texture;
    KTMATERIAL material;
    material.setTexture(0, &texture);
    const unsigned before = KTMATERIAL::getNumberOfMaterials();
    {
        KTMATERIAL copy(material);
        EXPECT_EQ(copy.getId(), material.getId());
        EXPECT_EQ(copy.getTexture(0), &texture);
        EXPECT_EQ(KTMATERIAL::getNumberOfMaterials(), before);
        copy.render(nullptr);
    }
    EXPECT_EQ(KTMATERIAL::currentMaterial, nullptr);
    EXPECT_EQ(KTMATERIAL::findById(material.getId()), &material);
    EXPECT_EQ(texture.getReferences(), 1);
}

TEST_F(MaterialTest, AssignedMaterialIsSetAnewAndStaysOnTheList) {
    KTMATERIAL first, second, last;
    second.render(nullptr);
    first.setShininess(3.0f);
    second = first;
    EXPECT_EQ(KTMATERIAL::currentMaterial, nullptr);
    EXPECT_EQ(second.getShininess(), 3.0f);
    EXPECT_EQ(second.getNext(), &last);
    EXPECT_EQ(second.getPrevious(), &first);
}

class ShaderChoiceTest : public MaterialTest {
   protected:
    // The switch goes off unless the shader that the material chose is operative.
    static bool chooses(KTSHADER *shader, KTMATERIAL &material, void *light) {
        if (!shader) return false;
        shader->vertexReady = shader->pixelReady = true;
        KTSHADER::enable();
        KTMATERIAL::reset();
        EXPECT_TRUE(material.render(light));
        const bool chosen = KTSHADER::enabled;
        shader->forceDeactivation();
        return chosen;
    }
    static unsigned chosenShaders(KTMATERIAL &material, void *light, KTSHADER **chosen) {
        unsigned count = 0;
        for (KTSHADER *shader = KTSHADER::getFirst(); shader; shader = shader->getNext())
            if (chooses(shader, material, light)) {
                *chosen = shader;
                ++count;
            }
        return count;
    }
};

TEST_F(ShaderChoiceTest, LightAndMaterialPickTheShader) {
    struct {
        std::int32_t light;
        bool skinned, shadowing;
        KTSHADER *plain, *textured;
    } const table[] = {
        {0, false, false, KTSHADER::pplOmni, KTSHADER::pplOmniT},
        {0, true, false, KTSHADER::pplOmniA, KTSHADER::pplOmniTA},
        {0, false, true, KTSHADER::pplOmni, KTSHADER::pplOmniT},
        {1, false, false, KTSHADER::pplDirect, KTSHADER::pplDirectT},
        {1, true, true, KTSHADER::pplDirectA, KTSHADER::pplDirectTA},
        {2, false, false, KTSHADER::pplSpot, KTSHADER::pplSpotT},
        {2, false, true, KTSHADER::pplSpotS, KTSHADER::pplSpotTS},
        {2, true, false, KTSHADER::pplSpotA, KTSHADER::pplSpotTA},
        {2, true, true, KTSHADER::pplSpotSA, KTSHADER::pplSpotTSA},
    };
    KTSETTINGS::useShaders = true;
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(2, 2, 3));
    for (const auto &row : table) {
        std::int32_t light = row.light;
        KTMATERIAL material;
        material.setSkinning(row.skinned);
        KELTRA::shadowing = row.shadowing;
        KTSHADER *chosen = nullptr;
        EXPECT_EQ(chosenShaders(material, &light, &chosen), 1u);
        EXPECT_EQ(chosen, row.plain) << light << row.skinned << row.shadowing;
        material.setTexture(0, &texture);
        EXPECT_EQ(chosenShaders(material, &light, &chosen), 1u);
        EXPECT_EQ(chosen, row.textured) << light << row.skinned << row.shadowing;
    }
}

TEST_F(ShaderChoiceTest, NoneWithoutShadersLightOrKnownType) {
    KTMATERIAL material;
    KTSHADER *chosen = nullptr;
    std::int32_t light = 0;
    EXPECT_EQ(chosenShaders(material, &light, &chosen), 0u) << "shaders are off";
    KTSETTINGS::useShaders = true;
    EXPECT_EQ(chosenShaders(material, nullptr, &chosen), 0u);
    for (std::int32_t unknown : {-1, 3, std::numeric_limits<std::int32_t>::min()}) {
        light = unknown;
        EXPECT_EQ(chosenShaders(material, &light, &chosen), 0u) << unknown;
    }
}

TEST_F(ShaderChoiceTest, MissingOrInoperativeShaderIsDisabled) {
    KTSETTINGS::useShaders = true;
    KTMATERIAL material;
    std::int32_t light = 0;
    KTSHADER::enable();
    material.render(&light);
    EXPECT_FALSE(KTSHADER::enabled);
    delete KTSHADER::pplOmni;
    KTSHADER::enable();
    KTMATERIAL::reset();
    EXPECT_TRUE(material.render(&light));
    EXPECT_FALSE(KTSHADER::enabled);
}

TEST_F(ShaderChoiceTest, OwnShaderComesFirst) {
    KTSETTINGS::useShaders = true;
    KTMATERIAL material;
    KTSHADER own;
    material.setShader(&own);
    std::int32_t light = 0;
    KTSHADER *chosen = nullptr;
    EXPECT_EQ(chosenShaders(material, &light, &chosen), 1u);
    EXPECT_EQ(chosen, &own);
    KTSETTINGS::useShaders = false;
    EXPECT_TRUE(chooses(&own, material, nullptr));
}

}  // namespace
}  // namespace keltra::test
