#include <keltra/box.h>

#include <keltra/label.h>
#include <keltra/scrollbar.h>
#include <keltra/window.h>

#include "scene/node_class.h"

void KTBOX::forgetFont(const KTFONT *gone) {
    for (KTBOX *box = firstBox; box; box = box->nextBox) {
        if (KTLABEL *label = keltra::as<KTLABEL>(box)) {
            if (label->font == gone) label->font = nullptr;
        } else if (KTBUTTON *button = keltra::as<KTBUTTON>(box)) {
            if (button->font == gone) button->font = nullptr;
        }
    }
}

void KTBOX::forgetShader(const KTSHADER *gone) {
    for (KTBOX *box = firstBox; box; box = box->nextBox)
        if (box->shader == gone) box->shader = nullptr;
}

void KTBOX::forgetTexture(const KTTEXTURE *gone) {
    for (KTBOX *box = firstBox; box; box = box->nextBox)
        if (box->texture == gone) box->texture = nullptr;
}

// Copies of windows and scroll bars point to parts that they do not own, so all of them are asked.
void KTBOX::forgetPart() {
    auto clear = [this](auto *&pointer) {
        if (pointer == this) pointer = nullptr;
    };
    for (KTBOX *box = firstBox; box; box = box->nextBox) {
        if (KTWINDOW *window = keltra::as<KTWINDOW>(box)) {
            clear(window->titleBar);
            clear(window->ownTitleBar);
            clear(window->scrollBar);
            clear(window->ownScrollBar);
        } else if (KTHSCROLLBAR *lying = keltra::as<KTHSCROLLBAR>(box)) {
            clear(lying->cursor);
            clear(lying->ownCursor);
        } else if (KTVSCROLLBAR *standing = keltra::as<KTVSCROLLBAR>(box)) {
            clear(standing->cursor);
            clear(standing->ownCursor);
        }
    }
}
