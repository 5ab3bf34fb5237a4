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

template <class Visit>
void KTBOX::visitBoxes(unsigned int most, Visit visit) {
    KTLISTED<KTBOX>::visitList(allBoxes, most, visit);
}

void KTBOX::forgetFont(const keltra::Gone<KTFONT> &gone) {
    visitBoxes(gone.mostVisited(), [&gone](KTBOX &box) {
        if (KTLABEL *label = keltra::as<KTLABEL>(&box))
            gone.clear(label->font);
        else if (KTBUTTON *button = keltra::as<KTBUTTON>(&box))
            gone.clear(button->font);
    });
}

void KTBOX::forgetShader(const keltra::Gone<KTSHADER> &gone) {
    visitBoxes(gone.mostVisited(), [&gone](KTBOX &box) { gone.clear(box.shader); });
}

void KTBOX::forgetTexture(const keltra::Gone<KTTEXTURE> &gone) {
    visitBoxes(gone.mostVisited(), [&gone](KTBOX &box) { gone.clear(box.texture); });
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
    if (isHeld()) visitBoxes(~0u, [this](KTBOX &box) { box.losePart(this); });
}

void KTBOX::losePart(const KTBOX *gone) {
    if (KTWINDOW *window = keltra::as<KTWINDOW>(this)) {
        if (window->titleBar == gone) window->titleBar = nullptr;
        if (window->scrollBar == gone) window->scrollBar = nullptr;
    } else if (KTHSCROLLBAR *horizontal = keltra::as<KTHSCROLLBAR>(this)) {
        if (horizontal->cursor == gone) horizontal->cursor = nullptr;
    } else if (KTVSCROLLBAR *vertical = keltra::as<KTVSCROLLBAR>(this)) {
        if (vertical->cursor == gone) vertical->cursor = nullptr;
    }
}
