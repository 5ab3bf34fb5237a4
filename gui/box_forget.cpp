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

void KTBOX::joinSharers() {
    if (sharing) return;
    sharing = true;
    previousSharer = nullptr;
    nextSharer = firstSharer;
    if (nextSharer) nextSharer->previousSharer = this;
    firstSharer = this;
}

void KTBOX::leaveSharers() {
    if (!sharing) return;
    (previousSharer ? previousSharer->nextSharer : firstSharer) = nextSharer;
    if (nextSharer) nextSharer->previousSharer = previousSharer;
}

// The box that made the part, and the copies of such boxes, which point to parts that they do not own.
void KTBOX::forgetPart() {
    partOf->losePart(this);
    for (KTBOX *box = firstSharer; box; box = box->nextSharer) box->losePart(this);
}

void KTBOX::losePart(const KTBOX *gone) {
    auto clear = [gone](auto *&pointer) {
        if (pointer == gone) pointer = nullptr;
    };
    if (KTWINDOW *window = keltra::as<KTWINDOW>(this)) {
        clear(window->titleBar);
        clear(window->ownTitleBar);
        clear(window->scrollBar);
        clear(window->ownScrollBar);
    } else if (KTHSCROLLBAR *horizontal = keltra::as<KTHSCROLLBAR>(this)) {
        clear(horizontal->cursor);
        clear(horizontal->ownCursor);
    } else if (KTVSCROLLBAR *vertical = keltra::as<KTVSCROLLBAR>(this)) {
        clear(vertical->cursor);
        clear(vertical->ownCursor);
    }
}
