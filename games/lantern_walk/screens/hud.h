// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_HUD_H
#define KELTRA_LANTERN_WALK_HUD_H

// What stands above and below the picture while he walks.

#include "games/lantern_walk/rules/walk.h"
#include "games/lantern_walk/screens/page.h"

namespace lantern_walk {

class Hud {
   public:
    bool load(const std::string &folder);
    void open() { page.open(); }
    /// A line at the bottom, for some seconds.
    void say(const char *text, float seconds);
    /// Says what an event means.
    void react(const Happening &happening);
    void update(const Walk &walk, float seconds);
    /// True when the pause was asked for by the pen.
    bool isPauseReported(unsigned reported) const {
        return reported && reported == page.getButton(0)->getId();
    }
    void pass() const { page.pass(); }

   private:
    Page page;
    KTBOX *oil = nullptr, *dusk = nullptr, *hintBack = nullptr;
    KTLABEL *hint = nullptr;
    int oilWidth = 0, duskWidth = 0, shownLit = -1;
    float saying = 0.0f;
};

}  // namespace lantern_walk

#endif
