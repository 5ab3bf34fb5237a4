// SPDX-License-Identifier: Zlib
#include <algorithm>
#include <climits>

#include "tests/resources/texture_fixture.h"
#include "tests/support/allocations.h"
#include "tests/support/same_verdict.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr int kOne = 65536;
constexpr int kCell = kOne / 16;

// Not a literal, so that the compiler does not warn.
const char *const kNoText = nullptr;

struct Corner {
    int x, y, s, t;
};

bool operator==(const Corner &a, const Corner &b) {
    return a.x == b.x && a.y == b.y && a.s == b.s && a.t == b.t;
}

void PrintTo(const Corner &corner, std::ostream *stream) {
    *stream << '(' << corner.x << ' ' << corner.y << ' ' << corner.s << ' ' << corner.t << ')';
}

class FontTest : public TextureTest {
   protected:
    void SetUp() override {
        TextureTest::SetUp();
        font = new KTFONT;
        glyphs = new KTTEXTURE;
        glyphs->setFilter(false, false, false);
        ASSERT_TRUE(glyphs->create(16, 16, 4));
        ASSERT_TRUE(font->setTexture(glyphs));
        ASSERT_TRUE(KELTRA::begin2D());
        GlRecorder::clear();
    }
    void TearDown() override {
        KELTRA::end2D();
        KTFONT::setPath(nullptr);
        TextureTest::TearDown();
    }

    static Corner cornerOf(unsigned int vertex) {
        const std::int32_t *position = KTFONT::fontCachedVertex + 2 * vertex;
        const std::int32_t *cell = KTFONT::fontCachedTexCoord + 2 * vertex;
        return {position[0], position[1], cell[0], cell[1]};
    }
    static std::vector<Corner> cornersOf(unsigned int slot) {
        std::vector<Corner> corners;
        for (unsigned int i = 0; i < 6; ++i) corners.push_back(cornerOf(6 * slot + i));
        return corners;
    }
    /// The top left corner of a glyph, in pixels.
    static std::pair<int, int> placeOf(unsigned int slot) {
        const Corner corner = cornerOf(6 * slot + 2);
        return {corner.x / kOne, corner.y / kOne};
    }
    static std::vector<int> colorOf(unsigned int slot) {
        const unsigned char *color = KTFONT::fontCachedColor + 24 * slot;
        for (int i = 4; i < 24; ++i) EXPECT_EQ(color[i], color[i % 4]) << "vertex " << i / 4;
        return {color, color + 4};
    }
    static void queue(int count) {
        for (int i = 0; i < count; ++i) KTFONT::getFirst()->putChar(0, 0, 'q', false);
    }
    /// Count and first glyph of each batch drawn.
    static std::vector<std::pair<int, int>> batches() {
        std::vector<std::pair<int, int>> drawn;
        for (const Call &call : GlRecorder::all("glDrawElements")) {
            EXPECT_EQ(call.arguments[0], GL_TRIANGLES);
            EXPECT_EQ(call.arguments[2], GL_UNSIGNED_SHORT);
            EXPECT_GE(call.arguments[1], 0);
            const std::int64_t first =
                call.arguments[3] - reinterpret_cast<std::intptr_t>(KTFONT::fontCachedIndex);
            drawn.push_back({static_cast<int>(call.arguments[1] / 6), static_cast<int>(first / 12)});
        }
        return drawn;
    }

    KTFONT *font = nullptr;
    KTTEXTURE *glyphs = nullptr;
};

using Batches = std::vector<std::pair<int, int>>;

TEST_F(FontTest, StartsWithTheDefaults) {
    const KTFONT fresh;
    EXPECT_EQ(fresh.texture, nullptr);
    EXPECT_THAT(fresh.kerning, Each(0));
    EXPECT_EQ(fresh.getCharSizeX(), 16u);
    EXPECT_EQ(fresh.getCharSizeY(), 16u);
    EXPECT_EQ(fresh.getName(), "[font " + std::to_string(fresh.getId()) + "]");
}

