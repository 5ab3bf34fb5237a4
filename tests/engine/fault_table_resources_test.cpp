// SPDX-License-Identifier: Zlib
// Failures of the calls of textures, materials, fonts, targets and shaders, their loaders left out.

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

TEST_F(FaultTableTest, TextureCalls) {
    check({
        {"KTTEXTURE::create", [](Folder) { EXPECT_FALSE(KTTEXTURE().create(513, 1, 3)); }, kError,
         KT_FAULT_ARGUMENT, "KTTEXTURE::create: `sizeX` is 513, expected 0 to 512"},
        {"KTTEXTURE::create", [](Folder) { EXPECT_FALSE(KTTEXTURE().create(1, 1024, 3)); }, kError,
         KT_FAULT_ARGUMENT, "KTTEXTURE::create: `sizeY` is 1024, expected 0 to 512"},
        {"KTTEXTURE::create", [](Folder) { EXPECT_FALSE(KTTEXTURE().create(1, 1, 2)); }, kError,
         KT_FAULT_ARGUMENT, "KTTEXTURE::create: `bpp` is 2, expected 3 to 6"},
        {"KTTEXTURE::modify",
         [](Folder) {
             KTTEXTURE texture;
             EXPECT_TRUE(texture.create(4, 4, 3));
             EXPECT_FALSE(texture.modify(nullptr, false));
         },
         kError, KT_FAULT_NULL, "KTTEXTURE::modify: `pixels` is null"},
        {"KTTEXTURE::modify",
         [](Folder) {
             KTTEXTURE texture;
             const char pixels[48] = {};
             EXPECT_TRUE(texture.create(4, 4, 3));
             EXPECT_TRUE(texture.unload(true));
             EXPECT_FALSE(texture.modify(pixels, true));
             EXPECT_TRUE(texture.modify(pixels, true));
         },
         kError, KT_FAULT_STATE, "KTTEXTURE::modify: there was no bitmap: made without the pixels"},
        {"KTTEXTURE::update", [](Folder) { EXPECT_FALSE(KTTEXTURE().update()); }, kError, KT_FAULT_STATE,
         "KTTEXTURE::update: the texture has no bitmap"},
        {"KTTEXTURE::render",
         [](Folder) {
             unsigned int channel = 16;
             EXPECT_FALSE(KTTEXTURE().render(&channel));
         },
         kError, KT_FAULT_ARGUMENT, "KTTEXTURE::render: `data` is 16, expected 0 to 15"},
    });
}

TEST_F(FaultTableTest, MaterialCalls) {
    static const std::string tooLong(256, 'a');
    check({
        {"KTMATERIAL::setTexture",
         [](Folder) {
             KTTEXTURE texture;
             EXPECT_FALSE(KTMATERIAL().setTexture(16, &texture));
         },
         kError, KT_FAULT_ARGUMENT, "KTMATERIAL::setTexture: `level` is 16, expected 0 to 15"},
        {"KTMATERIAL::clone", [](Folder) { KTMATERIAL().clone(nullptr); }, kError, KT_FAULT_NULL,
         "KTMATERIAL::clone: `source` is null"},
        {"KTMATERIAL::setName", [](Folder) { KTMATERIAL().setName(nullptr); }, kError, KT_FAULT_NULL,
         "KTMATERIAL::setName: `text` is null"},
        {"KTMATERIAL::setName", [](Folder) { KTMATERIAL().setName(tooLong.c_str()); }, kError,
         KT_FAULT_ARGUMENT, "KTMATERIAL::setName: `text` is longer than 255 characters"},
        {"KTSHADER::setName", [](Folder) { KTSHADER().setName(tooLong.c_str()); }, kError, KT_FAULT_ARGUMENT,
         "KTSHADER::setName: `text` is longer than 255 characters"},
        {"KTFBO::bindTexture", [](Folder) { EXPECT_FALSE(KTFBO().bindTexture(0, nullptr)); }, kError,
         KT_FAULT_NULL, "KTFBO::bindTexture: `target` is null"},
    });
}

