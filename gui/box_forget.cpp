// SPDX-License-Identifier: Zlib
#include <keltra/box.h>
#include <keltra/label.h>
#include <keltra/scrollbar.h>
#include <keltra/window.h>

#include "core/holders.h"
#include "scene/node_class.h"

const keltra::OnGone<KTFONT> KTBOX::onFontGone(&KTBOX::forgetFont);
const keltra::OnGone<KTSHADER> KTBOX::onShaderGone(&KTBOX::forgetShader);
const keltra::OnGone<KTTEXTURE> KTBOX::onTextureGone(&KTBOX::forgetTexture);

namespace {

template <class Object>
void clear(Object *&pointer, const void *gone) {
    if (pointer == gone) pointer = nullptr;
}

}  // namespace

template <class Visit>
void KTBOX::visitAll(bool isHeld, Visit visit) {
    KTLISTED<KTBOX>::visitList(allBoxes, keltra::searchedFor(isHeld), visit);
}

void KTBOX::forgetFont(const KTFONT *gone, bool isHeld) {
    visitAll(isHeld, [gone](KTBOX &box) {
        if (KTLABEL *label = keltra::as<KTLABEL>(&box))
            clear(label->font, gone);
        else if (KTBUTTON *button = keltra::as<KTBUTTON>(&box))
            clear(button->font, gone);
    });
}

void KTBOX::forgetShader(const KTSHADER *gone, bool isHeld) {
    visitAll(isHeld, [gone](KTBOX &box) { clear(box.shader, gone); });
}

void KTBOX::forgetTexture(const KTTEXTURE *gone, bool isHeld) {
    visitAll(isHeld, [gone](KTBOX &box) { clear(box.texture, gone); });
}

void KTBOX::makePart(KTBOX &part) {
    part.partOf = this;
    part.KTLISTED<KTBOX, keltra::Part>::joinList(parts);
}

void KTBOX::destroyParts() {
    while (KTBOX *part = KTLISTED<KTBOX, keltra::Part>::objectAt(parts)) delete part;
}

// The box that made the part, and the copies of such boxes, which mark the parts that they point to.
void KTBOX::forgetPart() {
    partOf->losePart(this);
    if (isHeld()) visitAll(true, [this](KTBOX &box) { box.losePart(this); });
}

void KTBOX::losePart(const KTBOX *gone) {
    if (KTWINDOW *window = keltra::as<KTWINDOW>(this)) {
        clear(window->titleBar, gone);
        clear(window->scrollBar, gone);
    } else if (KTHSCROLLBAR *horizontal = keltra::as<KTHSCROLLBAR>(this)) {
        clear(horizontal->cursor, gone);
    } else if (KTVSCROLLBAR *vertical = keltra::as<KTVSCROLLBAR>(this)) {
        clear(vertical->cursor, gone);
    }
}