TEST_F(FontTest, ListsFontsInTheOrderOfCreation) {
    KTFONT *second = new KTFONT;
    EXPECT_EQ(KTFONT::getNumberOfFonts(), 2u);
    EXPECT_EQ(KTFONT::getFirst(), font);
    EXPECT_EQ(font->getNext(), second);
    EXPECT_EQ(second->getPrevious(), font);
    EXPECT_EQ(second->getNext(), nullptr);
    second->setName("small");
    EXPECT_EQ(KTFONT::findByName("small"), second);
    EXPECT_EQ(KTFONT::findByName("Small"), nullptr);
    EXPECT_EQ(KTFONT::findByName(nullptr), nullptr);
    EXPECT_EQ(KTFONT::findById(second->getId()), second);
    EXPECT_EQ(KTFONT::findById(70000), nullptr);
    second->setName(nullptr);
    second->setName(std::string(256, 'n').c_str());
    EXPECT_STREQ(second->getName(), "small");
    delete font;
    EXPECT_EQ(KTFONT::getFirst(), second);
    EXPECT_EQ(second->getPrevious(), nullptr);
    EXPECT_TRUE(KTFONT::cleanUp());
    EXPECT_EQ(KTFONT::getNumberOfFonts(), 0u);
    EXPECT_FALSE(KTFONT::cleanUp());
}

TEST_F(FontTest, CountsTheUseOfItsTexture) {
    EXPECT_EQ(glyphs->getReferences(), 1);
    KTTEXTURE other;
    EXPECT_FALSE(font->setTexture(nullptr));
    EXPECT_EQ(font->getTexture(), glyphs);
    EXPECT_TRUE(font->setTexture(&other));
    EXPECT_EQ(glyphs->getReferences(), 0);
    EXPECT_EQ(other.getReferences(), 1);
    EXPECT_TRUE(font->setTexture(&other));
    EXPECT_EQ(other.getReferences(), 1);
    KTFONT copy(*font);
    EXPECT_EQ(copy.getTexture(), &other);
    EXPECT_EQ(other.getReferences(), 1);
    EXPECT_TRUE(copy.setTexture(glyphs));
    EXPECT_EQ(other.getReferences(), 1) << "the copy had not counted it";
    copy = *font;
    EXPECT_EQ(glyphs->getReferences(), 0);
    delete font;
    EXPECT_EQ(other.getReferences(), 0);
}

TEST_F(FontTest, ADestroyedTextureIsForgotten) {
    KTFONT copy(*font);
    delete glyphs;
    EXPECT_EQ(font->getTexture(), nullptr);
    EXPECT_EQ(copy.getTexture(), nullptr);
    EXPECT_FALSE(font->putString(0, 0, "A"));
    KTTEXTURE other;
    EXPECT_TRUE(font->setTexture(&other));
    EXPECT_EQ(other.getReferences(), 1);
}

TEST_F(FontTest, ACopyIsOnNoList) {
    font->setKerning('A', 3);
    font->setCharSizeY(20);
    const KTFONT copy(*font);
    EXPECT_EQ(KTFONT::getNumberOfFonts(), 1u);
    EXPECT_EQ(copy.getId(), font->getId());
    EXPECT_STREQ(copy.getName(), font->getName());
    EXPECT_EQ(copy.getKerning('A'), 3);
    EXPECT_EQ(copy.getCharSizeY(), 20u);
}

TEST_F(FontTest, AGlyphIsTwoTrianglesOfItsCell) {
    EXPECT_TRUE(font->putChar(10, 20, 'P', false));
    EXPECT_EQ(KTFONT::fontCachedCurrent, 1u);
    const int l = 10 * kOne, r = 26 * kOne, t = 20 * kOne, b = 36 * kOne;
    const int s0 = 0, s1 = kCell, t0 = 13 * kCell, t1 = 12 * kCell;  // row 3, column 0
    EXPECT_THAT(cornersOf(0), ElementsAre(Corner{l, b, s0, t1}, Corner{r, b, s1, t1}, Corner{l, t, s0, t0},
                                          Corner{r, b, s1, t1}, Corner{r, t, s1, t0}, Corner{l, t, s0, t0}));
    EXPECT_TRUE(GlRecorder::calls().empty());
}

TEST_F(FontTest, CharacterThirtyTwoIsAtTheTopLeft) {
    font->putChar(0, 0, ' ', false);
    font->putChar(0, 0, '/', false);
    EXPECT_EQ(cornerOf(2).s, 0);
    EXPECT_EQ(cornerOf(2).t, kOne);
    EXPECT_EQ(cornerOf(8).s, 15 * kCell);
    EXPECT_EQ(cornerOf(8).t, kOne);
}

