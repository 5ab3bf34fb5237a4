// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_WIDGETS_H
#define KELTRA_EXAMPLES_WIDGETS_H

// The widgets of interface.xml that the program acts on, found by their names.

#include "examples/05_interface/court.h"

struct Show {
    Court court;
    KTNODE *interface = nullptr;
    KTBUTTON *reset, *flash, *lights;
    KTTEXTFIELD *serpent;
    KTHSCROLLBAR *orbit;
    KTVSCROLLBAR *height;
    KTLABEL *readout;
    KTWINDOW *journal;
    float flashing = 0.0f;
};

// Adds a line to the journal and scrolls down to it; a full journal begins anew.
inline void note(const Show &show, const char *line) {
    if (!show.journal->write("^x0006%s\n", line)) show.journal->clear();
    show.journal->format();
    show.journal->updateScroll();
    show.journal->scrollBar->setValue(1.0f);
}

inline void light(Show *show, bool lit) {
    show->court.light(lit);
    show->lights->setColor(lit ? R3XVECTOR4D(0.8f, 0.3f, 0.0f, 1.0f) : show->reset->getColor());
}

inline bool loadInterface(Show *show) {
    KTNODE *root = show->interface = KELTRA::load("interface.xml");
    KTBOX *plain[3];
    if (!root || !find(root, "panel", KT_BOX, &plain[0]) || !find(root, "emblem", KT_BOX, &plain[1]) ||
        !find(root, "strip", KT_BOX, &plain[2]) || !find(root, "reset", KT_BUTTON, &show->reset) ||
        !find(root, "flash", KT_BUTTON, &show->flash) || !find(root, "lanterns", KT_BUTTON, &show->lights) ||
        !find(root, "serpent", KT_TEXTFIELD, &show->serpent) ||
        !find(root, "orbit", KT_HSCROLLBAR, &show->orbit) ||
        !find(root, "height", KT_VSCROLLBAR, &show->height) ||
        !find(root, "readout", KT_LABEL, &show->readout) ||
        !find(root, "journal", KT_WINDOW, &show->journal)) {
        return false;
    }
    // Settings that a description does not have: borders, ranges and first values.
    for (KTBOX *box : plain) box->setThickness(0);
    for (KTBUTTON *button : {show->reset, show->flash, show->lights}) button->setThickness(1);
    show->orbit->setMinValue(-36.0f);
    show->orbit->setMaxValue(36.0f);
    show->orbit->setValue(0.0f);
    show->height->setValue(0.6f);
    show->serpent->setCaption("");
    light(show, false);
    note(*show, "Moonrise.");
    note(*show, "Lamps out.");
    return true;
}

#endif
