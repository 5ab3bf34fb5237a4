// SPDX-License-Identifier: Zlib
#include <keltra/kit/input.h>

#include <keltra/element.h>
#include <keltra/settings.h>
#include <keltra/textfield.h>

#include "kit/fault.h"

#include <SDL.h>

#include <cmath>
#include <cstring>

const unsigned int KTINPUT::maxActions;
const unsigned int KTINPUT::keysOfAction;
const unsigned int KTINPUT::maxWaiting;

namespace {

constexpr float kTapPixels = 6.0f;
constexpr float kDoubleTapPixels = 16.0f;
constexpr float kDoubleTapSeconds = 0.4f;

struct {
    const char *name;
    int key;
} const kFirstActions[] = {{"up", SDLK_UP},       {"down", SDLK_DOWN},    {"left", SDLK_LEFT},
                           {"right", SDLK_RIGHT}, {"first", SDLK_RETURN}, {"second", SDLK_SPACE},
                           {"third", SDLK_TAB},   {"exit", SDLK_ESCAPE}};

bool isWithin(const R3XVECTOR2D &a, const R3XVECTOR2D &b, float pixels) {
    return std::fabs(a.x - b.x) <= pixels && std::fabs(a.y - b.y) <= pixels;
}

// As the interface turns it.
R3XVECTOR2D turned(int x, int y) {
    if (!KTSETTINGS::isSDLLandscape()) return R3XVECTOR2D(x, y);
    return R3XVECTOR2D(KTSETTINGS::getSDLWindowY() - y, x);
}

}  // namespace

KTINPUT::KTINPUT()
    : actions(),
      numberOfActions(0),
      waiting(),
      numberOfWaiting(0),
      characters(),
      numberOfCharacters(0),
      penX(0),
      penY(0),
      time(0.0f),
      lastTapTime(-1.0f),
      quit(false),
      down(false),
      onInterface(false),
      onScene(false),
      touched(false),
      dropped(false),
      tapped(false),
      doubleTapped(false),
      dragging(false),
      focus(nullptr) {
    for (const auto &action : kFirstActions) addAction(action.name, action.key);
}

int KTINPUT::addAction(const char *name, int key) {
    const char *const call = "KTINPUT::addAction";
    if (!name) return keltra::kit::failNull(call, "name"), -1;
    if (!*name || std::strlen(name) >= sizeof actions[0].name || findAction(name) >= 0)
        return keltra::kit::fail(KT_FAULT_ARGUMENT, call,
                                 {nullptr, 0, "name", name, "a new one of 1 to 23 characters"}),
               -1;
    if (numberOfActions == maxActions)
        return keltra::kit::fail(KT_FAULT_FULL, call, {nullptr, 0, "actions", nullptr, "24"}), -1;
    ACTION &action = actions[numberOfActions];
    std::strcpy(action.name, name);
    action.key[0] = key;
    return static_cast<int>(numberOfActions++);
}

int KTINPUT::findAction(const char *name) const {
    for (unsigned int i = 0; name && i < numberOfActions; ++i)
        if (std::strcmp(actions[i].name, name) == 0) return static_cast<int>(i);
    return -1;
}

const char *KTINPUT::getActionName(unsigned int action) const {
    return action < numberOfActions ? actions[action].name : nullptr;
}

bool KTINPUT::bind(unsigned int action, unsigned int place, int key) {
    const char *const call = "KTINPUT::bind";
    if (action >= numberOfActions)
        return keltra::kit::failRange(call, "action", long(action), long(numberOfActions) - 1);
    if (place >= keysOfAction) return keltra::kit::failRange(call, "place", long(place), keysOfAction - 1);
    actions[action].key[place] = key;
    actions[action].isDown[place] = false;
    return true;
}

int KTINPUT::getKey(unsigned int action, unsigned int place) const {
    return action < numberOfActions && place < keysOfAction ? actions[action].key[place] : 0;
}

void KTINPUT::begin(float seconds) {
    time += seconds;
    for (unsigned int i = 0; i < numberOfActions; ++i) actions[i].pressed = actions[i].released = false;
}

void KTINPUT::update(float seconds) {
    begin(seconds);
    if (!SDL_EnableUNICODE(-1)) SDL_EnableUNICODE(1);
    SDL_Event event;
    while (SDL_PollEvent(&event)) handle(&event);
}