// Deliberate: the row is multiplied by the width of the glyph; textures are made for it.
TEST_F(FontTest, OtherWidthsThanSixteenTakeAnotherColumn) {
    font->setCharSizeX(8);
    font->putChar(0, 0, 'P', false);
    EXPECT_EQ(cornerOf(2).s, (48 - 8 * 3) * kCell);
    EXPECT_EQ(cornerOf(2).t, 13 * kCell);
    font->setCharSizeX(24);
    font->putChar(0, 0, 'P', false);
    EXPECT_EQ(cornerOf(8).s, (48 - 24 * 3) * kCell);
}

TEST_F(FontTest, CodesOutsideTheTableHaveACellAndNoKerning) {
    for (signed char &kerning : font->kerning) kerning = 4;
    EXPECT_TRUE(font->putString(0, 0, "%s", "\x80\x1f\xff!"));
    EXPECT_EQ(placeOf(1).first, 16);
    EXPECT_EQ(placeOf(2).first, 32);
    EXPECT_EQ(placeOf(3).first, 48);
    EXPECT_EQ(cornerOf(2).t, (16 + 10) * kCell) << "rows go below 0: -160 is in row -10";
    EXPECT_EQ(cornerOf(2).s, 0);
    EXPECT_EQ(cornerOf(8).t, (16 + 1) * kCell);
    EXPECT_EQ(cornerOf(8).s, 15 * kCell);
}

TEST_F(FontTest, PositionsAndSizesOfAnyRangeStayOnTheirSide) {
    font->putChar(INT_MAX, INT_MIN, 'A', false);
    EXPECT_EQ(cornerOf(1).x, 32767 * kOne);
    EXPECT_EQ(cornerOf(1).y, -32768 * kOne);
    font->setCharSizeX(UINT_MAX);
    font->setCharSizeY(UINT_MAX);
    EXPECT_TRUE(font->putChar(INT_MAX, INT_MAX, '\x80', false));
    EXPECT_TRUE(font->putString(INT_MAX, INT_MAX, "A^x9999A\n\nA"));
    EXPECT_TRUE(font->putString(INT_MIN, INT_MIN, "A^x-999A^y-999A"));
}

TEST_F(FontTest, OneStringIsOneDraw) {
    EXPECT_TRUE(font->putString(5, 6, "%s %d", "abc", 42));
    EXPECT_EQ(batches(), (Batches{{6, 0}}));
    EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glEnable", "glBindTexture", "glEnable", "glBlendFunc", "glColorPointer",
                            "glVertexPointer", "glTexCoordPointer", "glDrawElements"));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
    EXPECT_EQ(GlRecorder::count("glBlendFunc", {GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA}), 1);
    EXPECT_EQ(GlRecorder::count("glColorPointer", {4, GL_UNSIGNED_BYTE, 0}), 1);
    EXPECT_EQ(GlRecorder::count("glVertexPointer", {2, GL_FIXED, 0}), 1);
    EXPECT_EQ(GlRecorder::count("glTexCoordPointer", {2, GL_FIXED, 0}), 1);
    GlRecorder::clear();
    EXPECT_TRUE(font->putString(5, 6, "again"));
    EXPECT_EQ(GlRecorder::count("glEnable") + GlRecorder::count("glBindTexture"), 0) << "cached";
}

TEST_F(FontTest, GlyphsFollowEachOtherByTheirKerning) {
    font->setKerning('A', 6);
    font->setKerning('B', -2);
    EXPECT_TRUE(font->putString(100, 50, "ABC\nD"));
    EXPECT_EQ(placeOf(0), (std::pair{100, 50}));
    EXPECT_EQ(placeOf(1), (std::pair{110, 50}));
    EXPECT_EQ(placeOf(2), (std::pair{128, 50}));
    EXPECT_EQ(placeOf(3), (std::pair{100, 66}));
    EXPECT_EQ(batches(), (Batches{{4, 0}}));
}

TEST_F(FontTest, EscapesColorWhatFollows) {
    EXPECT_TRUE(font->putString(0, 0, "w^c8000Red^C8888o^c1234x"));
    EXPECT_THAT(colorOf(0), ElementsAre(255, 255, 255, 255));
    for (unsigned int slot : {1, 2, 3}) EXPECT_THAT(colorOf(slot), ElementsAre(255, 0, 0, 0));
    EXPECT_THAT(colorOf(4), ElementsAre(255, 255, 255, 255));
    EXPECT_THAT(colorOf(5), ElementsAre(31, 63, 95, 127));
    EXPECT_TRUE(font->putString(0, 0, "w"));
    EXPECT_THAT(colorOf(0), ElementsAre(255, 255, 255, 255)) << "each string begins white";
}

