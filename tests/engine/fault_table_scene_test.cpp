// SPDX-License-Identifier: Zlib
// Failures of scenes, films, the text parser, start-up and shut-down.

#include "tests/engine/fault_table.h"
#include "tests/scene/scene_parts.h"

namespace keltra::test {
namespace {

std::vector<std::uint8_t> castle() {
    formats::Node root = plainNode("root", {stripNode("door", 4, "wood")});
    formats::Scene scene = sceneOf(root);
    formats::Material wood;
    wood.name = "wood";
    wood.texture = "[none]";
    scene.materials.push_back(wood);
    return formats::writeKte(scene, formats::KteVersion::k16a);
}

Provoke load(const std::vector<std::uint8_t> &bytes, bool loads) {
    return [bytes, loads](const TempFolder &folder) {
        KTNODE::cleanUp();
        KTMATERIAL::cleanUp();
        folder.write("castle.kte", bytes);
        KELTRA::setKTEPath(folder.prefix().c_str());
        KTTEXTURE::setPath(folder.prefix().c_str());
        EXPECT_EQ(KELTRA::load("castle.kte") != nullptr, loads);
    };
}

// The castle with another byte.
Provoke damaged(std::size_t offset, std::uint8_t value) {
    std::vector<std::uint8_t> bytes = castle();
    bytes[offset] = value;
    return load(bytes, false);
}

Provoke changed(const std::function<void(formats::Scene &)> &change) {
    formats::Scene scene = sceneOf(plainNode("root", {stripNode("door", 4, "wood")}));
    formats::Material wood;
    wood.name = "wood";
    wood.texture = "[none]";
    scene.materials.push_back(wood);
    change(scene);
    return load(formats::writeKte(scene, formats::KteVersion::k16a), true);
}

TEST_F(FaultTableTest, Scenes) {
    std::vector<std::uint8_t> cut = castle();
    cut.resize(40);
    check({
        {"KELTRA::load", [](const TempFolder &) { EXPECT_FALSE(KELTRA::load(nullptr)); }, kError,
         KT_FAULT_NULL, "KELTRA::load: `fileName` is null"},
        {"KELTRA::load",
         [](const TempFolder &folder) {
             KELTRA::setKTEPath(folder.prefix().c_str());
             EXPECT_FALSE(KELTRA::load("none.kte"));
         },
         kError, KT_FAULT_FILE_MISSING, "KELTRA::load: %Dnone.kte: the file does not exist"},
        {"KELTRA::load",
         [](const TempFolder &folder) {
             KELTRA::setKTEPath(folder.prefix().c_str());
             EXPECT_FALSE(KELTRA::load("."));
         },
         kError, KT_FAULT_FILE_KIND, "KELTRA::load: %D.: not a regular file"},
        {"KELTRA::load",
         [](const TempFolder &) { EXPECT_FALSE(KELTRA::load(std::string(600, 'a').c_str())); }, kError,
         KT_FAULT_FILE_NAME, "KELTRA::load: the file name is empty or too long"},
        {"KELTRA::load", load({}, false), kError, KT_FAULT_FILE_EMPTY,
         "KELTRA::load: %Dcastle.kte: the file is empty"},
        {"KELTRA::load", damaged(12, '7'), kError, KT_FAULT_DATA,
         "KELTRA::load: %Dcastle.kte, byte 0: magic: not a scene file of version 1.5a or 1.6a", 0},
        {"KELTRA::load", damaged(16, 2), kError, KT_FAULT_DATA,
         "KELTRA::load: %Dcastle.kte, byte 15: material count: more than the rest of the file can hold "
         "(found 513)",
         15},
        {"KELTRA::load", load(cut, false), kError, KT_FAULT_DATA, nullptr, 15},
        {"KELTRA::load",
         [](const TempFolder &folder) {
             folder.write("desk.xml", "<root>\n<bax/></root>");
             KELTRA::setKTEPath(folder.prefix().c_str());
             EXPECT_TRUE(KELTRA::load("desk.xml"));
         },
         kWarning, KT_FAULT_UNKNOWN,
         "KELTRA::load: %Ddesk.xml, line 2: `bax`: unknown element of `root`; did you mean `box`?", -1, 2},
        {"KELTRA::load", changed([](formats::Scene &scene) { scene.materials[0].texture = "oak.tga"; }),
         kWarning, KT_FAULT_FILE_MISSING,
         "KELTRA::load: %Doak.tga (needed by %Dcastle.kte): the file does not exist"},
        {"KELTRA::load", changed([](formats::Scene &scene) {
             scene.materials[0].texture = "oak.tga";
             scene.materials.push_back(scene.materials[0]);
         }),
         kWarning, KT_FAULT_FILE_MISSING,
         "KELTRA::load: %Doak.tga (needed by %Dcastle.kte): the file does not exist"},
        {"KELTRA::load", changed([](formats::Scene &scene) { scene.root.children[0].mesh.material = "wod"; }),
         kWarning, KT_FAULT_UNKNOWN,
         "KELTRA::load: %Dcastle.kte: `wod`: unknown material of mesh `door`; did you mean `wood`?"},
        {"KELTRA::load", changed([](formats::Scene &scene) {
             formats::MeshData &mesh = scene.root.children[0].mesh;
             mesh.influences = 1;
             mesh.influenceBones.assign(4, 0);
             mesh.influenceWeights.assign(4, 1.0f);
             mesh.boneNames = {"hinge"};
         }),
         kWarning, KT_FAULT_UNKNOWN, "KELTRA::load: %Dcastle.kte: `hinge`: unknown bone of mesh `door`"},
        {"KTMESH::resetBones", [](const TempFolder &) { EXPECT_FALSE(KTMESH().resetBones(nullptr)); }, kError,
         KT_FAULT_NULL, "KTMESH::resetBones: `root` is null"},
    });
}

TEST_F(FaultTableTest, AGoodSceneMakesNoFault) {
    KTFAULTS::clear();
    load(castle(), true)(folder);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

TEST_F(FaultTableTest, FilmsAndTexts) {
    check({
        {"KTVIDEO::load",
         [](const TempFolder &folder) {
             KTVIDEO::setMPGPath(folder.prefix().c_str());
             KTVIDEO video;
             EXPECT_FALSE(video.load("none.m1v"));
         },
         kError, KT_FAULT_FILE_MISSING, "KTVIDEO::load: %Dnone.m1v: the file does not exist"},
        {"KTVIDEO::load",
         [](const TempFolder &) { EXPECT_FALSE(KTVIDEO().load(std::string(256, 'a').c_str())); }, kError,
         KT_FAULT_FILE_NAME, nullptr},
        {"vnfOpenParser", [](const TempFolder &) { EXPECT_FALSE(vnfOpenParser(nullptr, "settings.txt")); },
         kError, KT_FAULT_NULL, nullptr},
        {"vnfOpenParser",
         [](const TempFolder &) {
             vnfParser parser = {};
             EXPECT_FALSE(vnfOpenParser(&parser, nullptr));
         },
         kError, KT_FAULT_NULL, "vnfOpenParser: `path` is null"},
        {"vnfOpenParser",
         [](const TempFolder &folder) {
             vnfParser parser = {};
             EXPECT_FALSE(vnfOpenParser(&parser, folder.path("none").c_str()));
         },
         kError, KT_FAULT_FILE_MISSING, "vnfOpenParser: %Dnone: the file does not exist"},
        {"vnfOpenParser",
         [](const TempFolder &folder) {
             vnfParser parser = {};
             EXPECT_FALSE(vnfOpenParser(&parser, folder.write("empty", "").c_str()));
         },
         kError, KT_FAULT_FILE_EMPTY, "vnfOpenParser: %Dempty: the file is empty"},
        {"vnfCloseParser", [](const TempFolder &) { EXPECT_FALSE(vnfCloseParser(nullptr)); }, kError,
         KT_FAULT_NULL, "vnfCloseParser: `parser` is null"},
        {"vnfCloseParser",
         [](const TempFolder &) {
             vnfParser parser = {};
             EXPECT_FALSE(vnfCloseParser(&parser));
         },
         kError, KT_FAULT_STATE, "vnfCloseParser: the parser holds no text"},
    });
}

// Starts an engine that has been stopped, while the call fails once.
Provoke startWithout(const char *call) {
    return [call](const TempFolder &) {
        KELTRA::free();
        KTFAULTS::clear();
        StartupFaults::clear();
        StartupFaults::fail(call);
        KTSETTINGS settings;
        EXPECT_FALSE(KELTRA::init(&settings));
        StartupFaults::clear();
        const KTFAULT fault = *KTFAULTS::getLast();
        EXPECT_NE(fault.code, KT_FAULT_NONE);
    };
}

TEST_F(FaultTableTest, StartsThatAreNone) {
    check({
        {"KELTRA::init", [](const TempFolder &) { EXPECT_FALSE(KELTRA::init(nullptr)); }, kError,
         KT_FAULT_STATE, "KELTRA::init: the engine is active already"},
        {"KTSETTINGS::init",
         [](const TempFolder &) {
             KTSETTINGS settings;
             EXPECT_FALSE(KTSETTINGS::init(&settings));
         },
         kError, KT_FAULT_STATE, "KTSETTINGS::init: the engine is active already"},
        {"KELTRA::free",
         [](const TempFolder &) {
             EXPECT_TRUE(KELTRA::free());
             EXPECT_FALSE(KELTRA::free());
         },
         kError, KT_FAULT_STATE, "KELTRA::free: the engine is not active"},
        {"KTSETTINGS::free", [](const TempFolder &) { EXPECT_FALSE(KTSETTINGS::free()); }, kError,
         KT_FAULT_STATE, "KTSETTINGS::free: the engine is not active"},
        {"KTSETTINGS::init", [](const TempFolder &) { EXPECT_FALSE(KTSETTINGS::init(nullptr)); }, kError,
         KT_FAULT_NULL, "KTSETTINGS::init: `settings` is null"},
        {"KELTRA::init",
         [](const TempFolder &) {
             KTSETTINGS settings;
             settings.setWindowX(-3);
             EXPECT_FALSE(KELTRA::init(&settings));
         },
         kError, KT_FAULT_DISPLAY, "KELTRA::init: no display: no mode of -3 x 320 pixels and 16 bits"},
    });
}

TEST_F(FaultTableTest, StepsOfStartUp) {
    const struct {
        const char *call, *beginning;
        KT_FAULT_CODE code;
    } steps[] = {
        {"SDL_Init", "KELTRA::init: no display", KT_FAULT_DISPLAY},
        {"SDL_VideoModeOK", "KELTRA::init: no display: no mode of 240 x 320 pixels and 16 bits",
         KT_FAULT_DISPLAY},
        {"SDL_SetVideoMode", "KELTRA::init: the step `SDL_SetVideoMode` of start-up failed", KT_FAULT_START},
        {"eglInitialize", "KELTRA::init: the step `eglInitialize` of start-up failed: EGL error 0x",
         KT_FAULT_START},
        {"eglChooseConfig", "KELTRA::init: the step `eglChooseConfig` of start-up failed", KT_FAULT_START},
        {"eglCreateWindowSurface", "KELTRA::init: the step `eglCreateWindowSurface` of start-up failed",
         KT_FAULT_START},
        {"eglCreateContext", "KELTRA::init: the step `eglCreateContext` of start-up failed", KT_FAULT_START},
        {"eglMakeCurrent", "KELTRA::init: the step `eglMakeCurrent` of start-up failed", KT_FAULT_START},
    };
    for (const auto &[call, beginning, code] : steps) {
        startWithout(call)(folder);
        EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 1u) << call;
        EXPECT_EQ(KTFAULTS::getLast()->code, code) << call;
        const std::string sentence = sentenceOf(*KTFAULTS::getLast());
        EXPECT_EQ(sentence.find(kFaultTexts ? beginning : "KELTRA::init: fault 3"), 0u) << sentence;
    }
}

TEST_F(FaultTableTest, AHandlerMayLoadAndMayNotStop) {
    KTTEXTURE::setPath(folder.prefix().c_str());
    KTFAULTS::setHandler(
        [](const KTFAULT *, void *) {
            EXPECT_FALSE(KELTRA::free());
            KTTEXTURE other;
            EXPECT_FALSE(other.load("instead.tga"));
            (new KTLABEL)->write("%s", "A texture is missing");
        },
        nullptr);
    KTTEXTURE texture;
    KTFAULTS::clear();
    EXPECT_FALSE(texture.load("none.tga"));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 4u)
        << "this load, and the handler's three calls: no font either";
    EXPECT_TRUE(KELTRA::isActive());
}

}  // namespace
}  // namespace keltra::test
