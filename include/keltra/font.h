// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FONT_H
#define KELTRA_FONT_H

#include <keltra/registered.h>

#include <cstdint>

class KTFONT;
class KTTEXTURE;
KT_LISTED_CLASS(KTFONT);

#if defined(__GNUC__)
#define KELTRA_FONT_PRINTF_LIKE __attribute__((format(printf, 4, 5)))
#else
#define KELTRA_FONT_PRINTF_LIKE
#endif

/** A bitmap font, which draws text in 2D: a texture of 16 x 16 glyph cells, character 32 at the top left, and
 * a kerning table. Glyphs are queued as coloured triangles in arrays that all fonts share, and each string
 * is drawn with one call, between `KELTRA::begin2D` and `end2D`; it lies under the widgets, which `end2D`
 * draws. All fonts are on one list, which owns those made with `new`; a font does not own its texture.
 *
 * Text may contain escapes of six characters: '^cRGBA' sets the colour, four digits from 0 to 8; '^xNNNN'
 * and '^yNNNN' move what follows by pixels, with a sign as one of the four. Small and capital letters are
 * alike. A '^' at the end of a text, or an escape cut short, ends it. */
class KT_API KTFONT : public KTREGISTERED<KTFONT>, public KTLISTED<KTFONT> {
   public:
    static const unsigned int maxGlyphs = 1024;      ///< of one batch
    static const unsigned int maxCharacters = 4064;  ///< of a formatted string, with its end

    /** Without a texture; cells of 16 x 16 pixels, kerning 0. */
    KTFONT();
    /** A copy shares the texture and does not count its use. */
    KTFONT(const KTFONT &other);
    KTFONT &operator=(const KTFONT &other);
    ~KTFONT();

    /** Start and end of the engine: allocates the batch arrays, all or none, false when they exist; releases
     * them, true. */
    static bool init();
    static bool free();

    /** Sets the glyph texture and counts its use, giving back that of the one before; false for null, which
     * changes nothing. */
    bool setTexture(KTTEXTURE *glyphs);
    KTTEXTURE *getTexture() const { return texture; }
    /** Pixels by which the advance of a character is shorter than its cell. Characters 32 to 127; others give
     * false, 0. */
    bool setKerning(char c, signed char value);
    signed char getKerning(char c) const;
    /** Reads the kerning file font path + `filename`; characters without a key keep their value. False for
     * null, and for a missing or empty file. */
    bool loadKerning(const char *filename);

    /** Width of a text in pixels, as if on one line; escapes count only by what they move. 0 for null. */
    unsigned int stringLength(const char *text) const;
    /** Word-wraps `source` into `destination` at `width` pixels; the last argument is not used. Returns the
     * height in pixels that the line breaks add. The destination is not checked and must not overlap the
     * source: twice the source's length and one character more always suffice. 0 when either is null. */
    int format(const char *source, char *destination, unsigned int width, unsigned int = 0) const;

    /** Queues one glyph with its top left corner at (x, y); a full batch is drawn at once. With `immediate`
     * the glyph is drawn at once and not queued; false without a texture. False before `KELTRA::init`. */
    bool putChar(int x, int y, char c, bool immediate);
    /** Formats as printf does, up to 4,063 characters, and draws from (x, y) on, white at first. `\n` begins
     * a line. False for a null format, without a texture, and before `KELTRA::init`. */
    bool putString(int x, int y, const char *format, ...) KELTRA_FONT_PRINTF_LIKE;

    /** First font of that name; null when `text` is null or unknown. */
    static KTFONT *findByName(const char *text);
    /** First font of that identifier; null when there is none. */
    static KTFONT *findById(unsigned int id);
    static unsigned int getNumberOfFonts();
    static KTFONT *getFirst() { return firstFont; }
    /** Forgets the queued glyphs. */
    static void reset() { fontCachedCurrent = 0; }
    /** Destroys every font; false when there is none. */
    static bool cleanUp();
    /** Prefix of kerning file names, up to 255 characters; null empties it. */
    static void setPath(const char *path);
    static char *getPath() { return fontPath; }

    /** The cell on the screen in pixels, 16 x 16 at first; the height is that of a line. Other widths than 16
     * take glyphs from the wrong column of the texture. */
    void setCharSizeX(unsigned int pixels) { charSizeX = pixels; }
    unsigned int getCharSizeX() const { return charSizeX; }
    void setCharSizeY(unsigned int pixels) { charSizeY = pixels; }
    unsigned int getCharSizeY() const { return charSizeY; }
    unsigned int getId() const { return id; }
    /** Null and names of 256 characters or more change nothing. */
    void setName(const char *text);
    const char *getName() const { return name; }
    KTFONT *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTFONT *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }

    unsigned int id;
    KTTEXTURE *texture;
    signed char kerning[96];  ///< of the characters 32 to 126; the last is that of the caret, 127
    unsigned int charSizeX, charSizeY;
    char name[256];
    KTFONT *previous, *next;

    static char fontPath[256];
    static KTFONT *firstFont;
    /** The batch: six vertices a glyph, two triangles; 16.16 coordinates, RGBA bytes, and the indices 0, 1,
     * 2, ... */
    static std::int32_t *fontCachedVertex;
    static std::int32_t *fontCachedTexCoord;
    static unsigned char *fontCachedColor;
    static std::uint16_t *fontCachedIndex;
    static unsigned int fontCachedCurrent;  ///< glyphs queued
    static bool fontCachedFlushed;          ///< a full batch was drawn since the current string began
    static unsigned char fontCurrentColor[24];

   private:
    void release();
    static void forgetTexture(const keltra::Gone<KTTEXTURE> &gone);
    void copyFields(const KTFONT &other);
    void queueGlyph(std::int64_t x, std::int64_t y, char c) const;
    void writeGlyph(std::int64_t x, std::int64_t y, char c) const;
    void queueText(std::int64_t x, std::int64_t y, const char *text) const;

    bool failTexture(const char *call);

    static const keltra::OnGone<KTTEXTURE> onTextureGone;
    static KTLISTED<KTFONT> *allFonts;
    KTUSE textureUse;
    bool toldMissing;  // that there is no texture was told
};

#endif
