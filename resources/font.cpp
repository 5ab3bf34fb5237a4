// SPDX-License-Identifier: Zlib
#include <keltra/font.h>

#include <keltra/foundation.h>
#include <keltra/opengl.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "core/holders.h"
#include "formats/kerning.h"
#include "formats/key_check.h"
#include "foundation/argument.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "foundation/file_bytes.h"
#include "foundation/quiet.h"
#include "foundation/registry.h"
#include "resources/text_escape.h"

#include <GLES/gl.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

template <>
struct keltra::PublicFields<KTFONT> : keltra::UsualFields<KTFONT, &KTFONT::name, &KTFONT::firstFont> {};
template class KTREGISTERED<KTFONT>;

const unsigned int KTFONT::maxGlyphs;
const unsigned int KTFONT::maxCharacters;
char KTFONT::fontPath[256] = "";
KTFONT *KTFONT::firstFont = nullptr;
KTLISTED<KTFONT> *KTFONT::allFonts = nullptr;
const keltra::OnGone<KTTEXTURE> KTFONT::onTextureGone(&KTFONT::forgetTexture);
std::int32_t *KTFONT::fontCachedVertex = nullptr;
std::int32_t *KTFONT::fontCachedTexCoord = nullptr;
unsigned char *KTFONT::fontCachedColor = nullptr;
std::uint16_t *KTFONT::fontCachedIndex = nullptr;
unsigned int KTFONT::fontCachedCurrent = 0;
bool KTFONT::fontCachedFlushed = false;
alignas(std::uint32_t) unsigned char KTFONT::fontCurrentColor[24] = {255, 255, 255, 255, 255, 255, 255, 255,
                                                                     255, 255, 255, 255, 255, 255, 255, 255,
                                                                     255, 255, 255, 255, 255, 255, 255, 255};

namespace {

constexpr unsigned int kGlyphVertices = 6;
constexpr unsigned int kVertices = KTFONT::maxGlyphs * kGlyphVertices;
constexpr unsigned int kPairs = 2 * kGlyphVertices;   // of coordinates, a glyph
constexpr unsigned int kColors = 4 * kGlyphVertices;  // bytes a glyph
constexpr char kFirstCharacter = ' ';
constexpr int kCharacters = 96;
constexpr int kCells = 16;  // in a row of the texture
constexpr GLfixed kTexels = 65536 / kCells;
constexpr unsigned int kWidest = 4096;  // of wider glyphs, the column of the texture may leave 32 bits

template <class T>
T *newArray(unsigned int count) {
    return static_cast<T *>(keltra::allocate(count * static_cast<unsigned int>(sizeof(T))));
}

template <class T>
void freeArray(T *&array) {
    if (array) vnfFree(array);
    array = nullptr;
}

// Entry of the kerning table; outside it for characters that have none. The same wherever char is unsigned.
int cellOf(char c) { return static_cast<signed char>(c) - kFirstCharacter; }

bool hasKerning(char c) { return cellOf(c) >= 0 && cellOf(c) < kCharacters; }

// What lies outside 16.16 stays outside the screen, on its side.
GLfixed pixels(std::int64_t value) {
    return static_cast<GLfixed>(std::clamp<std::int64_t>(value, -32768, 32767) * 65536);
}

// Sixteenths of the texture.
GLfixed sixteenths(std::int64_t value) {
    return static_cast<GLfixed>(std::clamp<std::int64_t>(value, -32768 * kCells, 32767 * kCells) * kTexels);
}

// A digit from 0 to 8 spans 0 to 255; other characters give the low byte of the same product. The same
// wherever char is unsigned.
unsigned char colorByte(char digit) {
    return static_cast<unsigned char>((static_cast<signed char>(digit) - '0') * 3189 / 100);
}

void setCurrentColor(unsigned char r, unsigned char g, unsigned char b, unsigned char a) {
    const unsigned char color[4] = {r, g, b, a};
    for (unsigned int i = 0; i < kGlyphVertices; ++i)
        std::memcpy(KTFONT::fontCurrentColor + i * sizeof color, color, sizeof color);
}

// Where a glyph is drawn and where in the texture it lies.
struct Quad {
    GLfixed left, right, top, bottom;
    GLfixed s0, s1, t0, t1;
};

// A glyph's part of the batch.
struct Slot {
    std::int32_t *vertex, *texel;
    unsigned char *color;

    explicit Slot(unsigned int index)
        : vertex(KTFONT::fontCachedVertex + index * kPairs),
          texel(KTFONT::fontCachedTexCoord + index * kPairs),
          color(KTFONT::fontCachedColor + index * kColors) {}

