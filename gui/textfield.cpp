// SPDX-License-Identifier: Zlib
#include <keltra/textfield.h>

#include <keltra/engine_state.h>
#include <keltra/font.h>
#include <keltra/glbridge.h>
#include <keltra/opengl.h>

#include "foundation/fault.h"
#include "gui/widgets.h"
#include "gui/window_around.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

constexpr char kBackspace = 8;
constexpr char kCaret = 127;
constexpr float kCaretDelay = 0.3f;
constexpr float kCaretPeriod = 1.0f;

}  // namespace

KTTEXTFIELD::KTTEXTFIELD() : focused(false), caretTimer(0.0f) {
    joinClass(KT_TEXTFIELD);
    setIdentity(KT_TEXTFIELD, "[textfield %d]");
    thickness = 1;
}

KTTEXTFIELD::KTTEXTFIELD(const KTTEXTFIELD &other) : KTBUTTON(other) {
    joinClass(KT_TEXTFIELD);
    *this = other;
}

KTTEXTFIELD::~KTTEXTFIELD() {}

// Deliberate: the new character counts with its kerning, not with its width, so the last one may reach into
// the right margin; applications rely on how much text fits.
bool KTTEXTFIELD::manageKey(char key) {
    // Key 0 means no key, and is passed in each frame.
    if (!font)
        return key &&
               keltra::failState(KT_CALL("KTTEXTFIELD::manageKey"), KT_TEXT("the text field has no font"));
    focused = true;
    std::size_t length = std::strlen(caption);
    unsigned char code = static_cast<unsigned char>(key);
    if (code >= 32 && code <= 127) {
        std::int64_t width = std::int64_t{font->stringLength(caption)} + font->getKerning(key);
        if (width <= std::int64_t{sizeX} - font->getCharSizeX() && length + 1 < sizeof caption) {
            caption[length] = key;
            caption[length + 1] = '\0';
        }
    } else if (key == kBackspace && length > 0) {
        caption[length - 1] = '\0';
    }
    return true;
}

// Deliberate: the button draws its caption and the field draws its text over it; applications rely on text
// too long for the field showing as a button's caption. Both are clipped alike.
bool KTTEXTFIELD::render(void *data) {
    const keltra::Unlit unlit;
    KTBUTTON::render(data);
    char shown[sizeof caption + 1];
    bool caret = focused && caretTimer > kCaretDelay;
    std::snprintf(shown, sizeof shown, "%s", caption);
    if (caret) {
        std::size_t length = std::strlen(shown);
        shown[length] = kCaret;
        shown[length + 1] = '\0';
    }
    if (focused) {
        caretTimer += KTENGINESTATE::getFPSfactor();
        // Also below 0: without a running engine the factor is negative.
        if (!(caretTimer >= 0.0f && caretTimer < kCaretPeriod)) caretTimer = 0.0f;
    }
    focused = false;
    if (!displayStatus) return true;
    if (scissorStatus && keltra::windowAround(*this)) KTOPENGL::scissorOn();
    if (font && std::int64_t{font->stringLength(caption)} < std::int64_t{sizeX} - font->getCharSizeX()) {
        int inset = clickedStatus ? 2 : 1;
        font->putString(inset, inset, "%s", shown);
    }
    if (thickness > 0) {
        float inset = static_cast<float>(thickness);
        std::int64_t both = 2 * std::int64_t{thickness};
        KT_glTranslatef(inset, inset, 0.0f);
        keltra::drawBorder(*this, sizeX - both, sizeY - both, true);
    }
    if (scissorStatus) KTOPENGL::scissorOff();
    return true;
}
