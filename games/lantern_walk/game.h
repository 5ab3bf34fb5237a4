// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_GAME_H
#define KELTRA_LANTERN_WALK_GAME_H

// The whole game: its screens, and one frame of it after the other. Rules, view and interface know nothing of
// each other; here they meet.

#include <keltra/kit/clock.h>
#include <keltra/kit/input.h>

#include <functional>
#include <string>

#include "games/lantern_walk/rules/walk.h"
#include "games/lantern_walk/save.h"
#include "games/lantern_walk/screens/film.h"
#include "games/lantern_walk/screens/hud.h"
#include "games/lantern_walk/screens/page.h"
#include "games/lantern_walk/view/world.h"

namespace lantern_walk {

enum class Screen { kFilm, kTitle, kWalk, kPause, kWon, kLost, kEnd };

struct GameOptions {
    std::string data;   // folder of the files, with a slash at its end
    std::string save;   // file of the saved game; empty: nothing is kept
    float step = 0.0f;  // fixed seconds a frame; 0: by the clock
    bool isFilmShown = true;
};

class Game {
   public:
    /// Loads everything; the engine is running. False, with a fault, when a file is missing.
    bool start(const GameOptions &options);
    /// One frame, but for the swap. `play` is asked after the events were read and may put more in; null for
    /// none. False when something could not be drawn.
    bool frame(const std::function<void(const Game &, KTINPUT *)> &play = nullptr);
    bool isOver() const { return over || input.hasQuit(); }

    Screen getScreen() const { return screen; }
    /// Seconds that this screen has been shown.
    float getScreenTime() const { return screenTime; }
    const Walk &getWalk() const { return walk; }
    const World &getWorld() const { return world; }
    const SavedGame &getSaved() const { return saved; }
    /// Of the present screen; null where there is none.
    const Page *getPage() const;
    KTCLOCK *getClock() { return &clock; }

   private:
    bool loadPages(const std::string &folder);
    void show(Screen next);
    void startEvening(int evening);
    void continueGame();
    void turn();
    void keep();
    void setCaptions();

    void update(float seconds, float realSeconds);
    void updateTitle(int pressed);
    void updateWalk(float seconds, float realSeconds);
    void updatePause(int pressed);
    void updateWon(int pressed);
    void updateLost(int pressed);
    void steer();
    bool followPen(float seconds);
    void finish(Phase phase);
    void takeEvents();
    void writeWon();
    bool draw();
    void drawPages();
    int findDarkLantern() const;
    int findMoth() const;
    void pick();

    GameOptions options;
    KTCLOCK clock;
    KTINPUT input;
    SavedGame saved;
    Walk walk;
    World world;
    Film film;
    Hud hud;
    Page title, pause, won, lost, end;
    static constexpr float kRingTime = 0.35f;
    KTBOX *ring = nullptr;
    Screen screen = Screen::kTitle;
    float screenTime = 0.0f, ringTime = 0.0f;
    float penTime = 0.0f;  // since it was put on the scene
    unsigned reported = 0;
    int pauseAction = -1;
    bool over = false, hasTap = false, isHintDue = false;
    R3XVECTOR2D tap;
};

}  // namespace lantern_walk

#endif
