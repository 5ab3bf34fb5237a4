// SPDX-License-Identifier: Zlib
// Failures of the loaders of binary files.

#include <cstring>

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

// A Targa header: uncompressed, 24 bits.
std::vector<std::uint8_t> targa(unsigned int width, unsigned int height, unsigned int bits = 24) {
    std::vector<std::uint8_t> bytes(18 + std::size_t{width} * height * 3);
    bytes[2] = 2;
    bytes[12] = static_cast<std::uint8_t>(width);
    bytes[13] = static_cast<std::uint8_t>(width >> 8);
    bytes[14] = static_cast<std::uint8_t>(height);
    bytes[16] = static_cast<std::uint8_t>(bits);
    return bytes;
}

bool loadTexture(const TempFolder &folder, const char *name) {
    KTTEXTURE::setPath(folder.prefix().c_str());
    KTTEXTURE texture;
    return texture.load(name);
}

TEST_F(FaultTableTest, Textures) {
    check({
        {"KTTEXTURE::load", [](const TempFolder &) { EXPECT_FALSE(KTTEXTURE().load(nullptr)); },
         KT_FAULT_ERROR, KT_FAULT_NULL, "KTTEXTURE::load: `name` is null"},
        {"KTTEXTURE::load",
         [](const TempFolder &folder) { EXPECT_FALSE(loadTexture(folder, std::string(256, 'a').c_str())); },
         KT_FAULT_ERROR, KT_FAULT_FILE_NAME, nullptr},
        {"KTTEXTURE::load", [](const TempFolder &folder) { EXPECT_FALSE(loadTexture(folder, "stone.tga")); },
         KT_FAULT_ERROR, KT_FAULT_FILE_MISSING, "KTTEXTURE::load: %Dstone.tga: the file does not exist"},
        {"KTTEXTURE::load",
         [](const TempFolder &folder) {
             folder.write("empty.tga", "");
             EXPECT_FALSE(loadTexture(folder, "empty.tga"));
         },
         KT_FAULT_ERROR, KT_FAULT_FILE_EMPTY, "KTTEXTURE::load: %Dempty.tga: the file is empty"},
        {"KTTEXTURE::load", [](const TempFolder &folder) { EXPECT_FALSE(loadTexture(folder, ".")); },
         KT_FAULT_ERROR, KT_FAULT_FILE_KIND, "KTTEXTURE::load: %D.: not a regular file"},
        {"KTTEXTURE::load",
         [](const TempFolder &folder) {
             folder.write("wide.tga", targa(600, 1));
             EXPECT_FALSE(loadTexture(folder, "wide.tga"));
         },
         KT_FAULT_ERROR, KT_FAULT_DATA,
         "KTTEXTURE::load: %Dwide.tga, byte 12: width: outside 1 to 512 (found 600)", 12},
        {"KTTEXTURE::load",
         [](const TempFolder &folder) {
             folder.write("grey.tga", targa(4, 4, 8));
             EXPECT_FALSE(loadTexture(folder, "grey.tga"));
         },
         KT_FAULT_ERROR, KT_FAULT_DATA,
         "KTTEXTURE::load: %Dgrey.tga, byte 16: bits a pixel: neither 24 nor 32 (found 8)", 16},
        {"KTTEXTURE::load",
         [](const TempFolder &folder) {
             std::vector<std::uint8_t> bytes = targa(4, 4);
             bytes.pop_back();
             folder.write("short.tga", bytes);
             EXPECT_FALSE(loadTexture(folder, "short.tga"));
         },
         KT_FAULT_ERROR, KT_FAULT_DATA,
         "KTTEXTURE::load: %Dshort.tga, byte 65: pixels: the file is too short for its image", 65},
        {"KTTEXTURE::load",
         [](const TempFolder &folder) {
             std::vector<std::uint8_t> bytes = targa(4, 4);
             bytes[2] = 3;
             folder.write("kind.tga", bytes);
             EXPECT_TRUE(loadTexture(folder, "kind.tga"));
         },
         KT_FAULT_WARNING, KT_FAULT_DATA,
         "KTTEXTURE::load: %Dkind.tga, byte 2: kind: neither uncompressed nor run-length true-colour: no "
         "pixels are loaded",
         2},
    });
}

