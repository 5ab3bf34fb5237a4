// SPDX-License-Identifier: Zlib
// Picking in whole scenes: what is found at a point is what was drawn there.

#include <keltra/engine.h>

#include <random>

#include "tests/scene/scene_parts.h"
#include "tests/support/emulated.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/shapes.h"

namespace keltra::test {
namespace {

constexpr unsigned kMeshes = 300;
constexpr int kPoints = 200;

class PickingSceneTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        KTTEXTURE::setPath(folder.prefix().c_str());
    }
    void TearDown() override {
        EngineTest::TearDown();
        KTTEXTURE::setPath(nullptr);
        KELTRA::setKTEPath(nullptr);
        KTANIM::setKTAPath(nullptr);
    }

    float uniform(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random); }

    /// Spikes of all sizes and directions, each of a material that emits a colour of its own, its number in
    /// 5-6-5 bits. A black light switches lighting on, without which materials have no colour.
    formats::Scene makeSpikes() {
        formats::Scene scene = sceneOf(plainNode("root", {lightNode("light")}));
        scene.root.children[0].light.color = {0.0f, 0.0f, 0.0f};
        for (unsigned number = 1; number <= kMeshes; ++number) {
            formats::Material material;
            material.name = "shine" + std::to_string(number);
            material.ambient = material.diffuse = material.specular = {0.0f, 0.0f, 0.0f, 1.0f};
            const unsigned code = colorOf(number);
            material.emission = {float(code >> 11) / 31.0f, float(code >> 5 & 63) / 63.0f,
                                 float(code & 31) / 31.0f, 1.0f};
            scene.materials.push_back(material);
            const formats::Vec3 tip = {uniform(-3, 3), uniform(-3, 3), uniform(-3, 3)};
            formats::Node node =
                spikeNode("spike" + std::to_string(number), material.name, tip, uniform(0.3f, 1.5f));
            node.position = {uniform(-9, 9), uniform(-12, 12), uniform(-40, -20)};
            scene.root.children.push_back(node);
        }
        return scene;
    }

    // Far from one another, never 0.
    static unsigned colorOf(unsigned number) { return number * 211u % 65536u; }

    static unsigned colorAt(const Image &picture, int x, int y) {
        const std::array<int, 3> pixel = picture.at(x, y);
        return static_cast<unsigned>(pixel[0] >> 3 << 11 | pixel[1] >> 2 << 5 | pixel[2] >> 3);
    }

    /// Half of the spikes get a code, the others are known by their id. Background is 0.
    static std::vector<unsigned> codesOf(KTNODE *root) {
        std::vector<unsigned> codes = {0};
        for (unsigned number = 1; number <= kMeshes; ++number) {
            KTNODE *spike = root->getChild(number);
            if (number % 2) spike->setAuxId(60000 + number);
            codes.push_back(number % 2 ? spike->getAuxId() : spike->getId());
        }
        return codes;
    }

    /// The code that the picture shows at a pixel; its colour must be one of those drawn.
    static unsigned codeAt(const Image &picture, int x, int y, const std::vector<unsigned> &codes) {
        const unsigned color = colorAt(picture, x, y);
        for (unsigned number = 0; number <= kMeshes; ++number)
            if (colorOf(number) == color) return codes[number];
        ADD_FAILURE() << "colour " << color << " at " << x << ", " << y;
        return 0;
    }

    Image drawScene(KTNODE *root, KTCAMERA *camera = nullptr) {
        KELTRA::clear(true, true, false);
        KELTRA::begin3D(camera);
        root->pass();
        KELTRA::end3D();
        return captureFrame();
    }

    void expectPicksWhatIsDrawn() {
        // Close clipping planes: where two depths come out equal, drawing keeps the first and picking the
        // last.
        KTOPENGL::setNearPlane(15.0f);
        KTOPENGL::setFarPlane(45.0f);
        KTOPENGL::resize(0, 0, 240, 320);
        KTOPENGL::setBackgroundColor(0.0f, 0.0f, 0.0f, 0.0f);
        KTOPENGL::setGlobalAmbientLight(0.0f, 0.0f, 0.0f, 1.0f);
        KTNODE *root = loadScene(folder, makeSpikes());
        ASSERT_NE(root, nullptr);
        const std::vector<unsigned> codes = codesOf(root);
        const Image picture = drawScene(root);
        const int points = kPoints / sampled(8);
        int hits = 0;
        for (int i = 0; i < points; ++i) {
            const int column = static_cast<int>(random() % 240),
                      row = static_cast<int>(random() % 320);  // from the top
            // The point whose pixel this is: rows count from 1, and landscape points are turned.
            const int x = KTSETTINGS::landscape ? row + 1 : column;
            const int y = KTSETTINGS::landscape ? 320 - column : row + 1;
            const unsigned expected = codeAt(picture, column, row, codes);
            ASSERT_EQ(KELTRA::select(x, y), expected) << "column " << column << ", row " << row;
            hits += expected != 0;
        }
        EXPECT_GT(hits, points / 3) << "the test sees too little";
        EXPECT_LT(hits, points);
    }

    TempFolder folder;
    std::mt19937 random{20};
};