TEST_F(FontTest, CharactersThatAreNoDigitsGiveSomeColor) {
    EXPECT_TRUE(font->putString(0, 0, "^c9~ \xff!"));
    EXPECT_THAT(colorOf(0), ElementsAre(287 & 255, (78 * 3189 / 100) & 255, -510 & 255, -1562 & 255));
}

TEST_F(FontTest, EscapesMoveWhatFollows) {
    EXPECT_TRUE(font->putString(0, 0, "^x0010A^y0005B^X-020^Y-002C\nD"));
    EXPECT_EQ(placeOf(0), (std::pair{10, 0}));
    EXPECT_EQ(placeOf(1), (std::pair{26, 5}));
    EXPECT_EQ(placeOf(2), (std::pair{22, 3}));
    EXPECT_EQ(placeOf(3), (std::pair{0, 19}));
}

TEST_F(FontTest, AnEscapeCutShortEndsTheString) {
    for (const char *text : {"A^", "A^c", "A^c888", "A^x", "A^x123", "A^Y", "A^C1"}) {
        GlRecorder::clear();
        EXPECT_TRUE(font->putString(0, 0, "%s", text));
        EXPECT_EQ(batches(), (Batches{{1, 0}})) << text;
    }
    GlRecorder::clear();
    EXPECT_TRUE(font->putString(0, 0, "^qA"));
    EXPECT_EQ(batches(), (Batches{{3, 0}})) << "no escape";
    GlRecorder::clear();
    EXPECT_TRUE(font->putString(0, 0, "^"));
    EXPECT_TRUE(font->putString(0, 0, "%s", ""));
    EXPECT_EQ(batches(), Batches{});
}

TEST_F(FontTest, RefusesNullAndAFontWithoutTexture) {
    EXPECT_FALSE(font->putString(0, 0, kNoText));
    KTFONT bare;
    EXPECT_FALSE(bare.putString(0, 0, "A"));
    EXPECT_FALSE(bare.putChar(0, 0, 'A', true));
    EXPECT_TRUE(GlRecorder::calls().empty());
    EXPECT_TRUE(bare.putChar(0, 0, 'A', false)) << "queueing needs no texture";
}

TEST_F(FontTest, TextIsCutAtTheBuffersEnd) {
    const std::string text(10000, 'x');
    EXPECT_TRUE(font->putString(0, 0, "%s", text.c_str()));
    EXPECT_EQ(batches(), (Batches{{1024, 0}, {1024, 0}, {1024, 0}, {4063 - 3 * 1024, 0}}));
    // The cut may fall into an escape, which then ends the text.
    GlRecorder::clear();
    const std::string escape = std::string(4060, '\n') + "^c8888A";
    EXPECT_TRUE(font->putString(0, 0, "%s", escape.c_str()));
    EXPECT_EQ(batches(), Batches{});
}

TEST_F(FontTest, ImmediateGlyphsAreDrawnAndNotQueued) {
    font->putChar(0, 0, 'q', false);
    EXPECT_TRUE(font->putChar(1, 2, 'A', true));
    EXPECT_EQ(KTFONT::fontCachedCurrent, 1u);
    EXPECT_THAT(GlRecorder::last("glDrawArrays").arguments, ElementsAre(GL_TRIANGLES, 0, 6));
    EXPECT_EQ(GlRecorder::last("glVertexPointer").arguments[3],
              reinterpret_cast<std::intptr_t>(KTFONT::fontCachedVertex + 12));
    EXPECT_EQ(GlRecorder::last("glTexCoordPointer").arguments[3],
              reinterpret_cast<std::intptr_t>(KTFONT::fontCachedTexCoord + 12));
    EXPECT_EQ(GlRecorder::last("glColorPointer").arguments[3],
              reinterpret_cast<std::intptr_t>(KTFONT::fontCachedColor + 24));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
    EXPECT_EQ(placeOf(1), (std::pair{1, 2}));
}

TEST_F(FontTest, AFullBatchIsDrawnAtOnce) {
    queue(1023);
    EXPECT_TRUE(GlRecorder::calls().empty());
    queue(1);
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glColorPointer", "glVertexPointer", "glTexCoordPointer",
                                                 "glDrawElements", "glFinish"));
    EXPECT_EQ(batches(), (Batches{{1024, 0}}));
    EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
    EXPECT_TRUE(KTFONT::fontCachedFlushed);
}

