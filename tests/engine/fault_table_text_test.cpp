// SPDX-License-Identifier: Zlib
// Failures of the loaders of text files: settings, kerning, interfaces, emitters; and their warnings.

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

Provoke withSettings(const std::string &text) {
    return [text](const TempFolder &folder) {
        KTSETTINGS settings;
        EXPECT_TRUE(settings.load(folder.write("user.cfg", text).c_str()));
    };
}

TEST_F(FaultTableTest, Settings) {
    check({
        {"KTSETTINGS::load", [](const TempFolder &) { EXPECT_FALSE(KTSETTINGS().load(nullptr)); }, kError,
         KT_FAULT_NULL, "KTSETTINGS::load: `path` is null"},
        {"KTSETTINGS::load",
         [](const TempFolder &folder) { EXPECT_FALSE(KTSETTINGS().load(folder.path("none.cfg").c_str())); },
         kError, KT_FAULT_FILE_MISSING, "KTSETTINGS::load: %Dnone.cfg: the file does not exist"},
        {"KTSETTINGS::load", withSettings(""), kWarning, KT_FAULT_FILE_EMPTY,
         "KTSETTINGS::load: %Duser.cfg: the file is empty"},
        {"KTSETTINGS::load", withSettings("# mine\nKELTRA_windowX 320\n"), kWarning, KT_FAULT_MISSING,
         "KTSETTINGS::load: %Duser.cfg, line 2: `KELTRA_windowX`: `=` is missing", -1, 2},
        {"KTSETTINGS::load", withSettings("KELTRA_windowx = 320\n"), kWarning, KT_FAULT_UNKNOWN,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_windowx`: unknown key; did you mean "
         "`KELTRA_windowX`?",
         -1, 1},
        {"KTSETTINGS::load", withSettings("windowX = 320\nKELTAR_windowY=2\n"), kWarning, KT_FAULT_UNKNOWN,
         "KTSETTINGS::load: %Duser.cfg, line 2: `KELTAR_windowY`: unknown key; did you mean "
         "`KELTRA_windowY`?",
         -1, 2},
        {"KTSETTINGS::load", withSettings("KELTRA_gamma=3\r\n"), kWarning, KT_FAULT_UNKNOWN,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_gamma`: unknown key", -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_AZ_az_09=3\n"), kWarning, KT_FAULT_UNKNOWN,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_AZ_az_09`: unknown key", -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_windowX = 320 px\n"), kWarning, KT_FAULT_VALUE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_windowX`: found `320px`, expected a whole number", -1,
         1},
        {"KTSETTINGS::load", withSettings("KELTRA_windowX = 99999999999\n"), kWarning, KT_FAULT_VALUE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_windowX`: found `99999999999`, expected "
         "-2147483648 to 2147483647",
         -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_landscape = yes\n"), kWarning, KT_FAULT_VALUE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_landscape`: found `yes`, expected a whole number", -1,
         1},
        {"KTSETTINGS::load", withSettings("KELTRA_landscape = 256\n"), kWarning, KT_FAULT_VALUE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_landscape`: found `256`, expected 0 or 1", -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_ktePath = data/\n"), kWarning, KT_FAULT_VALUE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_ktePath`: found `data/`, expected a text between "
         "two quotes",
         -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_ktePath = \"my data/\"\n"), kWarning, KT_FAULT_VALUE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `KELTRA_ktePath`: found `\"mydata/\"`, expected a text "
         "without blanks: they are lost",
         -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_windowX=1\nKELTRA_windowX=2\n"), kWarning,
         KT_FAULT_REPEATED,
         "KTSETTINGS::load: %Duser.cfg, line 2: `KELTRA_windowX` is there again: the first one counts", -1,
         2},
        {"KTSETTINGS::load", withSettings("full screen please\n"), kWarning, KT_FAULT_LINE,
         "KTSETTINGS::load: %Duser.cfg, line 1: `fullscreenplease`: the line cannot be read, expected a key, "
         "`=` and a value",
         -1, 1},
        {"KTSETTINGS::load", withSettings("KELTRA_windowX=1" + std::string(300, ' ') + "\n"), kWarning,
         KT_FAULT_LIMIT,
         "KTSETTINGS::load: %Duser.cfg, line 1: line: longer than 255 characters, the rest is not read", -1,
         1},
    });
}

