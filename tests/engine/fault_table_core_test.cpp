// SPDX-License-Identifier: Zlib
// Failures of the bridge to GL, of the settings and of the engine's own calls.

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

TEST_F(FaultTableTest, Bridge) {
    check({
        {"KT_glLightModelfv", [](Folder) { KT_glLightModelfv(GL_LIGHT_MODEL_AMBIENT, nullptr); }, kError,
         KT_FAULT_NULL, "KT_glLightModelfv: `params` is null"},
        {"KT_glLightfv", [](Folder) { KT_glLightfv(GL_LIGHT0, GL_AMBIENT, nullptr); }, kError, KT_FAULT_NULL,
         "KT_glLightfv: `params` is null"},
        {"KT_glMaterialfv", [](Folder) { KT_glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, nullptr); }, kError,
         KT_FAULT_NULL, "KT_glMaterialfv: `params` is null"},
        {"KT_glLoadMatrixf", [](Folder) { KT_glLoadMatrixf(nullptr); }, kError, KT_FAULT_NULL,
         "KT_glLoadMatrixf: `m` is null"},
        {"KT_glMultMatrixf", [](Folder) { KT_glMultMatrixf(nullptr); }, kError, KT_FAULT_NULL,
         "KT_glMultMatrixf: `m` is null"},
        {"KT_glGetFloatv", [](Folder) { KT_glGetFloatv(0, nullptr); }, kError, KT_FAULT_NULL,
         "KT_glGetFloatv: `out` is null"},
        {"KT_glGetFloatv",
         [](Folder) {
             float out[16];
             KT_glGetFloatv(2, out);
         },
         kError, KT_FAULT_ARGUMENT, "KT_glGetFloatv: `which` is 2, expected 0 to 1"},
        {"KT_glPopMatrix", [](Folder) { KT_glPopMatrix(); }, kError, KT_FAULT_STATE,
         "KT_glPopMatrix: the matrix stack is empty"},
        {"KT_glPushMatrix",
         [](Folder) {
             KT_glMatrixMode(GL_PROJECTION);
             for (int i = 0; i < 33; ++i) KT_glPushMatrix();
             for (int i = 0; i < 32; ++i) KT_glPopMatrix();
             KT_glMatrixMode(GL_MODELVIEW);
             const GlRecorder::Pause pause;
             while (glGetError() != GL_NO_ERROR) {
             }
         },
         kError, KT_FAULT_FULL, "KT_glPushMatrix: matrix stack, 32 at most: full"},
    });
}

TEST_F(FaultTableTest, TextsThatAreCut) {
    static KTSETTINGS cut;
    static const std::string tooLong(256, 'a');
    const auto path = [](void (KTSETTINGS::*call)(const char *)) {
        return [call](Folder) { (cut.*call)(tooLong.c_str()); };
    };
    const auto prefix = [](void (*call)(const char *)) {
        return [call](Folder) {
            call(tooLong.c_str());
            call(nullptr);
        };
    };
    const auto check = [this](const char *call, const std::function<void(Folder)> &provoke,
                              const char *argument = "path") {
        const std::string sentence = std::string(call) + ": `" + argument + "` is longer than 255 characters";
        FaultTableTest::check({{call, provoke, kWarning, KT_FAULT_ARGUMENT, sentence.c_str()}});
    };
    check("KTSETTINGS::setTitle", path(&KTSETTINGS::setTitle), "text");
    check("KTSETTINGS::setKTEPath", path(&KTSETTINGS::setKTEPath));
    check("KTSETTINGS::setKTAPath", path(&KTSETTINGS::setKTAPath));
    check("KTSETTINGS::setMPGPath", path(&KTSETTINGS::setMPGPath));
    check("KTSETTINGS::setTexturePath", path(&KTSETTINGS::setTexturePath));
    check("KTSETTINGS::setShaderPath", path(&KTSETTINGS::setShaderPath));
    check("KTSETTINGS::setFontPath", path(&KTSETTINGS::setFontPath));
    check("KELTRA::setKTEPath", prefix(KELTRA::setKTEPath));
    check("KTANIM::setKTAPath", prefix(KTANIM::setKTAPath));
    check("KTTEXTURE::setPath", prefix(KTTEXTURE::setPath));
    check("KTSHADER::setPath", prefix(KTSHADER::setPath));
    check("KTFONT::setPath", prefix(KTFONT::setPath));
    check("KTVIDEO::setMPGPath", prefix(KTVIDEO::setMPGPath));
    EXPECT_EQ(cut.getTitle(), tooLong.substr(1));
}