class LandscapePickingSceneTest : public PickingSceneTest {
   protected:
    void prepare(KTSETTINGS &settings) override { settings.setLandscape(true); }
};

TEST_F(PickingSceneTest, FindsAmongThreeHundredMeshesTheOneThatWasDrawn) { expectPicksWhatIsDrawn(); }

TEST_F(LandscapePickingSceneTest, FindsAmongThreeHundredMeshesTheOneThatWasDrawn) {
    expectPicksWhatIsDrawn();
}

/// The sample character, with his texture and skin.
class PickingFigureTest : public PickingSceneTest {
   protected:
    void SetUp() override {
        PickingSceneTest::SetUp();
        KELTRA::setKTEPath(KELTRA_EXAMPLE_DATA);
        KTANIM::setKTAPath(KELTRA_EXAMPLE_DATA);
        KTTEXTURE::setPath(KELTRA_EXAMPLE_DATA);
        garden = KELTRA::load("garden.kte");
        ASSERT_NE(garden, nullptr);
        camera.setTargetNode(&camera);
        camera.setPosition(0.0f, 3.2f, 10.4f);
        camera.setTarget(0.0f, 2.75f, 0.0f);
    }

    /// A figure below the garden's root; null when a file is damaged.
    KTMESH *addFigure() {
        KTNODE *figure = KELTRA::load("figure.kte");
        if (!figure) return nullptr;
        figure->link(garden);
        return static_cast<KTMESH *>(figure->findByNameInHierarchy("figureSkin"));
    }

    KTNODE *garden = nullptr;
    KTCAMERA camera;
};

TEST_F(PickingFigureTest, ASkinIsPickedWhereItsPoseHasTakenIt) {
    KTMESH *skin = addFigure();
    ASSERT_NE(skin, nullptr);
    skin->setAuxId(1000);
    drawScene(garden, &camera);
    EXPECT_EQ(KELTRA::select(120, 190), 1000u) << "his chest";
    std::vector<std::pair<int, int>> free;  // beside his head, where the arm hangs down in the bind pose
    for (int x = 80; x < 105; x += 4)
        for (int y = 185; y < 215; y += 4)
            if (KELTRA::select(x, y) != 1000u) free.emplace_back(x, y);
    ASSERT_FALSE(free.empty());
    KTANIM *wave = new KTANIM;
    ASSERT_TRUE(wave->load("figure_wave.kta"));
    wave->setTranslating(true);
    bool reached = false;
    for (unsigned frame = 0; frame < wave->getNumberOfFrames(); frame += 4) {
        wave->apply(frame, skin->getParent());
        drawScene(garden, &camera);
        for (const std::pair<int, int> &point : free)
            reached = reached || KELTRA::select(point.first, point.second) == 1000u;
    }
    EXPECT_TRUE(reached) << "by the waving arm";
}

TEST_F(PickingFigureTest, TheSeventeenthSkinIsNeitherDrawnNorPicked) {
    for (unsigned i = 1; i <= 17; ++i) {
        KTMESH *skin = addFigure();
        ASSERT_NE(skin, nullptr);
        skin->setAuxId(i);
    }
    drawScene(garden, &camera);
    EXPECT_EQ(KELTRA::select(120, 190), 16u) << "all stand in one place, where the last one drawn wins";
}

TEST_F(PickingFigureTest, TheNextFrameLooksAsIfNothingHadHappened) {
    ASSERT_NE(addFigure(), nullptr);
    static_cast<KTMESH *>(garden->findByNameInHierarchy("halo3"))->setDisplayStatus(true);
    const Image before = drawScene(garden, &camera);
    for (int i = 0; i < 20 / sampled(4); ++i)
        KELTRA::select(static_cast<int>(random() % 240), static_cast<int>(random() % 320));
    EXPECT_EQ(drawScene(garden, &camera).pixels, before.pixels);
}

TEST_F(PickingFigureTest, TheRestOfTheFrameIsDrawnAsWithoutPicking) {
    class Banner : public KTNODE {
       public:
        Banner() { type = KT_CUSTOM; }
        bool render(void *) override {
            static const GLfixed corners[] = {0, 0, 50 << 16, 0, 0, 20 << 16};
            KTOPENGL::colorArrayOff();
            KTOPENGL::textureArrayOff();
            glVertexPointer(2, GL_FIXED, 0, corners);
            if (KTOPENGL::getProfile() == KT_PROFILE_NORMAL) glDrawArrays(GL_TRIANGLES, 0, 3);
            return true;
        }
    } banner;
    const auto banners = [&banner] {
        KELTRA::begin2D();
        KT_glColor4f(1.0f, 0.0f, 0.0f, 1.0f);
        KTOPENGL::cullingOff();
        banner.pass();
        KELTRA::end2D();
        KTOPENGL::cullingOn();
        return captureFrame();
    };
    drawScene(garden, &camera);
    const Image without = banners();
    drawScene(garden, &camera);
    KELTRA::select(10, 10);  // below the banner
    EXPECT_EQ(banners().pixels, without.pixels);
}

}  // namespace
}  // namespace keltra::test