void KTINPUT::handle(const SDL_Event *event) {
    if (!event) return;
    switch (event->type) {
        case SDL_QUIT:
            return putQuit();
        case SDL_MOUSEMOTION: {
            const bool isDown = numberOfWaiting ? waiting[numberOfWaiting - 1].isDown : down;
            return putPen(event->motion.x, event->motion.y, isDown);
        }
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP:
            if (event->button.button == SDL_BUTTON_LEFT)
                putPen(event->button.x, event->button.y, event->type == SDL_MOUSEBUTTONDOWN);
            return;
        case SDL_KEYDOWN:
        case SDL_KEYUP:
            return putKey(event->key.keysym.sym, event->key.keysym.unicode, event->type == SDL_KEYDOWN);
    }
}

// A press stays where it was made: a movement after it waits for the next frame, and is replaced by later
// movements. Of more states than can wait the last counts.
void KTINPUT::putPen(int x, int y, bool isDown) {
    const PEN *const last = numberOfWaiting ? &waiting[numberOfWaiting - 1] : nullptr;
    const bool isMove = isDown == (last ? last->isDown : down);
    const bool replaces = numberOfWaiting == maxWaiting || (last && isMove && last->isMove);
    PEN &state = waiting[replaces ? numberOfWaiting - 1 : numberOfWaiting++];
    state = {x, y, isDown, isMove};
}

void KTINPUT::putKey(int key, int character, bool isDown) {
    const bool isCharacter = character > 0 && character < 128;
    if (isDown && isCharacter && numberOfCharacters < maxWaiting)
        characters[numberOfCharacters++] = static_cast<char>(character);
    const bool types = focus && (character == 8 || (character >= 32 && character < 128));
    for (unsigned int i = 0; i < numberOfActions; ++i) {
        ACTION &action = actions[i];
        for (unsigned int place = 0; place < keysOfAction; ++place) {
            if (key == 0 || action.key[place] != key || (isDown && types)) continue;
            const bool wasHeld = isHeld(i);
            action.isDown[place] = isDown;
            action.pressed = action.pressed || (!wasHeld && isHeld(i));
            action.released = action.released || (wasHeld && !isHeld(i));
            if (i == KT_ACTION_EXIT && isDown) putQuit();
        }
    }
}

bool KTINPUT::isHeld(unsigned int action) const {
    return action < numberOfActions && (actions[action].isDown[0] || actions[action].isDown[1]);
}

bool KTINPUT::wasPressed(unsigned int action) const {
    return action < numberOfActions && actions[action].pressed;
}

bool KTINPUT::wasReleased(unsigned int action) const {
    return action < numberOfActions && actions[action].released;
}

void KTINPUT::takePen() {
    if (numberOfWaiting == 0) return;
    penX = waiting[0].x;
    penY = waiting[0].y;
    down = waiting[0].isDown;
    std::memmove(waiting, waiting + 1, --numberOfWaiting * sizeof *waiting);
}

char KTINPUT::takeCharacter() {
    if (numberOfCharacters == 0) return 0;
    const char character = characters[0];
    std::memmove(characters, characters + 1, --numberOfCharacters);
    return character;
}

unsigned int KTINPUT::dispatch() {
    const bool wasDown = down;
    const R3XVECTOR2D before = point;
    takePen();
    point = turned(penX, penY);
    unsigned int id = 0;
    onInterface = KTELEMENT::manageGUIEvents(takeCharacter(), penX, penY, down, 0, &id);
    followScene(wasDown, before);
    findFocus();
    return id;
}

// Whose the pen is, is decided when it is put down: the interface's later answers do not tell.
void KTINPUT::followScene(bool wasDown, R3XVECTOR2D before) {
    touched = dropped = tapped = doubleTapped = false;
    drag.reset();
    if (down && !wasDown) {
        onScene = touched = !onInterface;
        dragging = false;
        start = point;
    } else if (!down && onScene) {
        lift();
    } else if (onScene && !dragging && !isWithin(point, start, kTapPixels)) {
        dragging = true;
        drag = point - start;
    } else if (onScene && dragging) {
        drag = point - before;
    }
}

void KTINPUT::lift() {
    onScene = false;
    dropped = true;
    tapped = !dragging;
    dragging = false;
    if (!tapped) return;
    doubleTapped = lastTapTime >= 0.0f && time - lastTapTime <= kDoubleTapSeconds &&
                   isWithin(point, lastTap, kDoubleTapPixels);
    lastTap = point;
    lastTapTime = doubleTapped ? -1.0f : time;  // a third tap is a first one again
}

// The interface has just handed the key to the field that has the focus, which marks it until it is drawn.
void KTINPUT::findFocus() {
    focus = nullptr;
    for (unsigned int i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
        KTNODE *node = KTELEMENT::elementPointer[i]->getNode();
        if (!node || !node->isOfClass(KT_TEXTFIELD)) continue;
        KTTEXTFIELD *field = static_cast<KTTEXTFIELD *>(node);
        if (field->focused) focus = field;
    }
}
