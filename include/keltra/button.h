// SPDX-License-Identifier: Zlib
#ifndef KELTRA_BUTTON_H
#define KELTRA_BUTTON_H

#include <keltra/box.h>

/** Kinds of buttons: when `KTELEMENT::manageGUIEvents` reports them. */
enum KT_BUTTON_EVENT {
    KT_BUTTON_NORMAL = 0,    ///< reported on release, when the pointer is still over the button
    KT_BUTTON_INVERTED = 1,  ///< reported on the press
    KT_BUTTON_SWITCH = 2,    ///< each press flips `clickedStatus` and is reported
    KT_BUTTON_TITLE = 3      ///< a window's title bar: drags the window, folds and unfolds it when clicked
};

/** A box with a caption of one line and a kind, which says when `KTELEMENT::manageGUIEvents` reports its
 * identifier. The font is not owned; it is forgotten when it is destroyed. */
class KT_API KTBUTTON : public KTBOX {
   public:
    /** An orange button named after its identifier, of the kind `KT_BUTTON_NORMAL`, without a font. */
    KTBUTTON();
    KTBUTTON(const KTBUTTON &other);
    KTBUTTON &operator=(const KTBUTTON &) = default;
    ~KTBUTTON() override;

    /** Font of the caption; without one no caption is drawn. */
    void setFont(KTFONT *newFont);
    /** Null and text of 256 characters or more leave the caption as it was. */
    void setCaption(const char *text);
    const char *getCaption() const { return caption; }
    /** A `KT_BUTTON_EVENT`. */
    void setEventType(KT_BUTTON_EVENT kind) { eventType = kind; }
    KT_BUTTON_EVENT getEventType() const { return eventType; }
    /** Draws the box and the caption; "[...]" in place of a caption that is too long. True. */
    bool render(void *data) override;

    KTFONT *font;
    char caption[256];
    KT_BUTTON_EVENT eventType;
};

#endif
