// SPDX-License-Identifier: Zlib
#include <keltra/element.h>
#include <keltra/settings.h>
#include <keltra/textfield.h>

#include "gui/events.h"
#include "gui/geometry.h"
#include "gui/widgets.h"
#include "gui/window_around.h"
#include "scene/render_list.h"

namespace {

// State kept between calls. `extra` is stored and never read.
struct {
    int x, y, pressed, extra;
    KTBOX *active;  // pressed and held
    KTTEXTFIELD *focused;
    bool moved;  // the active box was dragged
    unsigned int listStarts;
} last;

struct Pointer {
    int x, y, dx, dy, pressed, extra;
};

void remember(const Pointer &pointer) {
    last.x = pointer.x;
    last.y = pointer.y;
    last.pressed = pointer.pressed;
    last.extra = pointer.extra;
}

// The pointer in the coordinates of the 2D pass, which landscape mode turns.
Pointer readPointer(int x, int y, int pressed, int extra) {
    if (KTSETTINGS::landscape) {
        int turned = keltra::toInt(std::int64_t{KTSETTINGS::windowY} - y);
        y = x;
        x = turned;
    }
    int dx = keltra::toInt(std::int64_t{x} - last.x), dy = keltra::toInt(std::int64_t{y} - last.y);
    return {x, y, dx, dy, pressed, extra};
}

// Boxes held before the render list was restarted belong to an earlier run.
void forgetEarlierRun() {
    const unsigned int starts = keltra::renderListStarts();
    if (last.listStarts == starts) return;
    last = {};
    last.listStarts = starts;
}

bool isButton(KTBOX *box, KT_BUTTON_EVENT kind) {
    const KTBUTTON *button = box->type == KT_BUTTON ? keltra::as<KTBUTTON>(box) : nullptr;
    return button && button->eventType == kind;
}

void report(const KTBOX *box, unsigned int *activatedId) {
    if (activatedId) *activatedId = box->id;
}

void release(const Pointer &pointer, unsigned int *activatedId) {
    KTBOX *box = last.active;
    if (isButton(box, KT_BUTTON_NORMAL)) {
        if (box->checkBoundaries(pointer.x, pointer.y)) report(box, activatedId);
    } else if (isButton(box, KT_BUTTON_TITLE)) {
        KTWINDOW *window = keltra::asWindow(box->parent);
        if (window && !last.moved && box->checkBoundaries(pointer.x, pointer.y)) window->minmaximize();
    }
    box->clickedStatus = false;
    last.active = nullptr;
    last.moved = false;
}

// Answers for box after box what `checkBoundaries` answers, and keeps what boxes of one parent share.
class HitTest {
   public:
    explicit HitTest(const Pointer &pointer)
        : pointer(pointer), x(static_cast<float>(pointer.x)), y(static_cast<float>(pointer.y)) {}

    bool isUnder(const KTBOX &box) {
        if (!box.checkStatus) return false;
        if (!isKnown || box.parent != parent) look(box);
        if (!keltra::isInside(box, origin, x, y)) return false;
        if (box.type == KT_WINDOW || !window || window->getChild(0) == &box) return true;
        if (!windowIsTested) windowIsHit = window->checkBoundaries(pointer.x, pointer.y);
        windowIsTested = true;
        return windowIsHit;
    }

   private:
    void look(const KTBOX &box) {
        isKnown = true;
        parent = box.parent;
        origin = keltra::originOf(box);
        window = keltra::windowAround(box);
        windowIsTested = false;
    }

    const Pointer &pointer;
    const float x, y;
    bool isKnown = false, windowIsTested = false, windowIsHit = false;
    const KTNODE *parent = nullptr;
    keltra::Origin origin = {0.0f, 0.0f};
    KTWINDOW *window = nullptr;
};

// The foremost box under the pointer, of several the first one in the list. A folded window is found by its
// title bar only. The list ends with what is in front, so most boxes are behind one that was found.
KTBOX *pick(const Pointer &pointer) {
    KTBOX *best = nullptr;
    long foremost = 1;
    HitTest test(pointer);
    KTELEMENT *const *const begin = KTELEMENT::elementPointer;
    for (KTELEMENT *const *element = begin + KTELEMENT::numberOfPassedElements; element != begin;) {
        KTBOX *box = keltra::asBox((*--element)->getNode());
        if (!box || box->foremostTimeStamp < foremost || !box->displayStatus) continue;
        if (!test.isUnder(*box)) continue;
        const KTWINDOW *window = keltra::asWindow(box);
        if (window && window->isMinimized()) continue;
        best = box;
        foremost = box->foremostTimeStamp;
    }
    return best;
}

// Dragging a title bar moves its window.
void drag(KTBOX *box, const Pointer &pointer) {
    if (box->staticStatus || (pointer.dx == 0 && pointer.dy == 0)) return;
    int dx = pointer.dx, dy = pointer.dy;
    box->checkLimits(&dx, &dy);
    KTNODE *moved = box;
    if (isButton(box, KT_BUTTON_TITLE))
        if (KTWINDOW *window = keltra::asWindow(box->parent)) moved = window;
    moved->move(static_cast<float>(dx), static_cast<float>(dy));
    last.moved = true;
}

void press(KTBOX *box, const Pointer &pointer, unsigned int *activatedId) {
    bool held = box == last.active;
    if (keltra::asWindow(box)) box->setForemost();
    if (isButton(box, KT_BUTTON_TITLE))
        if (KTWINDOW *window = keltra::asWindow(box->parent)) window->setForemost();
    if (!held && isButton(box, KT_BUTTON_INVERTED)) report(box, activatedId);
    last.focused = box->type == KT_TEXTFIELD ? keltra::as<KTTEXTFIELD>(box) : nullptr;
    if (held) drag(box, pointer);
    if (isButton(box, KT_BUTTON_SWITCH)) {
        box->clickedStatus = !box->clickedStatus;
        report(box, activatedId);
        last.active = nullptr;
        return;
    }
    if (!held) box->clickedStatus = true;
    last.active = box;
}

}  // namespace

void keltra::forgetInEvents(const KTBOX *gone) {
    if (last.focused == gone) last.focused = nullptr;
    if (last.active != gone) return;
    last.active = nullptr;
    last.moved = false;
}

bool KTELEMENT::manageGUIEvents(char key, int x, int y, int pressed, int extra, unsigned int *activatedId) {
    forgetEarlierRun();
    const Pointer pointer = readPointer(x, y, pressed, extra);
    if (activatedId) *activatedId = 0;
    if (last.focused) last.focused->manageKey(key);
    if (last.active && !pressed) release(pointer, activatedId);

    // A pointer that was pressed outside all widgets selects none while it moves.
    KTBOX *target = nullptr;
    if (last.active) {
        target = last.active;
        target->clickedStatus = !target->staticStatus || target->checkBoundaries(pointer.x, pointer.y);
    } else if (last.pressed == 0) {
        target = pick(pointer);
    }
    if (target && pressed) press(target, pointer, activatedId);
    remember(pointer);
    return target != nullptr;
}
