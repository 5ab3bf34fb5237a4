// SPDX-License-Identifier: Zlib
// How much stack loading and drawing take: the device has 64 KB for the application and the engine.

#include <cstdio>
#include <functional>
#include <string>

#include "formats/limits.h"
#include "tests/scene/scene_parts.h"
#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/stack_use.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

// Twice as much where pointers have 64 bits and the engine may be built without optimisation.
constexpr std::size_t kMostStack = sizeof(void *) == 4 ? 10 * 1024 : 20 * 1024;

class StackUseTest : public EngineTest {
   protected:
    void SetUp() override {
        if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer makes frames larger";
        EngineTest::SetUp();
        setPaths(KELTRA_EXAMPLE_DATA);
        // The measuring thread has no context.
        GlRecorder::setRecording(false);
        GlRecorder::setStubbed(true);
    }
    void TearDown() override {
        if (!KELTRA::isActive()) return;
        GlRecorder::setStubbed(false);
        GlRecorder::setRecording(true);
        EngineTest::TearDown();
        setPaths(nullptr);
    }
    static void setPaths(const char *folder) {
        KELTRA::setKTEPath(folder);
        KTANIM::setKTAPath(folder);
        KTTEXTURE::setPath(folder);
        KTFONT::setPath(folder);
        KTVIDEO::setMPGPath(folder);
    }

    static void expectLittle(const char *what, const std::function<void()> &work) {
        const std::size_t bytes = StackUse::of(work);
        std::printf("%s: %zu bytes\n", what, bytes);
        EXPECT_GT(bytes, 0u) << what;
        EXPECT_LE(bytes, kMostStack) << what;
    }
    static void draw(KTCAMERA *camera, KTNODE *scene, KTNODE *interface) {
        EXPECT_TRUE(KELTRA::clear(true, true, false) && KELTRA::begin3D(camera));
        EXPECT_TRUE(!scene || scene->pass());
        EXPECT_TRUE(KELTRA::end3D() && KELTRA::begin2D());
        EXPECT_TRUE(!interface || interface->pass());
        EXPECT_TRUE(KELTRA::end2D());
    }

    TempFolder folder;
};

TEST_F(StackUseTest, OfLoading) {
    for (const char *name : {"scene.kte", "figure.kte", "interface.xml"})
        expectLittle(name, [name] { EXPECT_NE(KELTRA::load(name), nullptr); });
    expectLittle("figure_walk.kta", [] { EXPECT_TRUE((new KTANIM)->load("figure_walk.kta")); });
    expectLittle("grass_d.tga", [] { EXPECT_TRUE((new KTTEXTURE)->load("scene_grass_d.tga")); });
    expectLittle("font.txt", [] { EXPECT_TRUE((new KTFONT)->loadKerning("font.txt")); });
    expectLittle("fountain.xml",
                 [] { EXPECT_TRUE((new KTEMITTER)->load(KELTRA_EXAMPLE_DATA "fountain.xml")); });
    expectLittle("film.m1v", [] { EXPECT_TRUE((new KTVIDEO)->load("film.m1v")); });
    expectLittle("scene.cfg", [] { EXPECT_TRUE(KTSETTINGS().load(KELTRA_EXAMPLE_DATA "scene.cfg")); });
}

TEST_F(StackUseTest, OfLoadingWhatIsNestedDeepest) {
    std::string open = "<root>", close;
    for (unsigned int i = 1; i < kMaxXmlNesting; ++i) {
        open += "<window>";
        close = "</window>" + close;
    }
    close += "</root>";
    KELTRA::setKTEPath(folder.prefix().c_str());
    // What is not plain reaches the XML parser.
    const char *const innermost[] = {"", "text", "<![CDATA[text]]>", "<name value=n/>", "<!DOCTYPE n>"};
    for (const char *one : innermost) {
        folder.write("deep.xml", open + one + close);
        expectLittle("deep.xml", [] { EXPECT_NE(KELTRA::load("deep.xml"), nullptr); });
    }
    for (const char *one : {"&#zz;", "<name value/>", "<name value>", "</name>", "<window>"}) {
        folder.write("wrong.xml", open + one + close);
        expectLittle("wrong.xml", [] { EXPECT_EQ(KELTRA::load("wrong.xml"), nullptr); });
    }

    formats::Node node = plainNode("leaf");
    for (int i = 0; i < 254; ++i) {
        formats::Node parent = plainNode("level");
        parent.children = {std::move(node)};
        node = std::move(parent);
    }
    formats::Scene scene;
    scene.root = std::move(node);
    folder.write("deep.kte", formats::writeKte(scene, formats::KteVersion::k16a));
    expectLittle("deep.kte", [] {
        KTNODE *root = KELTRA::load("deep.kte");
        ASSERT_NE(root, nullptr);
        draw(nullptr, root, nullptr);
    });
}

TEST_F(StackUseTest, OfAFrame) {
    KTNODE *scene = KELTRA::load("scene.kte"), *interface = KELTRA::load("interface.xml");
    KTNODE *figure = KELTRA::load("figure.kte");
    KTANIM *walk = new KTANIM;
    ASSERT_TRUE(scene && interface && figure && walk->load("figure_walk.kta"));
    KTCAMERA camera;
    camera.setPosition(0.0f, 5.8f, 21.0f);
    expectLittle("the demo and the interface", [&] { draw(&camera, scene, interface); });
    expectLittle("a character", [&] {
        EXPECT_TRUE(walk->apply(3, figure));
        draw(&camera, figure, nullptr);
    });
    KTEMITTER sparks;
    sparks.setNumberOfParticles(512);
    sparks.setMaximumSpin(90);
    sparks.setSpinning(12.5f);
    expectLittle("particles that turn", [&] { draw(&camera, &sparks, nullptr); });
    expectLittle("picking", [&] {
        draw(&camera, scene, nullptr);
        KELTRA::select(120, 160);
    });
    expectLittle("events", [&] {
        unsigned id = 0;
        KTELEMENT::manageGUIEvents('a', 60, 60, 1, 0, &id);
    });
}

}  // namespace
}  // namespace keltra::test
