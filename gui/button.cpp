// SPDX-License-Identifier: Zlib
#include <keltra/button.h>

#include <keltra/font.h>
#include <keltra/opengl.h>

#include "foundation/argument.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "gui/widgets.h"

#include <cstdint>
#include <cstdio>

namespace {

constexpr char kTooLong[] = "[...]";

bool fits(const KTFONT &font, const char *text, int width) {
    return std::int64_t{font.stringLength(text)} < width;
}

}  // namespace

// A caption that is refused is a warning: the widget keeps the one that it has.
KELTRA_COLD void keltra::takeCaption(KTBUTTON &button, const char *text, keltra::FaultCall call) {
    takeName(button.caption, text, warned(call));
}

KTBUTTON::KTBUTTON() : font(nullptr), eventType(KT_BUTTON_NORMAL) {
    joinClass(KT_BUTTON);
    setIdentity(KT_BUTTON, "[button %d]");
    std::snprintf(caption, sizeof caption, "%s", name);
    setColor(0.8f, 0.3f, 0.0f, 0.9f);
    checkStatus = true;
}

KTBUTTON::KTBUTTON(const KTBUTTON &other) : KTBOX(other) {
    joinClass(KT_BUTTON);
    *this = other;
}

KTBUTTON::~KTBUTTON() {}

void KTBUTTON::setFont(KTFONT *newFont) {
    font = newFont;
    if (font) font->markHeld();
}

KELTRA_COLD void KTBUTTON::setCaption(const char *text) {
    keltra::takeCaption(*this, text, KT_CALL("KTBUTTON::setCaption"));
}

bool KTBUTTON::render(void *data) {
    if (!displayStatus) return true;
    const keltra::Unlit unlit;
    KTBOX::render(data);
    if (scissorStatus) KTOPENGL::scissorOn();
    if (font && caption[0]) {
        int inset = clickedStatus ? 2 : 1;
        if (fits(*font, caption, sizeX))
            font->putString(inset, inset, "%s", caption);
        else if (fits(*font, kTooLong, sizeX))
            font->putString(inset, inset, "%s", kTooLong);
    }
    if (scissorStatus) KTOPENGL::scissorOff();
    return true;
}