    void advance() {
        vertex += kPairs;
        texel += kPairs;
        color += kColors;
    }
    [[gnu::always_inline]] void write(const Quad &quad) const {
        vertex[0] = vertex[4] = vertex[10] = quad.left;
        vertex[2] = vertex[6] = vertex[8] = quad.right;
        vertex[1] = vertex[3] = vertex[7] = quad.bottom;
        vertex[5] = vertex[9] = vertex[11] = quad.top;
        texel[0] = texel[4] = texel[10] = quad.s0;
        texel[2] = texel[6] = texel[8] = quad.s1;
        texel[1] = texel[3] = texel[7] = quad.t1;
        texel[5] = texel[9] = texel[11] = quad.t0;
    }
    // All corners have the color of the string.
    void writeColor(std::uint32_t rgba) const {
        // Aligned as every block of the C library: the device has no other stores of words.
        std::uint32_t *target = static_cast<std::uint32_t *>(__builtin_assume_aligned(color, sizeof rgba));
        static_assert(kGlyphVertices == 6, "all of them");
        target[0] = target[1] = target[2] = target[3] = target[4] = target[5] = rgba;
    }
};

std::uint32_t currentColor() {
    std::uint32_t rgba;
    std::memcpy(&rgba, KTFONT::fontCurrentColor, sizeof rgba);
    return rgba;
}

void setPointers(unsigned int slot) {
    keltra::useFlatArrays();
    keltra::useTexture();
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, KTFONT::fontCachedColor + slot * kColors);
    glVertexPointer(2, GL_FIXED, 0, KTFONT::fontCachedVertex + slot * kPairs);
    glTexCoordPointer(2, GL_FIXED, 0, KTFONT::fontCachedTexCoord + slot * kPairs);
}

void drawBatch(unsigned int first, unsigned int count) {
    setPointers(0);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count * kGlyphVertices), GL_UNSIGNED_SHORT,
                   KTFONT::fontCachedIndex + first * kGlyphVertices);
}

