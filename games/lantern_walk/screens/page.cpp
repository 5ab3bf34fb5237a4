// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/screens/page.h"

#include <cmath>
#include <cstdio>

#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {
namespace {

constexpr int kWidth = 240;  // of a page
constexpr int kLineHeight = 16;
const R3XVECTOR4D kResting(0.20f, 0.15f, 0.34f, 0.92f), kDisabled(0.14f, 0.12f, 0.20f, 0.70f);
const R3XVECTOR4D kFocused(0.66f, 0.36f, 0.14f, 0.96f);

}  // namespace

R3XVECTOR2D getScreenSize() {
    const int x = KTSETTINGS::getSDLWindowX(), y = KTSETTINGS::getSDLWindowY();
    return KTSETTINGS::isSDLLandscape() ? R3XVECTOR2D(y, x) : R3XVECTOR2D(x, y);
}

bool Page::load(const std::string &path, std::initializer_list<const char *> names) {
    root = KELTRA::loadXML(path.c_str());
    if (!root) return false;
    prepare(root);
    for (const char *name : names) {
        KTBUTTON *button = find<KTBUTTON>(root, name, KT_BUTTON);
        if (!button || count == kMostButtons) return false;
        buttons[count] = button;
        isEnabled[count] = true;
        ++count;
        const std::string caption = button->getCaption();
        setCaption(count - 1, caption.c_str());
    }
    open();
    return true;
}

// What a description does not say: thin borders, boxes that only hold others, labels in the middle.
void Page::prepare(KTNODE *node) {
    if (node->isOfClass(KT_BOX)) {
        KTBOX *box = static_cast<KTBOX *>(node);
        box->setThickness(box->isOfClass(KT_BUTTON) ? 1 : 0);
        if (box->getColor().w == 0.0f) box->setDisplayStatus(false);
    }
    if (node->isOfClass(KT_LABEL)) {
        const std::string text = static_cast<KTLABEL *>(node)->text;
        if (!text.empty()) write(node->getName(), text.c_str());
    }
    for (unsigned i = 0; i < node->getNumberOfChildren(); ++i) prepare(node->getChild(i));
}

void Page::open() {
    place("top", 0.0f);
    place("middle", 0.5f);
    place("bottom", 1.0f);
    focus = 0;
    if (count > 0 && !isEnabled[0]) moveFocus(1);
    time = 0.0f;
}

void Page::place(const char *name, float part) const {
    KTBOX *box = getBox(name);
    if (!box) return;
    const R3XVECTOR2D room = getScreenSize() - box->getSizes();
    box->setPosition(std::floor(0.5f * room.x), std::floor(part * room.y));
}

int Page::update(const KTINPUT &input, unsigned reported, float seconds) {
    time += seconds;
    if (input.wasPressed(KT_ACTION_UP) || input.wasPressed(KT_ACTION_LEFT)) moveFocus(-1);
    if (input.wasPressed(KT_ACTION_DOWN) || input.wasPressed(KT_ACTION_RIGHT)) moveFocus(1);
    const bool isKeyed = input.wasPressed(KT_ACTION_FIRST) || input.wasPressed(KT_ACTION_SECOND);
    int pressed = kNone;
    for (int i = 0; i < count; ++i) {
        const float pulse = 0.5f + 0.5f * std::sin(4.0f * time);
        const R3XVECTOR4D lively = kFocused.lerp(kResting, 0.35f * pulse);
        buttons[i]->setColor(!isEnabled[i] ? kDisabled : i == focus ? lively : kResting);
        const bool isReported = reported != 0 && reported == buttons[i]->getId();
        if (isEnabled[i] && (isReported || (isKeyed && i == focus))) pressed = i;
    }
    return pressed;
}

void Page::moveFocus(int step) {
    for (int tries = 0; tries < count; ++tries) {
        focus = (focus + step + count) % count;
        if (isEnabled[focus]) return;
    }
}

void Page::setEnabled(int button, bool status) { isEnabled[button] = status; }

void Page::setCaption(int button, const char *text) {
    KTBUTTON *const shown = buttons[button];
    const unsigned width = shown->font ? shown->font->stringLength(text) : 0;
    char caption[64];
    std::snprintf(caption, sizeof caption, "^x%04d^y%04d%s",
                  (static_cast<int>(shown->getSizes().x) - static_cast<int>(width)) / 2,
                  (shown->getSizeY() - kLineHeight) / 2, text);
    shown->setCaption(caption);
}

void Page::write(const char *name, const char *text) {
    KTLABEL *label = find<KTLABEL>(root, name, KT_LABEL);
    if (!label || !label->font) return;
    const int width = static_cast<int>(label->font->stringLength(text));
    const int indent = label->getPosition().x == 0.0f ? (kWidth - width) / 2 : 0;
    label->write("^x%04d%s", indent, text);
}

KTBOX *Page::getBox(const char *name) const { return find<KTBOX>(root, name, KT_BOX); }

R3XVECTOR2D Page::getMiddle(int button) const {
    const R3XVECTOR3D at = buttons[button]->getPosition() + buttons[button]->getParent()->getPosition();
    const R3XVECTOR2D size = buttons[button]->getSizes();
    return R3XVECTOR2D(at.x + 0.5f * size.x, at.y + 0.5f * size.y);
}

}  // namespace lantern_walk
