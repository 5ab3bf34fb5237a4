// SPDX-License-Identifier: Zlib
#include "tools/font/font_baker.h"

#include <gtest/gtest.h>

namespace keltra::font {
namespace {

BakedFont bake(int cell, int size) {
    BakedFont font;
    std::string error;
    EXPECT_TRUE(bakeFont({KELTRA_EXAMPLE_FONT, cell, size}, &font, &error)) << error;
    return font;
}

/// The columns of a cell in which something is drawn: first and last; -1 for an empty cell.
std::pair<int, int> columnsOf(const BakedFont &font, int character) {
    const unsigned index = static_cast<unsigned>(character - kFirstCharacter),
                   cell = static_cast<unsigned>(font.cell);
    std::pair<int, int> columns = {-1, -1};
    for (unsigned x = 0; x < cell; ++x) {
        for (unsigned y = 0; y < cell; ++y) {
            if (!font.image.at(index % 16 * cell + x, index / 16 * cell + y).a) continue;
            if (columns.first < 0) columns.first = static_cast<int>(x);
            columns.second = static_cast<int>(x);
        }
    }
    return columns;
}

TEST(FontBaker, FillsACellForEachCharacter) {
    const BakedFont font = bake(16, 0);
    EXPECT_EQ(font.image.width, 256u);
    EXPECT_EQ(font.image.height, 256u);
    EXPECT_EQ(font.cut, 0);
    EXPECT_GE(font.size, 12);
    EXPECT_EQ(columnsOf(font, ' ').first, -1);
    for (int character = '!'; character <= kCaret; ++character)
        EXPECT_GE(columnsOf(font, character).first, 0) << static_cast<char>(character);
    for (unsigned y = 6 * 16; y < 256; ++y)
        for (unsigned x = 0; x < 256; ++x) ASSERT_EQ(font.image.at(x, y).a, 0) << "below the last row";
}

TEST(FontBaker, LettersAreWhiteSoThatTextTakesItsColor) {
    const BakedFont font = bake(16, 0);
    for (const formats::Rgba &pixel : font.image.pixels)
        ASSERT_TRUE(pixel.r == 255 && pixel.g == 255 && pixel.b == 255);
}

TEST(FontBaker, TheCaretIsABarAtTheLeftOfItsCell) {
    const BakedFont font = bake(16, 0);
    EXPECT_EQ(columnsOf(font, kCaret), (std::pair{0, 1}));
}

TEST(FontBaker, KerningLeavesEachLetterItsWidth) {
    const BakedFont font = bake(16, 0);
    for (int i = 0; i < kLetters; ++i) {
        const int advance = font.cell - font.kerning[static_cast<std::size_t>(i)];
        EXPECT_GT(advance, 0) << i;
        EXPECT_LE(advance, font.cell) << i;
        // A letter may lean a pixel over its advance, not more.
        EXPECT_LE(columnsOf(font, kFirstCharacter + i).second, advance) << i;
    }
    EXPECT_LT(font.cell - font.kerning['i' - 32], font.cell - font.kerning['W' - 32]);
}

TEST(FontBaker, ASizeThatIsTooLargeIsCutAtTheCells) {
    const BakedFont font = bake(16, 40);
    EXPECT_GT(font.cut, 50);
    EXPECT_EQ(font.size, 40);
    EXPECT_LT(font.kerning['W' - 32], 0);
    EXPECT_EQ(bake(32, 16).image.width, 512u);
}

TEST(FontBaker, NamesTheCharactersThatCannotStandInAKeyAtTheEnd) {
    const std::string text = kerningText(bake(16, 0));
    const std::size_t space = text.find("\nKELTRA_kerning_SPACE = ");
    ASSERT_NE(space, std::string::npos);
    EXPECT_NE(text.find("\nKELTRA_kerning_DIESIS = "), std::string::npos);
    EXPECT_NE(text.find("\nKELTRA_kerning_EQUAL = "), std::string::npos);
    for (int character = '!'; character < kCaret; ++character) {
        const std::string key = std::string("\nKELTRA_kerning_") + static_cast<char>(character) + " = ";
        if (character == '#' || character == '=') {
            EXPECT_EQ(text.find(key), std::string::npos);
        } else {
            EXPECT_LT(text.find(key), space) << key;
        }
    }
}

TEST(FontBaker, RefusesWhatIsNoFont) {
    BakedFont font;
    std::string error;
    EXPECT_FALSE(bakeFont({"/nowhere.ttf"}, &font, &error));
    EXPECT_NE(error.find("/nowhere.ttf"), std::string::npos);
    EXPECT_FALSE(bakeFont({__FILE__}, &font, &error));
}

TEST(FontBaker, ThePreviewShowsCellsAndLines) {
    const BakedFont font = bake(16, 0);
    const formats::Image picture = previewOf(font);
    EXPECT_EQ(picture.width, 512u);
    unsigned bright = 0;
    for (const formats::Rgba &pixel : picture.pixels) {
        ASSERT_EQ(pixel.a, 255);
        bright += pixel.r > 200;
    }
    EXPECT_GT(bright, 1000u);
}

}  // namespace
}  // namespace keltra::font