void bind(KTTEXTURE &texture) {
    texture.render(nullptr);
    KTOPENGL::blendingOn();
    keltra::setBlendFunction(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

// The marker is public: a value past the batch counts as an empty batch.
unsigned int freeSlot() {
    if (KTFONT::fontCachedCurrent >= KTFONT::maxGlyphs) KTFONT::fontCachedCurrent = 0;
    return KTFONT::fontCachedCurrent;
}

// The slot behind `slot`, which has been written.
unsigned int nextSlot(unsigned int slot) {
    if (++slot < KTFONT::maxGlyphs) return slot;
    drawBatch(0, KTFONT::maxGlyphs);
    glFinish();  // the arrays are written over at once
    KTFONT::fontCachedFlushed = true;
    return 0;
}

// Where the next glyph of a text goes. What stays on the screen, as nearly all does, takes 32 bits.
class Pen {
   public:
    Pen(const KTFONT &font, std::int64_t left, std::int64_t top) : font(font), begin(left), x(left), y(top) {
        beginLine();
    }

    [[gnu::always_inline]] Quad place(char c) const {
        const int cell = cellOf(c), row = cell >> 4;
        // Deliberate: the row is multiplied by the width on the screen, not by the 16 cells of a row.
        // Textures are made for glyphs 16 pixels wide, where both are the same.
        GLfixed s0, s1, left, right;
        if (font.charSizeX <= kWidest) {
            s0 = (cell - static_cast<int>(font.charSizeX) * row) * kTexels;
            s1 = s0 + kTexels;
        } else {
            const std::int64_t column = cell - std::int64_t{font.charSizeX} * row;
            s0 = sixteenths(column);
            s1 = sixteenths(column + 1);
        }
        if (x >= 0 && x < 32768 && font.charSizeX < 32768 - static_cast<unsigned int>(x)) {
            left = static_cast<int>(x) * 65536;
            right = left + static_cast<int>(font.charSizeX) * 65536;
        } else {
            left = pixels(x);
            right = pixels(x + font.charSizeX);
        }
        const GLfixed t0 = (kCells - row) * kTexels;
        return {left, right, top, bottom, s0, s1, t0, t0 - kTexels};
    }
    void advance(char c) {
        const int cell = cellOf(c);
        x += font.charSizeX;
        if (cell >= 0 && cell < kCharacters) x -= font.kerning[cell];
    }
    void breakLine() {
        x = begin;
        moveY(font.charSizeY);
    }
    void moveX(int by) { x += by; }
    void moveY(std::int64_t by) {
        y += by;
        beginLine();
    }

   private:
    void beginLine() {
        top = pixels(y);
        bottom = pixels(y + font.charSizeY);
    }

    const KTFONT &font;
    const std::int64_t begin;
    std::int64_t x, y;
    GLfixed top, bottom;
};

// Carries out the escape at `text`.
void escape(keltra::TextToken token, const char *text, Pen &pen) {
    using keltra::TextToken;
    if (token == TextToken::kColor)
        setCurrentColor(colorByte(text[2]), colorByte(text[3]), colorByte(text[4]), colorByte(text[5]));
    if (token == TextToken::kMoveX) pen.moveX(keltra::escapeNumber(text));
    if (token == TextToken::kMoveY) pen.moveY(keltra::escapeNumber(text));
}

// The format that widgets use, for which nothing is formatted.
bool isText(const char *format) { return format[0] == '%' && format[1] == 's' && format[2] == '\0'; }

// Null for a text that would be cut, and for none.
const char *shortText(const char *text) {
    return text && std::memchr(text, 0, KTFONT::maxCharacters) ? text : nullptr;
}

}  // namespace

KELTRA_COLD KTFONT::KTFONT() : texture(nullptr), kerning(), charSizeX(16), charSizeY(16), toldMissing(false) {
    joinList(allFonts);
    id = enlist();
    keltra::writeName(name, "[font %d]", id);
}

KELTRA_COLD KTFONT::KTFONT(const KTFONT &other) : KTREGISTERED<KTFONT>(other), KTLISTED<KTFONT>() {
    joinList(allFonts);
    copyFields(other);
}

KELTRA_COLD KTFONT &KTFONT::operator=(const KTFONT &other) {
    if (this == &other) return *this;
    textureUse.take(texture);
    copyFields(other);
    fieldsAssigned();
    return *this;
}

KTFONT::~KTFONT() { release(); }

KELTRA_COLD void KTFONT::copyFields(const KTFONT &other) {
    id = other.id;
    texture = other.texture;
    std::memcpy(kerning, other.kerning, sizeof kerning);
    charSizeX = other.charSizeX;
    charSizeY = other.charSizeY;
    std::memcpy(name, other.name, sizeof name);
    previous = other.previous;
    next = other.next;
    toldMissing = other.toldMissing;
}

KELTRA_COLD void KTFONT::release() {
    keltra::OnGone<KTFONT>::notify({*this, isHeld()});
    textureUse.take(texture);
    delist();
}

void KTFONT::forgetTexture(const keltra::Gone<KTTEXTURE> &gone) {
    visitList(allFonts, gone.mostVisited(), [&gone](KTFONT &font) {
        if (gone.has(font.texture)) font.textureUse.forget(font.texture);
    });
}

KELTRA_COLD bool KTFONT::init() {
    if (fontCachedVertex) return keltra::failState(KT_CALL("KTFONT::init"), keltra::kActive);
    fontCachedVertex = newArray<std::int32_t>(2 * kVertices);
    fontCachedTexCoord = newArray<std::int32_t>(2 * kVertices);
    fontCachedColor = newArray<unsigned char>(4 * kVertices);
    fontCachedIndex = newArray<std::uint16_t>(kVertices);
    if (!fontCachedVertex || !fontCachedTexCoord || !fontCachedColor || !fontCachedIndex) {
        free();
        return keltra::failMemory(KT_CALL("KTFONT::init"));
    }
    for (unsigned int i = 0; i < kVertices; ++i) fontCachedIndex[i] = static_cast<std::uint16_t>(i);
    return true;
}

KELTRA_COLD bool KTFONT::free() {
    freeArray(fontCachedVertex);
    freeArray(fontCachedTexCoord);
    freeArray(fontCachedColor);
    freeArray(fontCachedIndex);
    reset();
    return true;
}

KELTRA_COLD bool KTFONT::setTexture(KTTEXTURE *glyphs) {
    if (!glyphs) return keltra::failNull(KT_CALL("KTFONT::setTexture"), KT_TEXT("glyphs"));
    textureUse.set(texture, glyphs);
    toldMissing = false;
    return true;
}

KELTRA_COLD bool KTFONT::setKerning(char c, signed char value) {
    if (!hasKerning(c))
        return keltra::failValue(KT_CALL("KTFONT::setKerning"), KT_TEXT("c"), c, KT_TEXT("%ld to %ld"),
                                 kFirstCharacter, kFirstCharacter + kCharacters - 1);
    kerning[cellOf(c)] = value;
    return true;
}

signed char KTFONT::getKerning(char c) const { return hasKerning(c) ? kerning[cellOf(c)] : 0; }

KELTRA_COLD bool KTFONT::loadKerning(const char *filename) {
    const keltra::FilePath path(fontPath, filename);
    keltra::FaultScope scope(KT_CALL("KTFONT::loadKerning"), path.text);
    if (!filename) return scope.failNull(KT_TEXT("filename"));
    vnfParser file;
    // The parser would log a missing file.
    if (!vnfFileExists(path.text)) return scope.failFile();
    if (!vnfOpenParser(&file, path.text)) return false;
    vnfRemoveComments(&file, keltra::kKerningComment);
    keltra::KerningValues values;
    const bool isPlain = keltra::readKernings(file, values);
    for (unsigned int i = 0; i < keltra::kKerningKeys; ++i)
        if (values.isThere[i]) kerning[cellOf(keltra::kerningCharacter(i))] = values.value[i];
    if (!isPlain) keltra::checkKerning(file);
    vnfCloseParser(&file);
    return true;
}

void KTFONT::writeGlyph(std::int64_t x, std::int64_t y, char c) const {
    const Slot slot(freeSlot());
    slot.write(Pen(*this, x, y).place(c));
    std::memcpy(slot.color, fontCurrentColor, sizeof fontCurrentColor);
}

void KTFONT::queueGlyph(std::int64_t x, std::int64_t y, char c) const {
    writeGlyph(x, y, c);
    fontCachedCurrent = nextSlot(fontCachedCurrent);
}

// Labels and buttons draw in each frame: reported once, until there is a texture. Always false.
KELTRA_COLD bool KTFONT::failTexture(const char *call) {
    if (toldMissing) return false;
    toldMissing = true;
    KTFAULT &fault = keltra::newFault(KT_FAULT_STATE, {}, KT_TEXT("the font has no texture"), {});
    fault.call = call;
    KTFAULTS::report(&fault);
    return false;
}

bool KTFONT::putChar(int x, int y, char c, bool immediate) {
    if (!fontCachedVertex) return keltra::failState(KT_CALL("KTFONT::putChar"), keltra::kInactive);
    if (!immediate) {
        queueGlyph(x, y, c);
        return true;
    }
    if (!texture) return failTexture(keltra::faultCallName(KT_CALL("KTFONT::putChar")));
    writeGlyph(x, y, c);
    bind(*texture);
    setPointers(fontCachedCurrent);
    glDrawArrays(GL_TRIANGLES, 0, kGlyphVertices);
    return true;
}

void KTFONT::queueText(std::int64_t left, std::int64_t top, const char *text) const {
    using keltra::TextToken;
    Pen pen(*this, left, top);
    unsigned int index = freeSlot();
    Slot slot(index);
    std::uint32_t color = currentColor();
    while (const char c = *text) {
        const TextToken token = keltra::textToken(text);
        if (token == TextToken::kEnd) break;
        if (token != TextToken::kGlyph) {
            escape(token, text, pen);
            color = currentColor();
            text += keltra::kEscapeLength;
            continue;
        }
        ++text;
        if (c == '\n') {
            pen.breakLine();
            continue;
        }
        slot.write(pen.place(c));
        slot.writeColor(color);
        pen.advance(c);
        slot.advance();
        index = nextSlot(index);
        if (index == 0) slot = Slot(0);
    }
    fontCachedCurrent = index;
}

bool KTFONT::putString(int x, int y, const char *format, ...) {
    constexpr keltra::FaultCall call = KT_CALL("KTFONT::putString");
    if (!format) return keltra::failNull(call, KT_TEXT("format"));
    if (!fontCachedVertex) return keltra::failState(call, keltra::kInactive);
    markHeld();
    if (!texture) return failTexture(keltra::faultCallName(call));
    bind(*texture);
    char formatted[maxCharacters];
    std::va_list arguments;
    va_start(arguments, format);
    const char *text = isText(format) ? shortText(va_arg(arguments, const char *)) : nullptr;
    va_end(arguments);
    va_start(arguments, format);
    const int length = text ? 0 : std::vsnprintf(formatted, sizeof formatted, format, arguments);
    va_end(arguments);
    if (length < 0) return keltra::failFormat(call);
    setCurrentColor(255, 255, 255, 255);
    fontCachedFlushed = false;
    const unsigned int start = freeSlot();
    queueText(x, y, text ? text : formatted);
    if (fontCachedCurrent <= start && !fontCachedFlushed) return true;
    // Deliberate: after a full batch the number of glyphs queued before this string is subtracted again, and
    // as many glyphs at its end are not drawn; applications rely on what is shown.
    if (fontCachedCurrent > start) drawBatch(start, fontCachedCurrent - start);
    reset();
    return true;
}

KTFONT *KTFONT::findByName(const char *text) { return findRegistered(text); }

KTFONT *KTFONT::findById(unsigned int wanted) { return findRegistered(wanted); }

unsigned int KTFONT::getNumberOfFonts() { return count(); }

KELTRA_COLD bool KTFONT::cleanUp() {
    keltra::notifyGoneFrom(firstRegistered());
    return destroyAll(&KTFONT::release);
}

KELTRA_COLD void KTFONT::setPath(const char *path) {
    keltra::takeText(fontPath, path, KT_CALL("KTFONT::setPath"));
}

KELTRA_COLD void KTFONT::setName(const char *text) {
    if (keltra::takeName(name, text, KT_CALL("KTFONT::setName"))) nameChanged();
}
