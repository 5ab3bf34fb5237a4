// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/screens/hud.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace lantern_walk {
namespace {

constexpr float kHintTime = 3.5f;

int widthOf(float part, int whole) {
    return std::clamp(static_cast<int>(std::lround(part * static_cast<float>(whole))), 0, whole);
}

}  // namespace

bool Hud::load(const std::string &folder) {
    if (!page.load(folder + "hud.xml", {"pause"})) return false;
    oil = page.getBox("oil");
    dusk = page.getBox("dusk");
    hintBack = page.getBox("hintBack");
    hint = static_cast<KTLABEL *>(page.getBox("hint"));
    if (!oil || !dusk || !hintBack || !hint) return false;
    oilWidth = static_cast<int>(oil->getSizes().x);
    duskWidth = static_cast<int>(dusk->getSizes().x);
    return true;
}

void Hud::say(const char *text, float seconds) {
    page.write("hint", text);
    saying = seconds;
}

void Hud::react(const Happening &happening) {
    switch (happening.event) {
        case Event::kNoOil:
            return say("The lamp is empty: to the well!", kHintTime);
        case Event::kPutOut:
            return say("A moth has put a lantern out!", kHintTime);
        case Event::kRefilled:
            return say("The lamp is full.", 0.6f * kHintTime);
        case Event::kMothAway:
            return say("Off it flies.", 0.5f * kHintTime);
        default:
            return;
    }
}

void Hud::update(const Walk &walk, float seconds) {
    oil->setSizes(widthOf(walk.getOil(), oilWidth), static_cast<int>(oil->getSizes().y));
    const bool isLow = walk.getOil() < kLightCost;
    oil->setColor(1.0f, isLow ? 0.25f : 0.70f, isLow ? 0.16f : 0.22f, 1.0f);
    const float part = walk.getTimeLeft() / walk.getEvening().dusk;
    dusk->setSizes(widthOf(part, duskWidth), static_cast<int>(dusk->getSizes().y));
    dusk->setColor(part < 0.25f ? 1.0f : 0.66f, part < 0.25f ? 0.36f : 0.60f, part < 0.25f ? 0.40f : 1.0f,
                   1.0f);
    oil->setDisplayStatus(oil->getSizes().x > 0.0f);
    dusk->setDisplayStatus(dusk->getSizes().x > 0.0f);
    const int lit = 100 * walk.getEveningNumber() + walk.countLit();
    if (lit != shownLit) {
        char text[32];
        std::snprintf(text, sizeof text, "%d/%d", walk.countLit(), walk.getEvening().lanterns);
        page.write("lit", text);
        shownLit = lit;
    }
    saying = std::max(0.0f, saying - seconds);
    hintBack->setDisplayStatus(saying > 0.0f);
    hint->setDisplayStatus(saying > 0.0f);
}

}  // namespace lantern_walk
