// SPDX-License-Identifier: Zlib
#include "tools/convert/picture_source.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/temp_file.h"
#include "tests/support/unprivileged.h"
#include "tests/tools/convert/support/material_scene.h"
#include "tests/tools/convert/support/pictures.h"

namespace keltra::convert {
namespace {

using formats::Image;
using formats::Rgba;
using test::difference;
using test::encode;
using test::plain;

constexpr Rgba kRed = {255, 0, 0, 255}, kGreen = {0, 255, 0, 255};

class PictureSourceTest : public testing::Test {
   protected:
    PictureSourceTest() { std::filesystem::create_directory(folder.path("model")); }

    void put(const std::string &name, Rgba colour = kRed, const char *format = "png") {
        const std::string path = folder.path("model/" + name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        folder.write("model/" + name, encode(plain(2, 2, colour), format));
    }
    PictureSource source() { return PictureSource(scene.scene(), folder.path("model/hero.obj"), given); }

    // The colour of the picture's first pixel; what was said of the place is in `instead`.
    Rgba colourOf(const std::string &path) {
        PictureSource pictures = source();
        const PicturePlace place = pictures.find(path);
        instead = place.instead;
        std::string remark;
        return pictures.read(place, remark).pixels[0];
    }
    void expectFound(const std::string &path, Rgba colour, const std::string &otherPath) {
        EXPECT_EQ(colourOf(path), colour) << path;
        EXPECT_EQ(instead, otherPath) << path;
    }
    std::string fault(const std::string &path, bool missing) {
        try {
            colourOf(path);
        } catch (const PictureFault &caught) {
            EXPECT_EQ(caught.missing, missing) << path << ": " << caught.what();
            return caught.what();
        }
        return "found";
    }

    test::TempFolder folder;
    test::MaterialScene scene;
    std::vector<std::string> given;  // by --textures
    std::string instead;
};

TEST_F(PictureSourceTest, ReadsThePathAsWrittenFromTheModelsFolder) {
    put("skin.png");
    put("parts/arm.png", kGreen);
    EXPECT_EQ(colourOf("skin.png"), kRed);
    EXPECT_EQ(colourOf("./skin.png"), kRed);
    EXPECT_EQ(colourOf("parts/arm.png"), kGreen);
    EXPECT_EQ(colourOf("parts\\arm.png"), kGreen);
    EXPECT_EQ(colourOf("parts/../skin.png"), kRed);
    EXPECT_EQ(colourOf("../model/skin.png"), kRed);
    expectFound("//skin.png", kRed, "");
}

TEST_F(PictureSourceTest, NamesMayHoldAnything) {
    put("my \"best\" 'skin' (1) & $x;.png");
    EXPECT_EQ(colourOf("my \"best\" 'skin' (1) & $x;.png"), kRed);
    put("caf\xE9.png", kGreen);  // Latin-1
    EXPECT_EQ(colourOf("caf\xE9.png"), kGreen);
    put("msl:skin.png");
    EXPECT_EQ(colourOf("msl:skin.png"), kRed);
    put("@list.png");
    EXPECT_EQ(colourOf("@list.png"), kRed);
}

TEST_F(PictureSourceTest, LettersOfEitherCaseWillDo) {
    put("Textures/Skin.PNG");
    expectFound("TEXTURES/skin.png", kRed, "");
    put("Textures/skin.png", kGreen);
    EXPECT_EQ(colourOf("Textures/skin.png"), kGreen);  // the exact one first
}

TEST_F(PictureSourceTest, ReadsAnAbsolutePathThatIsThere) {
    put("elsewhere/skin.png");
    expectFound(folder.path("model/elsewhere/skin.png"), kRed, "");
    EXPECT_EQ(colourOf("file://" + folder.path("model/elsewhere/skin.png")), kRed);
}

TEST_F(PictureSourceTest, FindsTheEndOfAPathOfAnotherMachine) {
    put("skin.png");
    put("art/skin.png", kGreen);
    expectFound("C:\\work\\hero\\art\\skin.png", kGreen, "art/skin.png");
    expectFound("D:/other/skin.png", kRed, "skin.png");
    EXPECT_EQ(colourOf("file:///C:/other/skin.png"), kRed);
    EXPECT_EQ(colourOf("\\\\server\\share\\skin.png"), kRed);
    EXPECT_EQ(colourOf("/home/nobody/hero/skin.png"), kRed);
    EXPECT_EQ(colourOf("../../missing/skin.png"), kRed);
}

TEST_F(PictureSourceTest, LooksInTheUsualFolders) {
    put("Textures/skin.png");
    expectFound("C:\\work\\skin.png", kRed, "textures/skin.png");
    put("../textures/cloth.png", kGreen);
    expectFound("cloth.png", kGreen, "../textures/cloth.png");
}

TEST_F(PictureSourceTest, UndoesTheEscapesOfUrls) {
    put("my skin.png");
    EXPECT_EQ(colourOf("my%20skin.png"), kRed);
    EXPECT_EQ(fault("my%00skin.png", true), "there is no such file");
    EXPECT_EQ(fault("my%2", true), "there is no such file");
    put("a%20b.png", kGreen);
    put("a b.png");
    EXPECT_EQ(colourOf("a%20b.png"), kGreen);  // as written first
}

TEST_F(PictureSourceTest, TakesAnotherExtensionAsTheLastResort) {
    put("skin.jpg", kGreen, "jpeg");
    put("skin.png");
    put("skin.txt");
    expectFound("skin.tga", kRed, "skin.png");
    put("textures/Cloth.bmp", kGreen, "bmp");
    expectFound("C:\\work\\cloth.tga", kGreen, "textures/Cloth.bmp");
    put("textures/skin.tga", kGreen, "tga");
    EXPECT_EQ(colourOf("skin.tga"), kGreen);  // the right one elsewhere comes before
    EXPECT_EQ(fault("skin2.tga", true), "there is no such file");
}

TEST_F(PictureSourceTest, APictureOfTheModelsNameStandsInForOneWithoutName) {
    EXPECT_EQ(fault("$texture_dummy.bmp", true), "there is no such file");
    put("hero.png", kGreen);
    expectFound("$texture_dummy.bmp", kGreen, "hero.png");
}

TEST_F(PictureSourceTest, SearchesByNameOneLevelDownAndUp) {
    put("colours/Skin.png");
    expectFound("skin.PNG", kRed, "colours/skin.PNG");
    put("../pictures/cloth.png", kGreen);
    expectFound("D:\\art\\cloth.png", kGreen, "../pictures/cloth.png");
    put("../hair.png");
    expectFound("hair.png", kRed, "../hair.png");
    put("../pictures/deep/eye.png");
    put("colours/deep/eye.png");
    EXPECT_EQ(fault("eye.png", true), "there is no such file");
}

TEST_F(PictureSourceTest, SearchesTheFoldersThatAreGiven) {
    put("../../elsewhere/pack/base/metal.png", kGreen);
    EXPECT_EQ(fault("textures/base/metal.png", true), "there is no such file");
    given = {folder.path("../elsewhere")};
    const std::string found = folder.path("../elsewhere") + "/pack/base/metal.png";
    expectFound("textures/base/metal.png", kGreen, found);
    expectFound("textures/base/metal.tga", kGreen, found);
    expectFound(folder.path("../elsewhere/pack/base/metal.png"), kGreen, "");
    std::filesystem::remove_all(folder.path("../elsewhere"));
}

TEST_F(PictureSourceTest, APictureOfTheModelsNameIsTheLastResort) {
    put("hero.png", kGreen);
    PictureSource pictures = source();
    EXPECT_EQ(pictures.find("lost.png", true).instead, "hero.png");
    EXPECT_EQ(fault("lost.png", true), "there is no such file");  // not for a map of another kind
}

TEST_F(PictureSourceTest, APathThatLeadsElsewhereIsNotRead) {
    std::filesystem::create_directories(folder.path("secret/deep"));
    folder.write("secret/deep/key.png", encode(plain(2, 2, kRed), "png"));
    const std::string outside = "it lies outside of the model's folder; --textures can name its folder";
    for (const std::string &path :
         {std::string("../secret/deep/key.png"), folder.path("secret/deep/key.png"),
          "file://" + folder.path("secret/deep/key.png"), std::string("x/../../secret/deep/key.png"),
          std::string("..\\secret\\deep\\key.png"), std::string("..%2fsecret/deep/key.png"),
          std::string("/proc/self/cmdline")})
        EXPECT_NE(fault(path, path.find("x/..") == 0), "found") << path;
    EXPECT_EQ(fault("../secret/deep/key.png", false), outside);
    EXPECT_EQ(fault(folder.path("secret/deep/key.png"), false), outside);
    std::filesystem::create_symlink(folder.path("secret/deep/key.png"), folder.path("model/link.png"));
    std::filesystem::create_symlink(folder.path("secret/deep"), folder.path("model/textures"));
    EXPECT_EQ(fault("link.png", false), outside);
    EXPECT_EQ(fault("textures/key.png", false), outside);
    EXPECT_EQ(fault("key.png", false), outside);
    given = {folder.path("secret")};
    EXPECT_EQ(colourOf("link.png"), kRed);
    EXPECT_EQ(colourOf("../secret/deep/key.png"), kRed);
}

TEST_F(PictureSourceTest, ALinkBesideTheModelsFolderDoesNotLeadElsewhere) {
    std::filesystem::create_directory(folder.path("model/inner"));
    folder.write("key.png", encode(plain(2, 2, kRed), "png"));
    std::filesystem::create_directory(folder.path("model/textures"));
    std::filesystem::create_symlink(folder.path("key.png"), folder.path("model/textures/key.png"));
    PictureSource pictures(scene.scene(), folder.path("model/inner/hero.obj"));
    EXPECT_THROW(pictures.find("key.png"), PictureFault);
}

TEST_F(PictureSourceTest, LinksToFoldersAreNotSearchedForNames) {
    put("../other/skin.png");
    std::filesystem::create_symlink("..", folder.path("model/up"));
    std::filesystem::create_symlink(".", folder.path("model/here"));
    expectFound("skin.png", kRed, "../other/skin.png");
}

TEST_F(PictureSourceTest, NamesFormatsThatItDoesNotRead) {
    folder.write("model/a.ktx2", std::string("\xabKTX 20\xbb\r\n\x1a\n rest of it"));
    EXPECT_EQ(fault("a.ktx2", false), "its format is not read: KTX 2, Basis Universal or other GPU textures");
    folder.write("model/a.avif", std::string("\0\0\0 ftypavif and more", 21));
    EXPECT_EQ(fault("a.avif", false), "its format is not read: AVIF");
}

TEST_F(PictureSourceTest, SaysWhatIsMissing) {
    for (const char *path :
         {"none.png", "a/b/none.png", "/none.png", "C:none.png", "..", ".", "/", "\\", "folder/", " "})
        EXPECT_EQ(fault(path, true), "there is no such file") << path;
    EXPECT_EQ(fault(std::string(5000, 'x'), true), "there is no such file");
    std::string deep;
    for (int i = 0; i < 2000; ++i) deep += "a/";
    EXPECT_EQ(fault(deep + "b.png", true), "there is no such file");
}

TEST_F(PictureSourceTest, TakesRegularFilesOnly) {
    std::filesystem::create_directory(folder.path("model/folder.png"));
    ASSERT_EQ(mkfifo(folder.path("model/pipe.png").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/zero", folder.path("model/zero.png"));
    std::filesystem::create_symlink("loop.png", folder.path("model/loop.png"));
    for (const char *path : {"folder.png", "pipe.png", "zero.png"})
        EXPECT_EQ(fault(path, false), "it is not a regular file") << path;
    EXPECT_EQ(fault("/dev/zero", false), "it is not a regular file");
    EXPECT_EQ(fault("loop.png", true), "there is no such file");
    put("textures/folder.png");
    EXPECT_EQ(colourOf("folder.png"), kRed);
}

TEST_F(PictureSourceTest, RefusesFilesThatCannotBeRead) {
    folder.write("model/empty.png", "");
    EXPECT_EQ(fault("empty.png", false), "it is empty");
    folder.write("model/words.png", "just words");
    EXPECT_EQ(fault("words.png", false), "it is not a picture of a known format");
    std::filesystem::resize_file(folder.write("model/huge.png", "x"), (256u << 20) + 1);
    EXPECT_EQ(fault("huge.png", false), "its file is larger than 256 MiB");
    put("locked.png");
    ASSERT_EQ(chmod(folder.path("model/locked.png").c_str(), 0), 0);
    for (const char *way : {"", "model"}) ASSERT_EQ(chmod(folder.path(way).c_str(), 0755), 0);
    const test::Unprivileged unprivileged;
    EXPECT_EQ(fault("locked.png", false), "the file cannot be opened: Permission denied");
}

TEST_F(PictureSourceTest, ReadsWhatTheModelCarries) {
    scene.embed(encode(plain(2, 2, kGreen), "png"), "png");
    scene.embed(plain(3, 1, {1, 2, 3, 4}));
    scene.embed(encode(plain(2, 2, kRed), "tga"), "tga", "C:\\art\\Skin.tga");
    scene.embed(encode(plain(2, 2, kRed), "tga"), "", "other.TGA");  // no hint: its name has one
    EXPECT_EQ(colourOf("*0"), kGreen);
    EXPECT_EQ(colourOf("*1"), (Rgba{1, 2, 3, 4}));
    EXPECT_EQ(colourOf("*2"), kRed);
    EXPECT_EQ(colourOf("*3"), kRed);
    put("Skin.tga", kGreen, "tga");
    EXPECT_EQ(colourOf("D:\\elsewhere\\Skin.tga"), kRed);  // before a file of the name
    for (const char *path : {"*4", "*-1", "*99999999999"})
        EXPECT_EQ(fault(path, true), "the model has no such picture") << path;
}

TEST_F(PictureSourceTest, RefusesDamagedPicturesThatTheModelCarries) {
    scene.addTexture("");  // *0: nothing at all
    scene.addTexture("").mWidth = 100;
    aiTexture &huge = scene.addTexture("");
    huge.mWidth = huge.mHeight = 4000000000u;
    huge.pcData = new aiTexel[1];
    aiTexture &wide = scene.addTexture("");
    wide.mWidth = (256u << 20) + 1;
    wide.pcData = new aiTexel[1];
    scene.embed({1, 2, 3, 4}, "png");
    aiTexture &hollow = scene.addTexture("");
    hollow.mWidth = hollow.mHeight = 2;
    EXPECT_EQ(fault("*0", false), "it is empty");
    EXPECT_EQ(fault("*1", false), "it is empty");
    EXPECT_EQ(fault("*2", false), "it is too large");
    EXPECT_EQ(fault("*3", false), "it is larger than 256 MiB");
    EXPECT_EQ(fault("*4", false), "it is not a picture of a known format");
    EXPECT_EQ(fault("*5", false), "it has no pixels");
}

TEST_F(PictureSourceTest, AModelWithoutAFolderIsInTheCurrentOne) {
    const std::filesystem::path before = std::filesystem::current_path();
    put("skin.png");
    std::filesystem::current_path(folder.path("model"));
    PictureSource pictures(scene.scene(), "hero.obj");
    const PicturePlace place = pictures.find("SKIN.png");
    const PicturePlace other = pictures.find("skin.tga");
    std::filesystem::current_path(before);
    EXPECT_EQ(place.file, "./skin.png");
    EXPECT_EQ(other.instead, "skin.png");
}

TEST_F(PictureSourceTest, StemsAreFileNames) {
    scene.embed(plain(1, 1, kRed));
    scene.embed(plain(1, 1, kRed), "art\\Big Wall.png");
    PictureSource pictures = source();
    EXPECT_EQ(pictures.stem("a\\my skin.v2.png"), "my_skin.v2");
    EXPECT_EQ(pictures.stem("my%20skin.png"), "my_skin");
    EXPECT_EQ(pictures.stem("*0"), "texture0");
    EXPECT_EQ(pictures.stem("*1"), "Big_Wall");
}

}  // namespace
}  // namespace keltra::convert