TEST_F(FaultTableTest, GoodSettingsMakeNoFault) {
    KTFAULTS::clear();
    withSettings(
        "# all kinds\r\nKELTRA_windowX = 320\r\nKELTRA_landscape=1\r\nKELTRA_ktePath = \"data/\" # here\r\n"
        "GAME_level = 3\n")(folder);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

Provoke kerning(const std::string &text) {
    return [text](const TempFolder &folder) {
        folder.write("font.txt", text);
        KTFONT::setPath(folder.prefix().c_str());
        KTFONT font;
        EXPECT_TRUE(font.loadKerning("font.txt"));
    };
}

TEST_F(FaultTableTest, Kerning) {
    check({
        {"KTFONT::loadKerning", [](const TempFolder &) { EXPECT_FALSE(KTFONT().loadKerning(nullptr)); },
         kError, KT_FAULT_NULL, "KTFONT::loadKerning: `filename` is null"},
        {"KTFONT::loadKerning",
         [](const TempFolder &folder) {
             KTFONT::setPath(folder.prefix().c_str());
             EXPECT_FALSE(KTFONT().loadKerning("none.txt"));
         },
         kError, KT_FAULT_FILE_MISSING, "KTFONT::loadKerning: %Dnone.txt: the file does not exist"},
        {"KTFONT::loadKerning",
         [](const TempFolder &folder) {
             folder.write("font.txt", "");
             KTFONT::setPath(folder.prefix().c_str());
             EXPECT_FALSE(KTFONT().loadKerning("font.txt"));
         },
         kError, KT_FAULT_FILE_EMPTY, "KTFONT::loadKerning: %Dfont.txt: the file is empty"},
        {"KTFONT::loadKerning", kerning("KELTRA_kerning_A = 4\nKELTRA_kerning_SPAC = 9\n"), kWarning,
         KT_FAULT_UNKNOWN,
         "KTFONT::loadKerning: %Dfont.txt, line 2: `KELTRA_kerning_SPAC`: unknown key; did you mean "
         "`KELTRA_kerning_SPACE`?",
         -1, 2},
        {"KTFONT::loadKerning", kerning("KELTRA_kernin_A = 4\n"), kWarning, KT_FAULT_UNKNOWN,
         "KTFONT::loadKerning: %Dfont.txt, line 1: `KELTRA_kernin_A`: unknown key; did you mean "
         "`KELTRA_kerning_A`?",
         -1, 1},
        {"KTFONT::loadKerning", kerning("KELTRA_kerning_A = 4px\n"), kWarning, KT_FAULT_VALUE,
         "KTFONT::loadKerning: %Dfont.txt, line 1: `KELTRA_kerning_A`: found `4px`, expected a whole number",
         -1, 1},
        {"KTFONT::loadKerning", kerning("KELTRA_kerning_A = 200\n"), kWarning, KT_FAULT_VALUE,
         "KTFONT::loadKerning: %Dfont.txt, line 1: `KELTRA_kerning_A`: found `200`, expected -128 to 127", -1,
         1},
        {"KTFONT::loadKerning", kerning("KELTRA_kerning_A\n"), kWarning, KT_FAULT_LINE,
         "KTFONT::loadKerning: %Dfont.txt, line 1: `KELTRA_kerning_A`: the line cannot be read, expected a "
         "key, `=` and a value",
         -1, 1},
        {"KTFONT::loadKerning", kerning("KELTRA_kerning_A = 4\ncolour = 4\n"), kWarning, KT_FAULT_LINE,
         "KTFONT::loadKerning: %Dfont.txt, line 2: `colour=4`: the line cannot be read, expected a key, `=` "
         "and a value",
         -1, 2},
        {"KTFONT::loadKerning", kerning("KELTRA_kerning_A=1\nKELTRA_kerning_A=2\n"), kWarning,
         KT_FAULT_REPEATED,
         "KTFONT::loadKerning: %Dfont.txt, line 2: `KELTRA_kerning_A` is there again: the first one counts",
         -1, 2},
    });
}

Provoke interface(const std::string &text, bool loads = true) {
    return [text, loads](const TempFolder &folder) {
        KTTEXTURE::setPath(folder.prefix().c_str());
        KTFONT::setPath(folder.prefix().c_str());
        const std::string path = folder.write("desk.xml", text);
        EXPECT_EQ(KELTRA::loadXML(path.c_str()) != nullptr, loads);
    };
}

TEST_F(FaultTableTest, Interfaces) {
    check({
        {"KELTRA::loadXML", [](const TempFolder &) { EXPECT_FALSE(KELTRA::loadXML(nullptr)); }, kError,
         KT_FAULT_NULL, "KELTRA::loadXML: `fileName` is null"},
        {"KELTRA::loadXML",
         [](const TempFolder &folder) { EXPECT_FALSE(KELTRA::loadXML(folder.path("no.xml").c_str())); },
         kError, KT_FAULT_FILE_MISSING, "KELTRA::loadXML: %Dno.xml: the file does not exist"},
        {"KELTRA::loadXML", interface("", false), kError, KT_FAULT_FILE_EMPTY,
         "KELTRA::loadXML: %Ddesk.xml: the file is empty"},
        {"KELTRA::loadXML", interface(std::string((4u << 20) + 1, ' '), false), kError, KT_FAULT_FILE_SIZE,
         "KELTRA::loadXML: %Ddesk.xml: the file is too large: 4194304 bytes at most"},
        {"KELTRA::loadXML", interface("<rot/>", false), kError, KT_FAULT_DATA,
         "KELTRA::loadXML: %Ddesk.xml, line 1: root: the document has no element of this name", -1, 1},
        {"KELTRA::loadXML", interface("<root>\n<box>\n</bax>\n</root>", false), kError, KT_FAULT_DATA,
         "KELTRA::loadXML: %Ddesk.xml, line 3: end tag: is not that of the element it ends", -1, 3},
        {"KELTRA::loadXML", interface("<root><!-- -->\r\n\r\n<buton/></root>"), kWarning, KT_FAULT_UNKNOWN,
         "KELTRA::loadXML: %Ddesk.xml, line 3: `buton`: unknown element of `root`; did you mean `button`?",
         -1, 3},
        {"KELTRA::loadXML", interface("<root>\n<box colour='1'/></root>"), kWarning, KT_FAULT_UNKNOWN,
         "KELTRA::loadXML: %Ddesk.xml, line 2: `colour`: unknown attribute of `box`; did you mean `color`?",
         -1, 2},
        {"KELTRA::loadXML", interface("<root>\n<window title='a'/></root>"), kWarning, KT_FAULT_UNKNOWN,
         "KELTRA::loadXML: %Ddesk.xml, line 2: `title`: unknown attribute of `window`; did you mean "
         "`<title>`?",
         -1, 2},
        {"KELTRA::loadXML", interface("<root><box>\n<size width='1' heigth='2' height='2'/></box></root>"),
         kWarning, KT_FAULT_UNKNOWN,
         "KELTRA::loadXML: %Ddesk.xml, line 2: `heigth`: unknown attribute of `size`; did you mean "
         "`height`?",
         -1, 2},
        {"KELTRA::loadXML", interface("<root><box>\n<position x='1'/></box></root>"), kWarning,
         KT_FAULT_MISSING, "KELTRA::loadXML: %Ddesk.xml, line 2: `position`: attribute `y` is missing", -1,
         2},
        {"KELTRA::loadXML", interface("<root><box><position x='1' y='2px'/></box></root>"), kWarning,
         KT_FAULT_VALUE,
         "KELTRA::loadXML: %Ddesk.xml, line 1: `position y`: found `2px`, expected a whole number", -1, 1},
        {"KELTRA::loadXML", interface("<root><box><color r='1' g='1' b='1' a='x'/></box></root>"), kWarning,
         KT_FAULT_VALUE, "KELTRA::loadXML: %Ddesk.xml, line 1: `color a`: found `x`, expected a number", -1,
         1},
        {"KELTRA::loadXML", interface("<root><button><kind value='inverse'/></button></root>"), kWarning,
         KT_FAULT_UNKNOWN,
         "KELTRA::loadXML: %Ddesk.xml, line 1: `inverse`: unknown kind; did you mean `inverted`?", -1, 1},
        {"KELTRA::loadXML",
         interface("<root><box><name value='" + std::string(256, 'n') + "'/></box></root>"), kWarning,
         KT_FAULT_VALUE, nullptr, -1, 1},
        {"KELTRA::loadXML", interface("<root><label>\n<usefont ref='smal'/></label></root>"), kWarning,
         KT_FAULT_UNKNOWN, "KELTRA::loadXML: %Ddesk.xml, line 2: `smal`: unknown font", -1, 2},
        {"KELTRA::loadXML", interface("<root>\n<box><texture value='wood.tga'/></box></root>"), kWarning,
         KT_FAULT_FILE_MISSING,
         "KELTRA::loadXML: %Dwood.tga (needed by %Ddesk.xml, line 2): the file does not exist"},
        {"KELTRA::loadXML", interface("<root>\n<font><kerning value='k.txt'/></font></root>"), kWarning,
         KT_FAULT_FILE_MISSING,
         "KELTRA::loadXML: %Dk.txt (needed by %Ddesk.xml, line 2): the file does not exist"},
        {"KELTRA::recursiveLoadXML",
         [](const TempFolder &) { EXPECT_EQ(KELTRA::recursiveLoadXML(nullptr, nullptr), 0); }, kError,
         KT_FAULT_NULL, "KELTRA::recursiveLoadXML: `parent` is null"},
    });
}

TEST_F(FaultTableTest, ObjectsBeyondTheLimitAreOneWarning) {
    std::string text = "<root>";
    for (int i = 0; i < 8200; ++i) text += "<font/>";
    check({{"KELTRA::loadXML", interface(text + "</root>"), kWarning, KT_FAULT_LIMIT,
            "KELTRA::loadXML: %Ddesk.xml, line 1: objects: more than 8192, the others are left out", -1, 1}});
}

TEST_F(FaultTableTest, GoodInterfacesMakeNoFault) {
    KTFAULTS::clear();
    interface(
        "<?xml version='1.0'?><root><font><name value='f'/></font><window><name value='w'/><title value='t'/>"
        "<position x='-1' y='2'/><size width='90' height='80'/><usefont ref='f'/><color r='1' g='.5' b='0' "
        "a='1e0'/><button><kind value='switch'/></button></window></root>")(folder);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

Provoke emitter(const std::string &text, bool loads = true) {
    return [text, loads](const TempFolder &folder) {
        KTTEXTURE::setPath(folder.prefix().c_str());
        KTEMITTER emitter;
        EXPECT_EQ(emitter.load(folder.write("fire.xml", text).c_str()), loads);
    };
}

TEST_F(FaultTableTest, Emitters) {
    check({
        {"KTEMITTER::load", [](const TempFolder &) { EXPECT_FALSE(KTEMITTER().load(nullptr)); }, kError,
         KT_FAULT_NULL, "KTEMITTER::load: `filename` is null"},
        {"KTEMITTER::load",
         [](const TempFolder &folder) { EXPECT_FALSE(KTEMITTER().load(folder.path("no.xml").c_str())); },
         kError, KT_FAULT_FILE_MISSING, "KTEMITTER::load: %Dno.xml: the file does not exist"},
        {"KTEMITTER::load", emitter("<emitter>\n<radius", false), kError, KT_FAULT_DATA,
         "KTEMITTER::load: %Dfire.xml, line 2: tag: does not end", -1, 2},
        {"KTEMITTER::load", emitter("<emiter/>"), kWarning, KT_FAULT_UNKNOWN,
         "KTEMITTER::load: %Dfire.xml, line 1: `emiter`: unknown root element; did you mean `emitter`?", -1,
         1},
        {"KTEMITTER::load", emitter("<emitter>\n<maxEnery value='1'/></emitter>"), kWarning, KT_FAULT_UNKNOWN,
         "KTEMITTER::load: %Dfire.xml, line 2: `maxEnery`: unknown element of `emitter`; did you mean "
         "`maxEnergy`?",
         -1, 2},
        {"KTEMITTER::load", emitter("<emitter>\n<gravity x='1' y='0' z='0' w='0'/></emitter>"), kWarning,
         KT_FAULT_UNKNOWN, nullptr, -1, 2},
        {"KTEMITTER::load", emitter("<emitter>\n<gravity x='1' y='0'/></emitter>"), kWarning,
         KT_FAULT_MISSING, "KTEMITTER::load: %Dfire.xml, line 2: `gravity`: attribute `z` is missing", -1, 2},
        {"KTEMITTER::load", emitter("<emitter><nbOfParticles value='600'/></emitter>"), kWarning,
         KT_FAULT_VALUE,
         "KTEMITTER::load: %Dfire.xml, line 1: `nbOfParticles value`: found `600`, expected 0 to 512", -1, 1},
        {"KTEMITTER::load", emitter("<emitter><blendingSrc value='768'/></emitter>"), kWarning,
         KT_FAULT_VALUE,
         "KTEMITTER::load: %Dfire.xml, line 1: `blendingSrc value`: found `768`, expected a blend factor of "
         "that side",
         -1, 1},
        {"KTEMITTER::load", emitter("<emitter>\n\n<texture value='spark.tga'/></emitter>"), kWarning,
         KT_FAULT_FILE_MISSING,
         "KTEMITTER::load: %Dspark.tga (needed by %Dfire.xml, line 3): the file does not exist"},
    });
}

}  // namespace
}  // namespace keltra::test
