// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_PAGE_H
#define KELTRA_EXAMPLES_PAGE_H

// The widgets: where they are and what they look like.

#include <keltra/keltra.h>

#include "examples/support/example.h"

struct Page {
    KTNODE interface;
    KTFONT *font = nullptr;
    KTBUTTON *buttons[3];
    KTTEXTFIELD *field = nullptr;
    KTHSCROLLBAR *across = nullptr;
    KTVSCROLLBAR *down = nullptr;
    KTBOX *swatch = nullptr;
    KTLABEL *told = nullptr;
    KTWINDOW *window = nullptr;
};

// Positions count from the widget that it is linked below.
template <class Widget>
Widget *addWidget(Widget *widget, KTNODE *parent, int x, int y, int width, int height) {
    widget->setSizes(width, height);
    widget->setPosition(static_cast<float>(x), static_cast<float>(y));
    widget->link(parent);
    return widget;
}

inline KTLABEL *addPageLabel(Page *page, KTNODE *parent, int x, int y, const char *text) {
    KTLABEL *label = addWidget(new KTLABEL, parent, x, y, 16, 16);
    label->setFont(page->font);
    label->write("%s", text);
    return label;
}

inline void addButtons(Page *page, KTNODE *back) {
    const KT_BUTTON_EVENT kinds[] = {KT_BUTTON_NORMAL, KT_BUTTON_INVERTED, KT_BUTTON_SWITCH};
    const char *const captions[] = {"^x0008normal", "^x0006inverted", "^x0010switch"};
    for (int i = 0; i < 3; ++i) {
        KTBUTTON *button = page->buttons[i] = addWidget(new KTBUTTON, back, 8 + 76 * i, 32, 70, 20);
        button->setFont(page->font);
        button->setCaption(captions[i]);
        button->setEventType(kinds[i]);
        button->setColor(0.30f, 0.26f, 0.44f, 1.0f);
    }
    addPageLabel(page, back, 8, 54, "^c7788on release, press, each press");
    page->field = addWidget(new KTTEXTFIELD, back, 8, 78, 222, 20);
    page->field->setFont(page->font);
    page->field->setColor(0.10f, 0.09f, 0.18f, 1.0f);
    page->field->clear();
    addPageLabel(page, back, 8, 100, "^c7788a field takes the keys");
}

inline void addBars(Page *page, KTNODE *back) {
    page->swatch = addWidget(new KTBOX, back, 8, 134, 96, 96);
    page->swatch->setTexture(example::loadTexture("garden_paper_d.tga"));
    page->across = addWidget(new KTHSCROLLBAR, back, 8, 238, 96, 4);
    page->down = addWidget(new KTVSCROLLBAR, back, 112, 134, 4, 96);
    for (KTBOX *bar : {static_cast<KTBOX *>(page->across), static_cast<KTBOX *>(page->down)})
        bar->setColor(0.75f, 0.60f, 0.40f, 1.0f);
    page->down->setMinValue(1.0f);  // its minimum is at the top
    page->down->setMaxValue(0.2f);
    page->across->setValue(0.4f);
    page->down->setValue(0.9f);
    addPageLabel(page, back, 8, 250, "^c7788bars are asked");
}

inline void buildPage(Page *page) {
    page->font = example::loadFont();
    KTBOX *back = addWidget(new KTBOX, &page->interface, 0, 0, 240, 320);
    back->setThickness(0);
    back->setTexture(example::loadTexture("garden_dusksky_d.tga"));
    back->setColor(0.8f, 0.75f, 0.9f, 1.0f);  // times the texture's colours
    addPageLabel(page, back, 8, 8, "^c8748Every widget");
    addButtons(page, back);
    addBars(page, back);
    page->window = addWidget(new KTWINDOW, back, 130, 152, 100, 88);
    page->window->setFont(page->font);
    page->window->setCaption("A window");
    page->window->setColor(0.13f, 0.11f, 0.22f, 0.92f);
    page->window->getTitleBar()->setColor(0.55f, 0.28f, 0.20f, 1.0f);
    page->window->write("Drag it by its title, or tap that to fold it.\n");
    page->window->format();
    KTBOX *foot = addWidget(new KTBOX, back, 0, 288, 240, 32);
    foot->setThickness(0);
    foot->setColor(0.08f, 0.07f, 0.15f, 0.85f);
    page->told = addPageLabel(page, foot, 8, 8, "^c8888Nothing has been reported yet");
}

#endif