TEST_F(FontTest, AStringDrawsFromWhereItBegan) {
    queue(3);
    EXPECT_TRUE(font->putString(0, 0, "ABCD"));
    EXPECT_EQ(batches(), (Batches{{4, 3}})) << "what was queued before is dropped with the batch";
    EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
    queue(2);
    EXPECT_TRUE(font->putString(0, 0, "\n"));
    EXPECT_EQ(KTFONT::fontCachedCurrent, 2u) << "nothing drawn, nothing dropped";
}

// Deliberate: after an intermediate draw the count before the string is subtracted from the new batch;
// applications rely on what is shown.
TEST_F(FontTest, AfterAFlushTheLastDrawTakesTheCountAsItFalls) {
    const struct {
        int before, length;
        Batches drawn;
    } cases[] = {
        {0, 1024, {{1024, 0}}},
        {0, 1100, {{1024, 0}, {76, 0}}},
        {10, 1100, {{1024, 0}, {76, 10}}},          // 86 queued, less 10
        {1000, 100, {{1024, 0}}},                   // 76 less 1000: never a negative count
        {1000, 24, {{1024, 0}}},                    // 0 less 1000
        {12, 1024, {{1024, 0}}},                    // 12 less 12
        {1000, 24 + 1024, {{1024, 0}, {1024, 0}}},  // two flushes
        {1000, 24 + 1010, {{1024, 0}, {10, 1000}}},
    };
    for (const auto &expected : cases) {
        KTFONT::reset();
        queue(expected.before);
        GlRecorder::clear();
        EXPECT_TRUE(font->putString(0, 0, "%s", std::string(expected.length, 'x').c_str()));
        EXPECT_EQ(batches(), expected.drawn) << expected.before << " and " << expected.length;
        EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
    }
}

TEST_F(FontTest, AMarkerPastTheBatchCountsAsEmpty) {
    for (unsigned int marker : {1024u, 5000u, UINT_MAX}) {
        KTFONT::fontCachedCurrent = marker;
        EXPECT_TRUE(font->putString(0, 0, "AB"));
        EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
        KTFONT::fontCachedCurrent = marker;
        EXPECT_TRUE(font->putChar(0, 0, 'A', false));
        EXPECT_EQ(KTFONT::fontCachedCurrent, 1u);
        KTFONT::fontCachedCurrent = marker;
        EXPECT_TRUE(font->putChar(0, 0, 'A', true));
    }
    EXPECT_EQ(batches(), (Batches{{2, 0}, {2, 0}, {2, 0}}));
}

TEST_F(FontTest, TheTwoDimensionalPassBeginsWithAnEmptyBatch) {
    queue(5);
    KELTRA::end2D();
    ASSERT_TRUE(KELTRA::begin2D());
    EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
    queue(5);
    KTFONT::reset();
    EXPECT_EQ(KTFONT::fontCachedCurrent, 0u);
    EXPECT_EQ(GlRecorder::count("glDrawElements"), 0);
}

TEST_F(FontTest, NothingIsAllocatedForAString) {
    // The driver may allocate for a draw, and so does the recorder.
    GlRecorder::setStubbed(true);
    GlRecorder::setRecording(false);
    Allocations::startCounting();
    for (int i = 0; i < 300; ++i) font->putString(0, 0, "%s %d", "some text^c8080", i);
    const long allocations = Allocations::stopCounting();
    GlRecorder::setRecording(true);
    GlRecorder::setStubbed(false);
    EXPECT_EQ(allocations, 0);
}

TEST_F(FontTest, TheBatchLivesFromStartToStop) {
    for (unsigned int i = 0; i < 6144; ++i) ASSERT_EQ(KTFONT::fontCachedIndex[i], i);
    EXPECT_FALSE(KTFONT::init()) << "it is there";
    KELTRA::end2D();
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(KTFONT::getNumberOfFonts(), 0u);
    EXPECT_EQ(KTFONT::fontCachedVertex, nullptr);
    KTFONT early;
    KTTEXTURE texture;
    early.setTexture(&texture);
    GlRecorder::clear();
    EXPECT_FALSE(early.putString(0, 0, "A"));
    EXPECT_FALSE(early.putChar(0, 0, 'A', false));
    EXPECT_FALSE(early.putChar(0, 0, 'A', true));
    EXPECT_TRUE(GlRecorder::calls().empty());
    EXPECT_TRUE(KTFONT::free()) << "always";
}

