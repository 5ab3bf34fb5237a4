// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TEXTFIELD_H
#define KELTRA_TEXTFIELD_H

#include <keltra/button.h>

/** A button whose caption is edited by keys. The field that was pressed last has the focus: it receives the
 * key of every call of `KTELEMENT::manageGUIEvents` and shows a blinking caret. A press on another widget
 * takes the focus away, a press beside all widgets does not. */
class KT_API KTTEXTFIELD : public KTBUTTON {
   public:
    /** Its text is the caption of a new button, "[button <id>]", until it is set or cleared. */
    KTTEXTFIELD();
    KTTEXTFIELD(const KTTEXTFIELD &other);
    KTTEXTFIELD &operator=(const KTTEXTFIELD &) = default;
    ~KTTEXTFIELD() override;

    /** Empties the text. */
    void clear() { caption[0] = '\0'; }
    /** Takes the key of a frame, 0 for none: 32 to 127 are appended while they fit the field, 8 removes the
     * last character. False without a font. */
    bool manageKey(char key);
    /** Draws the field. True. */
    bool render(void *data) override;

    bool focused;      ///< set by `manageKey`, cleared by `render`
    float caretTimer;  ///< seconds, from 0 to 1
};

#endif
