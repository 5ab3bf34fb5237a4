// SPDX-License-Identifier: Zlib
#include <keltra/label.h>

#include <keltra/font.h>
#include <keltra/opengl.h>

#include "foundation/fault.h"
#include "foundation/text.h"
#include "gui/widgets.h"
#include "gui/window_around.h"

#include <cstdarg>
#include <cstdio>

namespace {

constexpr unsigned int kWidthLimit = 65000;

}  // namespace

KTLABEL::KTLABEL() : text(), font(nullptr) {
    joinClass(KT_LABEL);
    setIdentity(KT_LABEL, "[label %d]");
}

KTLABEL::KTLABEL(const KTLABEL &other) : KTBOX(other) {
    joinClass(KT_LABEL);
    *this = other;
}

KTLABEL::~KTLABEL() {}

void KTLABEL::setFont(KTFONT *newFont) {
    font = newFont;
    if (font) font->markHeld();
}

bool KTLABEL::write(const char *format, ...) {
    constexpr keltra::FaultCall call = KT_CALL("KTLABEL::write");
    if (!format) return keltra::failNull(call, KT_TEXT("format"));
    if (!font) return keltra::failState(call, KT_TEXT("the label has no font"));
    char line[sizeof text];
    va_list arguments;
    va_start(arguments, format);
    int length = std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    if (length < 0) return keltra::failFormat(call);
    // Each character may get a line break of its own.
    char wrapped[2 * sizeof line];
    font->format(line, wrapped, kWidthLimit);
    if (length >= static_cast<int>(sizeof line)) keltra::warnLong(call, KT_TEXT("text"));
    keltra::copyText(text, wrapped);
    return true;
}

// Deliberate: a label outside of windows is not clipped and sets no scissor rectangle, unlike a box;
// applications rely on it.
bool KTLABEL::render(void *data) {
    if (!displayStatus) return true;
    const keltra::Unlit unlit;
    keltra::loadEntryMatrix(data);
    if (scissorStatus) keltra::clipToWindow(*this);
    if (font) font->putString(0, 0, "%s", text);
    if (scissorStatus) KTOPENGL::scissorOff();
    return true;
}