TEST_F(FontTest, AMissingKerningFileIsNotLogged) {
    const std::string log = folder.path("log.txt");
    ASSERT_TRUE(vnfOpenLog(log.c_str()));
    const std::vector<std::uint8_t> before = readFile(log);
    EXPECT_FALSE(font->loadKerning("missing.txt"));
    const std::vector<std::uint8_t> after = readFile(log);
    vnfCloseLog();
    vnfOpenLog(nullptr);
    EXPECT_EQ(after, before);
}

TEST_F(FontTest, ReadsKerningFiles) {
    KTFONT::setPath(folder.prefix().c_str());
    EXPECT_EQ(KTFONT::getPath(), folder.prefix());
    folder.write(
        "a.txt",
        "# comment KELTRA_kerning_Z = 9\n"
        "KELTRA_kerning_A = 3 # more\n  KELTRA_kerning_b=-4\r\nKELTRA_kerning_\" = 7\nKELTRA_kerning_S = 2\n"
        "KELTRA_kerning_SPACE = 11\nKELTRA_kerning_DIESIS = 5\nKELTRA_kerning_EQUAL = 6\n");
    font->setKerning('Z', 1);
    font->setKerning('\x7f', 8);
    EXPECT_TRUE(font->loadKerning("a.txt"));
    EXPECT_EQ(font->getKerning('A'), 3);
    EXPECT_EQ(font->getKerning('b'), -4);
    EXPECT_EQ(font->getKerning('"'), 7);
    EXPECT_EQ(font->getKerning('S'), 2);
    EXPECT_EQ(font->getKerning(' '), 11);
    EXPECT_EQ(font->getKerning('#'), 5);
    EXPECT_EQ(font->getKerning('='), 6);
    EXPECT_EQ(font->getKerning('Z'), 1) << "kept: its key is a comment";
    EXPECT_EQ(font->getKerning('\x7f'), 8) << "no key for the caret";
}

// Deliberate: keys match inside longer words, and files rely on it, so SPACE before S gives S the number in
// "ACE = 11", which is 0.
TEST_F(FontTest, ANamedKeyBeforeItsFirstLetterIsTakenForIt) {
    KTFONT::setPath(folder.prefix().c_str());
    folder.write("a.txt", "KELTRA_kerning_SPACE = 11\nKELTRA_kerning_S = 2\n");
    font->setKerning('S', 7);
    EXPECT_TRUE(font->loadKerning("a.txt"));
    EXPECT_EQ(font->getKerning('S'), 0);
    EXPECT_EQ(font->getKerning(' '), 11);
}

TEST_F(FontTest, RefusesKerningFilesThatAreNotThere) {
    KTFONT::setPath(folder.prefix().c_str());
    font->setKerning('A', 3);
    folder.write("empty.txt", "");
    EXPECT_FALSE(font->loadKerning(nullptr));
    EXPECT_FALSE(font->loadKerning("none.txt"));
    EXPECT_FALSE(font->loadKerning("empty.txt"));
    expectSameVerdict("kerning", "", false);
    EXPECT_FALSE(font->loadKerning(std::string(5000, 'f').c_str()));
    EXPECT_EQ(font->getKerning('A'), 3);
}

TEST_F(FontTest, DamagedKerningFilesDoNoHarm) {
    KTFONT::setPath(folder.prefix().c_str());
    std::string text = "KELTRA_kerning_A = 99999999999999\nKELTRA_kerning_B = 300\nKELTRA_kerning_";
    text += std::string(2000, 'C') + "\n" + std::string(3, '\0') +
            "KELTRA_kerning_D=\n\xff\xfe=\rKELTRA_kerning_~";
    for (std::size_t size = 1; size <= text.size(); size += size < 100 ? 1 : 37) {
        folder.write("a.txt", std::string_view(text).substr(0, size));
        EXPECT_TRUE(font->loadKerning("a.txt")) << size;
        expectSameVerdict("kerning", std::string_view(text).substr(0, size), true);
    }
    EXPECT_EQ(font->getKerning('B'), 300 - 256) << "the low byte";
    EXPECT_EQ(font->getKerning('C'), 0);
}

}  // namespace
}  // namespace keltra::test
