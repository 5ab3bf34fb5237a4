// SPDX-License-Identifier: Zlib
#include <keltra/kit/flow.h>

#include "kit/fault.h"

#include <algorithm>

const unsigned int KTSCREENS::maxScreens;

namespace {

// Falls, and bounces three times, each half as long as the one before.
float bounce(float t) {
    constexpr float kHeight = 7.5625f, kPart = 1.0f / 2.75f;
    float middle = 0.0f, rest = 0.0f;
    if (t >= 2.5f * kPart) {
        middle = 2.625f, rest = 0.984375f;
    } else if (t >= 2.0f * kPart) {
        middle = 2.25f, rest = 0.9375f;
    } else if (t >= kPart) {
        middle = 1.5f, rest = 0.75f;
    }
    t -= middle * kPart;
    return kHeight * t * t + rest;
}

}  // namespace

float KTTWEEN::ease(KT_EASE kind, float t) {
    if (!(t > 0.0f)) return 0.0f;
    if (t >= 1.0f) return 1.0f;
    const float left = 1.0f - t;
    switch (kind) {
        case KT_EASE_IN:
            return t * t;
        case KT_EASE_OUT:
            return 1.0f - left * left;
        case KT_EASE_IN_OUT:
            return t * t * (3.0f - 2.0f * t);
        case KT_EASE_BACK:
            return 1.0f + left * left * (1.70158f - 2.70158f * left);
        case KT_EASE_BOUNCE:
            return bounce(t);
        default:
            return t;
    }
}

void KTTWEEN::start(float fromValue, float toValue, float seconds, KT_EASE ease) {
    from = fromValue;
    to = toValue;
    length = seconds > 0.0f ? seconds : 0.0f;
    time = 0.0f;
    kind = ease;
}

float KTTWEEN::update(float seconds) {
    time = std::min(time + std::max(seconds, 0.0f), length);
    return getValue();
}

float KTTWEEN::getValue() const { return hasEnded() ? to : from + (to - from) * ease(kind, time / length); }

KTSCREEN::~KTSCREEN() {}

void KTSCREEN::update(float) {}

bool KTSCREENS::push(KTSCREEN *screen) {
    const char *const call = "KTSCREENS::push";
    if (!screen) return keltra::kit::failNull(call, "screen");
    if (std::find(screens, screens + count, screen) != screens + count)
        return keltra::kit::fail(KT_FAULT_STATE, call, {nullptr, 0, nullptr, "it is on the stack", nullptr});
    if (count == maxScreens)
        return keltra::kit::fail(KT_FAULT_FULL, call, {nullptr, 0, "screens", nullptr, "8"});
    ask(KT_PUSH, screen);
    return true;
}

void KTSCREENS::update(float seconds) {
    const CHANGE change = pending;
    pending = KT_NOTHING;
    if (change == KT_CHANGE)
        while (count > 0) screens[--count]->leave();
    if (change == KT_POP && count > 0) {
        screens[--count]->leave();
        if (count > 0) screens[count - 1]->uncover();
    }
    if ((change == KT_CHANGE || change == KT_PUSH) && next) {
        if (count > 0) screens[count - 1]->cover();
        screens[count++] = next;
        next->enter();
    }
    if (count > 0) screens[count - 1]->update(seconds);
}

unsigned int KTSCREENS::firstShown() const {
    unsigned int first = count > 0 ? count - 1 : 0;
    while (first > 0 && screens[first]->isOverlay()) --first;
    return first;
}

void KTSCREENS::draw3D() const {
    for (unsigned int i = firstShown(); i < count; ++i) screens[i]->draw3D();
}

void KTSCREENS::draw2D() const {
    for (unsigned int i = firstShown(); i < count; ++i) screens[i]->draw2D();
}