TEST_F(FaultTableTest, FontCalls) {
    check({
        {"KTFONT::setTexture", [](Folder) { EXPECT_FALSE(KTFONT().setTexture(nullptr)); }, kError,
         KT_FAULT_NULL, "KTFONT::setTexture: `glyphs` is null"},
        {"KTFONT::setKerning", [](Folder) { EXPECT_FALSE(KTFONT().setKerning('\n', 1)); }, kError,
         KT_FAULT_ARGUMENT, "KTFONT::setKerning: `c` is 10, expected 32 to 127"},
        {"KTFONT::format",
         [](Folder) {
             char text[8];
             EXPECT_EQ(KTFONT().format(nullptr, text, 10), 0);
         },
         kError, KT_FAULT_NULL, "KTFONT::format: `source` is null"},
        {"KTFONT::format", [](Folder) { EXPECT_EQ(KTFONT().format("a", nullptr, 10), 0); }, kError,
         KT_FAULT_NULL, "KTFONT::format: `destination` is null"},
        {"KTFONT::putString", [](Folder) { EXPECT_FALSE(KTFONT().putString(0, 0, nullptr)); }, kError,
         KT_FAULT_NULL, "KTFONT::putString: `format` is null"},
#ifndef _WIN32  // whose C library writes such a character in another form
        {"KTFONT::putString",
         [](Folder) {
             KTTEXTURE texture;
             KTFONT font;
             EXPECT_TRUE(font.setTexture(&texture));
             EXPECT_FALSE(font.putString(0, 0, "%ls", L"\u0100"));
         },
         kError, KT_FAULT_ARGUMENT, "KTFONT::putString: `format` is not to be written"},
#endif
        {"KTFONT::setName", [](Folder) { KTFONT().setName(nullptr); }, kError, KT_FAULT_NULL,
         "KTFONT::setName: `text` is null"},
    });
}

// Reported once until there is a texture, however often and by whichever call text is drawn.
TEST_F(FaultTableTest, FontsWithoutATexture) {
    const char *const sentence = "KTFONT::putString: the font has no texture";
    static KTTEXTURE *texture;
    check({
        {"KTFONT::putString",
         [](Folder) {
             KTFONT font;
             EXPECT_FALSE(font.putString(0, 0, "a"));
             EXPECT_FALSE(font.putString(0, 0, "a"));
             EXPECT_FALSE(font.putChar(0, 0, 'a', true));
             KTFONT copy(font);
             EXPECT_FALSE(copy.putString(0, 0, "a"));
         },
         kError, KT_FAULT_STATE, sentence},
        {"KTFONT::putChar", [](Folder) { EXPECT_FALSE(KTFONT().putChar(0, 0, 'a', true)); }, kError,
         KT_FAULT_STATE, "KTFONT::putChar: the font has no texture"},
        {"KTFONT::putString",
         [](Folder) {
             KTFONT font;
             texture = new KTTEXTURE;
             EXPECT_TRUE(texture->create(16, 16, 4));
             EXPECT_TRUE(font.setTexture(texture));
             EXPECT_TRUE(font.putString(0, 0, "a"));
             delete texture;
             EXPECT_FALSE(font.putString(0, 0, "a"));
             EXPECT_FALSE(font.putString(0, 0, "a"));
         },
         kError, KT_FAULT_STATE, sentence},
        {"KTFONT::putString",
         [](Folder) {
             KTFONT font;
             font.setName("speechless");
             KTLABEL label;
             label.setFont(&font);
             EXPECT_TRUE(label.write("a"));
             for (int i = 0; i < 3; ++i) frame2D([&] { label.pass(); });
         },
         kError, KT_FAULT_STATE, sentence},
    });
}

#ifndef _WIN32  // where a file that is open cannot be removed
TEST_F(FaultTableTest, AFilmThatIsGone) {
    check({
        {"KTVIDEO::update",
         [](Folder folder) {
             const std::string path = folder.write("film.mpg", "no film");
             KTVIDEO::setMPGPath(folder.prefix().c_str());
             KTVIDEO video;
             EXPECT_TRUE(video.load("film.mpg"));
             std::filesystem::remove(path);
             video.playLoop();
             for (int frame = 0; frame < 3; ++frame) EXPECT_FALSE(video.update(10));
             KTVIDEO::setMPGPath(nullptr);
         },
         kError, KT_FAULT_FILE_MISSING, "KTVIDEO::update: %Dfilm.mpg: the file does not exist"},
    });
}
#endif

TEST_F(FaultTableTest, ResourcesThatAreNotThereAreNoFault) {
    KTFAULTS::clear();
    KTTEXTURE texture;
    EXPECT_FALSE(KTTEXTURE::findByFilename(nullptr));
    EXPECT_FALSE(KTMATERIAL::findByName("none"));
    EXPECT_FALSE(KTFONT::findByName("none"));
    EXPECT_FALSE(KTMATERIAL().getTexture(16));
    EXPECT_EQ(KTFONT().getKerning('\n'), 0);
    EXPECT_FALSE(KTOPENGL::getFbo(99));
    EXPECT_TRUE(texture.setFilter(true, false, true));
    EXPECT_TRUE(texture.create(4, 4, 5));
    EXPECT_TRUE(texture.setFilter(true, false, true));
    EXPECT_FALSE(texture.reload());
    EXPECT_FALSE(KTVIDEO().update(1));
    EXPECT_FALSE(KTFBO().bindTexture(0, &texture));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

}  // namespace
}  // namespace keltra::test
