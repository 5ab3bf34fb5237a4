// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/game.h"

#include <SDL.h>

#include <cmath>
#include <cstdio>

namespace lantern_walk {
namespace {

constexpr float kShortestFrame = 1.0f / 30.0f;
constexpr float kGlide = 1.6f, kIntroduction = 5.0f;
constexpr float kTapTime = 0.25f;  // a pen that is held longer leads
constexpr float kPenReach = 0.4f;  // units from the boy; he stands below it
const char *const kNumbers[kEvenings] = {"First", "Second", "Third"};

// Buttons of the pages, in the order in which they are loaded.
enum TitleButton { kNew, kContinue, kTurn, kQuit };
enum PauseButton { kResume, kPauseTurn, kLeave };
enum LostButton { kAgain, kLostLeave };

}  // namespace

bool Game::start(const GameOptions &chosen) {
    options = chosen;
    clock.setStep(options.step);
    clock.setShortest(kShortestFrame);
    clock.start();
    // Escape opens the pause; only the window's own button and "Quit" end the game.
    input.bind(KT_ACTION_EXIT, 0, 0);
    pauseAction = input.addAction("pause", SDLK_ESCAPE);
    saved.isLandscape = KTSETTINGS::isSDLLandscape();
    if (!options.save.empty()) loadGame(options.save, &saved);
    KTOPENGL::setBackgroundColor(0.05f, 0.03f, 0.10f, 1.0f);
    if (!world.load(options.data) || !loadPages(options.data)) return false;
    if (saved.isLandscape != KTSETTINGS::isSDLLandscape()) turn();
    world.startTitle(0.0f);
    setCaptions();
    show(options.isFilmShown && film.start(options.data) ? Screen::kFilm : Screen::kTitle);
    return true;
}

bool Game::loadPages(const std::string &folder) {
    const bool ok = title.load(folder + "title.xml", {"new", "continue", "turn", "quit"}) &&
                    pause.load(folder + "pause.xml", {"resume", "turn", "leave"}) &&
                    won.load(folder + "won.xml", {"next"}) &&
                    lost.load(folder + "lost.xml", {"again", "leave"}) &&
                    end.load(folder + "end.xml", {"leave"}) && hud.load(folder);
    if (!ok) return false;
    ring = new KTBOX;  // the list of nodes owns it
    KTTEXTURE *glow = KTTEXTURE::findByFilename("garden_glow_d.tga");
    ring->setTexture(glow);
    ring->setThickness(0);
    return true;
}

const Page *Game::getPage() const {
    switch (screen) {
        case Screen::kTitle:
            return &title;
        case Screen::kPause:
            return &pause;
        case Screen::kWon:
            return &won;
        case Screen::kLost:
            return &lost;
        case Screen::kEnd:
            return &end;
        default:
            return nullptr;
    }
}

void Game::show(Screen next) {
    screen = next;
    screenTime = 0.0f;
    reported = 0;
    hasTap = false;
    penTime = 0.0f;
    clock.setPaused(next == Screen::kPause);
    world.showSky(next != Screen::kFilm);
    title.setEnabled(kContinue, saved.isBegun());
    if (Page *page = const_cast<Page *>(getPage())) page->open();
    hud.open();
}

void Game::startEvening(int evening) {
    walk.start(evening);
    world.startWalk(walk);
    char text[64];
    std::snprintf(text, sizeof text, "%s evening: light %d lanterns", kNumbers[walk.getEveningNumber()],
                  walk.getEvening().lanterns);
    hud.say(text, kIntroduction);
    isHintDue = evening == 0;
    show(Screen::kWalk);
}

void Game::continueGame() {
    if (!saved.hasWalk || !walk.resume(saved.walk)) return startEvening(saved.next);
    world.startWalk(walk);
    hud.say("On with the walk", 0.5f * kIntroduction);
    show(Screen::kWalk);
}

// The picture is turned at once; the window stays as it is.
void Game::turn() {
    KTSETTINGS::landscape = !KTSETTINGS::landscape;
    KTOPENGL::resize(0, 0, KTSETTINGS::getSDLWindowX(), KTSETTINGS::getSDLWindowY());
    saved.isLandscape = KTSETTINGS::landscape;
    setCaptions();
}

void Game::setCaptions() {
    const char *other = KTSETTINGS::isSDLLandscape() ? "Portrait" : "Landscape";
    title.setCaption(kTurn, other);
    pause.setCaption(kPauseTurn, other);
}

void Game::keep() {
    if (!options.save.empty() && !saveGame(options.save, saved))
        std::fprintf(stderr, "lantern_walk: cannot write %s\n", options.save.c_str());
}

bool Game::frame(const std::function<void(const Game &, KTINPUT *)> &play) {
    const float seconds = clock.tick();
    const float realSeconds = clock.getRealSeconds();
    input.update(realSeconds);
    if (play) play(*this, &input);
    update(seconds, realSeconds);
    return draw();
}

void Game::update(float seconds, float realSeconds) {
    screenTime += realSeconds;
    ringTime = std::fmax(0.0f, ringTime - realSeconds);
    Page *page = const_cast<Page *>(getPage());
    const int pressed = page ? page->update(input, reported, realSeconds) : Page::kNone;
    switch (screen) {
        case Screen::kFilm:
            if (!film.update(seconds) || input.hasTouched() || input.wasPressed(KT_ACTION_FIRST) ||
                input.wasPressed(static_cast<unsigned>(pauseAction))) {
                film.stop();
                show(Screen::kTitle);
            }
            break;
        case Screen::kTitle:
            updateTitle(pressed);
            break;
        case Screen::kWalk:
            updateWalk(seconds, realSeconds);
            break;
        case Screen::kPause:
            updatePause(pressed);
            break;
        case Screen::kWon:
            updateWon(pressed);
            break;
        case Screen::kLost:
            updateLost(pressed);
            break;
        case Screen::kEnd:
            if (pressed != Page::kNone) show(Screen::kTitle);
            break;
    }
    const bool isTitle = screen == Screen::kTitle || screen == Screen::kEnd || screen == Screen::kFilm;
    world.update(isTitle ? nullptr : &walk, seconds);
}

void Game::updateTitle(int pressed) {
    if (pressed == kNew) {
        const bool isLandscape = saved.isLandscape;
        saved = SavedGame();
        saved.isLandscape = isLandscape;
        startEvening(0);
    }
    if (pressed == kContinue) continueGame();
    if (pressed == kTurn) {
        turn();
        title.open();
        keep();
    }
    if (pressed == kQuit || input.wasPressed(static_cast<unsigned>(pauseAction))) over = true;
}

void Game::updateWalk(float seconds, float realSeconds) {
    if (hud.isPauseReported(reported) || input.wasPressed(static_cast<unsigned>(pauseAction)) ||
        input.wasPressed(KT_ACTION_THIRD)) {
        hud.update(walk, 0.0f);
        return show(Screen::kPause);
    }
    if (isHintDue && screenTime > kIntroduction) {
        hud.say("He goes where the pen is held", kIntroduction);
        isHintDue = false;
    }
    const bool isLed = followPen(realSeconds);
    if (!isLed) steer();
    if (input.wasPressed(KT_ACTION_FIRST)) walk.act();
    if (input.wasPressed(KT_ACTION_SECOND)) walk.chase(-1);
    if (input.hasTapped() && !isLed) {  // picked in the frame that is drawn next
        hasTap = true;
        tap = input.getPoint();
        ringTime = kRingTime;
    }
    walk.advance(seconds);
    takeEvents();
    hud.update(walk, seconds);
    if (walk.getPhase() != Phase::kWalking) finish(walk.getPhase());
}

void Game::steer() {
    const float x =
        static_cast<float>(input.isHeld(KT_ACTION_RIGHT)) - static_cast<float>(input.isHeld(KT_ACTION_LEFT));
    const float z =
        static_cast<float>(input.isHeld(KT_ACTION_DOWN)) - static_cast<float>(input.isHeld(KT_ACTION_UP));
    walk.steer(x, z);
}

// He follows the pen while it is held or drawn over the ground; beyond the horizon it means north. True in
// the frame in which it is lifted, too: that is no tap.
bool Game::followPen(float seconds) {
    const bool isLed = penTime > kTapTime || input.isDragging();
    penTime = input.isOnScene() ? std::fmax(penTime, input.isDragging() ? kTapTime : 0.0f) + seconds : 0.0f;
    if (!isLed || !input.isOnScene()) return isLed;
    tap = input.getPoint();
    ringTime = kRingTime;
    Place place, at = walk.getPlace();
    if (!world.toGround(tap, &place)) place = {at.x, kNorthEnd};
    if (distance(place, at) > kPenReach) walk.steer(place.x - at.x, place.z - at.z);
    return true;
}

void Game::takeEvents() {
    for (Happening happening = walk.take(); happening.event != Event::kNone; happening = walk.take()) {
        world.react(happening);
        hud.react(happening);
    }
}

void Game::finish(Phase phase) {
    saved.hasWalk = false;
    if (phase == Phase::kLost) {
        char text[64];
        std::snprintf(text, sizeof text, "%d of %d lanterns were lit", walk.countLit(),
                      walk.getEvening().lanterns);
        lost.write("count", text);
        keep();
        return show(Screen::kLost);
    }
    saved.stars[walk.getEveningNumber()] = walk.getStars();
    saved.next = walk.getEveningNumber() + 1;
    keep();
    writeWon();
    show(Screen::kWon);
}

void Game::writeWon() {
    const char *const names[] = {"star1", "star2", "star3"};
    for (int i = 0; i < 3; ++i) {
        const bool isEarned = i < walk.getStars();
        won.getBox(names[i])->setColor(isEarned ? 1.0f : 0.25f, isEarned ? 1.0f : 0.22f,
                                       isEarned ? 1.0f : 0.45f, 0.999f);
    }
    char text[64];
    std::snprintf(text, sizeof text, "%d seconds of dusk left", static_cast<int>(walk.getTimeLeft()));
    won.write("time", text);
    won.setCaption(0, saved.next < kEvenings ? "Next evening" : "Look around");
}

void Game::updatePause(int pressed) {
    if (pressed == kResume || input.wasPressed(static_cast<unsigned>(pauseAction)))
        return show(Screen::kWalk);
    if (pressed == kPauseTurn) {
        turn();
        pause.open();
        hud.open();
    }
    if (pressed == kLeave) {
        saved.hasWalk = true;
        saved.walk = walk.snapshot();
        keep();
        world.startTitle(kGlide);
        show(Screen::kTitle);
    }
}

void Game::updateWon(int pressed) {
    if (pressed == Page::kNone) return;
    if (saved.next < kEvenings) return startEvening(saved.next);
    world.startTitle(kGlide);
    int stars = 0;
    for (int each : saved.stars) stars += each;
    char text[32];
    std::snprintf(text, sizeof text, "%d of %d", stars, 3 * kEvenings);
    end.write("stars", text);
    show(Screen::kEnd);
}

void Game::updateLost(int pressed) {
    if (pressed == kAgain) startEvening(walk.getEveningNumber());
    if (pressed != kLostLeave) return;
    saved.next = walk.getEveningNumber();
    keep();
    world.startTitle(kGlide);
    show(Screen::kTitle);
}

}  // namespace lantern_walk