TEST_F(FaultTableTest, CallsOfAnActiveEngine) {
    check({
        {"KELTRA::init", [](Folder) { EXPECT_FALSE(KELTRA::init(nullptr)); }, kError, KT_FAULT_STATE,
         "KELTRA::init: the engine is active already"},
        {"KTSETTINGS::init", [](Folder) { EXPECT_FALSE(KTSETTINGS::init(nullptr)); }, kError, KT_FAULT_NULL,
         "KTSETTINGS::init: `settings` is null"},
        {"KTSETTINGS::init",
         [](Folder) {
             KTSETTINGS other;
             EXPECT_FALSE(KTSETTINGS::init(&other));
         },
         kError, KT_FAULT_STATE, "KTSETTINGS::init: the engine is active already"},
        {"KTELEMENT::init", [](Folder) { EXPECT_FALSE(KTELEMENT::init(1)); }, kError, KT_FAULT_STATE,
         "KTELEMENT::init: the engine is active already"},
        {"KTFONT::init", [](Folder) { EXPECT_FALSE(KTFONT::init()); }, kError, KT_FAULT_STATE,
         "KTFONT::init: the engine is active already"},
        {"KTMESH::init", [](Folder) { EXPECT_FALSE(KTMESH::init()); }, kError, KT_FAULT_STATE,
         "KTMESH::init: the engine is active already"},
        {"KTEMITTER::init", [](Folder) { EXPECT_FALSE(KTEMITTER::init()); }, kError, KT_FAULT_STATE,
         "KTEMITTER::init: the engine is active already"},
        {"KELTRA::recursiveInitBones",
         [](Folder) {
             KTNODE node;
             EXPECT_TRUE(KELTRA::recursiveInitBones(nullptr, &node));
         },
         kError, KT_FAULT_NULL, "KELTRA::recursiveInitBones: `root` is null"},
        {"KELTRA::recursiveInitBones",
         [](Folder) {
             KTNODE root;
             EXPECT_TRUE(KELTRA::recursiveInitBones(&root, nullptr));
         },
         kError, KT_FAULT_NULL, "KELTRA::recursiveInitBones: `node` is null"},
    });
}

TEST_F(FaultTableTest, AContextThatWasLost) {
    check({
        {"KELTRA::swap",
         [](Folder) {
             StartupFaults::loseContext();
             EXPECT_FALSE(KELTRA::swap());
         },
         kError, KT_FAULT_STATE, "KELTRA::swap: the GL context is lost; start the engine again"},
    });
    EXPECT_TRUE(KELTRA::swap());
}

TEST_F(FaultTableTest, CallsOfAnEngineThatIsNotActive) {
    ASSERT_TRUE(KELTRA::free());
    static KTELEMENT element;
    check({
        {"KELTRA::free", [](Folder) { EXPECT_FALSE(KELTRA::free()); }, kError, KT_FAULT_STATE,
         "KELTRA::free: the engine is not active"},
        {"KELTRA::swap", [](Folder) { EXPECT_FALSE(KELTRA::swap()); }, kError, KT_FAULT_STATE,
         "KELTRA::swap: the frame cannot be shown"},
        {"KTSETTINGS::free", [](Folder) { EXPECT_FALSE(KTSETTINGS::free()); }, kError, KT_FAULT_STATE,
         "KTSETTINGS::free: the engine is not active"},
        {"KTELEMENT::free", [](Folder) { EXPECT_FALSE(KTELEMENT::free()); }, kError, KT_FAULT_STATE,
         "KTELEMENT::free: the engine is not active"},
        {"KTELEMENT::pass",
         [](Folder) {
             KTNODE node;
             EXPECT_FALSE(KTELEMENT::pass(&node));
         },
         kError, KT_FAULT_STATE, "KTELEMENT::pass: the engine is not active"},
        {"KTEMITTER::free", [](Folder) { EXPECT_FALSE(KTEMITTER::free()); }, kError, KT_FAULT_STATE,
         "KTEMITTER::free: the engine is not active"},
        {"KTEMITTER::initialize", [](Folder) { EXPECT_FALSE(KTEMITTER().initialize()); }, kError,
         KT_FAULT_STATE, "KTEMITTER::initialize: the engine is not active"},
        {"KTEMITTER::render", [](Folder) { EXPECT_FALSE(KTEMITTER().render(&element)); }, kError,
         KT_FAULT_STATE, "KTEMITTER::render: the engine is not active"},
        {"KTFONT::putChar", [](Folder) { EXPECT_FALSE(KTFONT().putChar(0, 0, 'a', false)); }, kError,
         KT_FAULT_STATE, "KTFONT::putChar: the engine is not active"},
        {"KTFONT::putString", [](Folder) { EXPECT_FALSE(KTFONT().putString(0, 0, "a")); }, kError,
         KT_FAULT_STATE, "KTFONT::putString: the engine is not active"},
        {"KTMESH::animate",
         [](Folder) {
             KTMESH mesh;
             mesh.numberOfInfluences = 1;
             EXPECT_FALSE(mesh.animate(0));
         },
         kError, KT_FAULT_STATE, "KTMESH::animate: the engine is not active"},
        {"KTTEXTURE::update",
         [](Folder) {
             KTTEXTURE texture;
             EXPECT_TRUE(texture.create(4, 4, 3));
             EXPECT_FALSE(texture.update());
         },
         kError, KT_FAULT_STATE, "KTTEXTURE::update: there is no GL context"},
    });
}

}  // namespace
}  // namespace keltra::test
