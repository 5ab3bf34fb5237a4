// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LABEL_H
#define KELTRA_LABEL_H

#include <keltra/box.h>

#if defined(__GNUC__)
#define KELTRA_LABEL_PRINTF_LIKE __attribute__((format(printf, 2, 3)))
#else
#define KELTRA_LABEL_PRINTF_LIKE
#endif

/** Text without a box: it has no face and no border. Set the font, then write. The font is not owned; it is
 * forgotten when it is destroyed. */
class KT_API KTLABEL : public KTBOX {
   public:
    /** Without text and font. */
    KTLABEL();
    KTLABEL(const KTLABEL &other);
    KTLABEL &operator=(const KTLABEL &) = default;
    ~KTLABEL() override;

    /** Font of the text; to be set before `write`. */
    void setFont(KTFONT *newFont);
    /** Replaces the text by the formatted one (printf rules), cut at 255 characters. False, with the text
     * unchanged, for null and without a font. */
    bool write(const char *format, ...) KELTRA_LABEL_PRINTF_LIKE;
    /** Draws the text at the box's corner. True. */
    bool render(void *data) override;

    char text[256];
    KTFONT *font;
};

#undef KELTRA_LABEL_PRINTF_LIKE

#endif