TEST_F(FaultTableTest, AMissingTextureIsToldOnceAndNotInEachFrame) {
    KTTEXTURE::setPath(folder.prefix().c_str());
    folder.write("stone.tga", targa(4, 4));
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("stone.tga"));
    texture.unload(true);
    std::filesystem::remove(folder.path("stone.tga"));
    KTFAULTS::clear();
    for (int i = 0; i < 3; ++i) texture.render(nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 1u);
    EXPECT_EQ(sentenceOf(*KTFAULTS::getLast()),
              "KTTEXTURE::render: " + folder.path("stone.tga") +
                  (kFaultTexts ? ": the file does not exist" : ": fault 11"));
    EXPECT_EQ(KTFAULTS::getLast()->severity, KT_FAULT_WARNING);
    folder.write("stone.tga", targa(4, 4));
    texture.render(nullptr);
    texture.unload(true);
    std::filesystem::remove(folder.path("stone.tga"));
    texture.render(nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 2u) << "it could be read in between";
}

bool loadAnim(const TempFolder &folder, const std::vector<std::uint8_t> &bytes) {
    KTANIM::setKTAPath(folder.prefix().c_str());
    folder.write("walk.kta", bytes);
    KTANIM *anim = new KTANIM;
    const bool loaded = anim->load("walk.kta");
    delete anim;
    return loaded;
}

std::vector<std::uint8_t> anim(unsigned int bones, unsigned int frames) {
    std::vector<std::uint8_t> bytes(19);
    std::memcpy(bytes.data(), "KTA file v1.6a", 14);
    bytes[15] = static_cast<std::uint8_t>(bones);
    bytes[16] = static_cast<std::uint8_t>(bones >> 8);
    bytes[17] = static_cast<std::uint8_t>(frames);
    bytes[18] = static_cast<std::uint8_t>(frames >> 8);
    return bytes;
}

TEST_F(FaultTableTest, Animations) {
    check({
        {"KTANIM::load", [](const TempFolder &) { EXPECT_FALSE((new KTANIM)->load(nullptr)); },
         KT_FAULT_ERROR, KT_FAULT_NULL, "KTANIM::load: `fileName` is null"},
        {"KTANIM::load",
         [](const TempFolder &folder) {
             KTANIM::setKTAPath(folder.prefix().c_str());
             EXPECT_FALSE((new KTANIM)->load("run.kta"));
         },
         KT_FAULT_ERROR, KT_FAULT_FILE_MISSING, "KTANIM::load: %Drun.kta: the file does not exist"},
        {"KTANIM::load", [](const TempFolder &folder) { EXPECT_FALSE(loadAnim(folder, anim(129, 1))); },
         KT_FAULT_ERROR, KT_FAULT_DATA,
         "KTANIM::load: %Dwalk.kta, byte 15: bone count: more than 128 (found 129)", 15},
        {"KTANIM::load", [](const TempFolder &folder) { EXPECT_FALSE(loadAnim(folder, anim(1, 1025))); },
         KT_FAULT_ERROR, KT_FAULT_DATA,
         "KTANIM::load: %Dwalk.kta, byte 17: frame count: more than 1024 (found 1025)", 17},
        {"KTANIM::load", [](const TempFolder &folder) { EXPECT_FALSE(loadAnim(folder, anim(1, 1))); },
         KT_FAULT_ERROR, KT_FAULT_DATA, "KTANIM::load: %Dwalk.kta, byte 19: name: ends early or is too long",
         19},
        {"KTANIM::save", [](const TempFolder &) { EXPECT_FALSE((new KTANIM)->save(nullptr)); },
         KT_FAULT_ERROR, KT_FAULT_NULL, "KTANIM::save: `path` is null"},
        {"KTANIM::save",
         [](const TempFolder &folder) { EXPECT_FALSE((new KTANIM)->save(folder.path("no/a.kta").c_str())); },
         KT_FAULT_ERROR, KT_FAULT_FILE_WRITE, "KTANIM::save: %Dno/a.kta: the file cannot be written"},
    });
}

}  // namespace
}  // namespace keltra::test
