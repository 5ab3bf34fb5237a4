// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_VIEWER_H
#define KELTRA_VIEW_VIEWER_H

#include <keltra/keltra.h>
#include "tools/view/backdrop.h"
#include "tools/view/clip_clock.h"
#include "tools/view/file_watch.h"
#include "tools/view/frame_meter.h"
#include "tools/view/input.h"
#include "tools/view/lamps.h"
#include "tools/view/link_folder.h"
#include "tools/view/marks.h"
#include "tools/view/model.h"
#include "tools/view/orbit.h"
#include "tools/view/panel.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace keltra::view {

struct ViewerSettings {
    std::string file;
    std::vector<std::string> clips;
    std::string panel;                     // file that describes the interface
    std::string data;                      // folder of the font, with a slash at its end
    unsigned long (*glCalls)() = nullptr;  // number of GL calls so far; null for 0
    bool repeatable = false;               // shows frame times as given, not measured: all runs draw the same
};

// Starts the engine and stops it in the destructor, after all members declared behind it.
class RunningEngine {
   public:
    // Throws Failure if there is no display.
    explicit RunningEngine(const LinkFolder &links);
    ~RunningEngine();
    RunningEngine(const RunningEngine &) = delete;
    RunningEngine &operator=(const RunningEngine &) = delete;
};

// Shows one model in the engine's window. All members can throw Failure.
class Viewer {
   public:
    explicit Viewer(const ViewerSettings &settings);
    ~Viewer();

    // Draws a frame, `seconds` after the one before: reads the input, draws, calls `beforeSwap`. False when
    // the user ends the program.
    bool frame(double seconds, const std::function<void()> &beforeSwap = nullptr);
    // Draws a frame without panel and overlay from `yaw` degrees, slightly from above, in the middle of the
    // first clip.
    void portrait(float yaw, const std::function<void()> &beforeSwap);

    const Orbit &view() const { return orbit; }
    const Model &shown() const { return *model; }
    const ClipClock &clipClock() const { return clock; }
    const Switches &shownSwitches() const { return switches; }
    const Panel &shownPanel() const { return panel; }
    const std::string &shownNotice() const { return notice; }
    const Figures &shownFigures() const { return figures; }
    // How often the file was loaded.
    unsigned loads() const { return loaded; }
    std::size_t clipCount() const { return source.clips.size(); }
    std::size_t chosenClip() const { return chosen; }

   private:
    void load();
    void reload();
    void requireClips() const;
    void measure();
    void chooseClip(std::size_t index);
    void pose() const;
    bool handleInput(double seconds);
    void act(Action action);
    void handlePanel(const PanelEvents &events);
    void draw3D();
    void drawMarks();
    void countFigures();
    PanelState panelState() const;
    void finishFrame(const std::function<void()> &beforeSwap);

    ViewerSettings settings;
    LinkFolder links;
    Source source;
    RunningEngine engine;
    Backdrop backdrop;
    Lamps lamps;
    Panel panel;
    KTCAMERA *camera;
    KTANIM *animation;  // the chosen clip; only one is kept in memory, because each takes megabytes
    Orbit orbit;
    std::unique_ptr<Model> model;
    unsigned generation = 0, loaded = 0;
    std::optional<FileWatch> watch;
    double sincePoll = 0.0;
    std::size_t chosen = 0;
    ClipClock clock;
    Switches switches;
    Input input;
    bool panelHolds = false, wasPressed = false;
    Figures figures;
    FrameMeter meter;
    double work = 0.0;  // seconds to draw the last frame
    unsigned long callsBefore = 0;
    std::string notice;
    MarkBatch marks, bones;
};

}  // namespace keltra::view

#endif
