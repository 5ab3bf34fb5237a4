// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_PANEL_H
#define KELTRA_VIEW_PANEL_H

// The viewer's interface: windows of the engine, described by an XML file.

#include <keltra/keltra.h>
#include "tools/view/actions.h"
#include "tools/view/orbit.h"
#include "tools/view/panel_text.h"

#include <string>
#include <vector>

namespace keltra::view {

// What the panel shows.
struct PanelState {
    std::string clip;  // empty if there are no clips
    unsigned frame = 0, frames = 0;
    bool playing = false;
    Switches switches;
    Figures figures;
    std::string notice;  // an error message, or empty
    float zoomShare = 0.0f;
};

// The user's actions on the panel in a frame.
struct PanelEvents {
    bool held = false;  // the pen belongs to the panel
    Action action = Action::kNone;
    bool scrubbed = false, zoomed = false;
    unsigned frame = 0;
    float zoomShare = 0.0f;
};

class Panel {
   public:
    // Reads the description. The engine must be running, with texture and font paths at the font. Throws
    // Failure if the file is not an interface or lacks a widget that the viewer needs.
    explicit Panel(const std::string &file);

    void setTitle(const std::string &title);
    void setOverlay(bool shown) { overlayShown = shown; }
    bool isOverlayShown() const { return overlayShown; }
    // Folds the panel to its title bar at the lower edge, or unfolds it.
    void fold();
    bool isFolded() const { return window->isMinimized(); }
    FreeRows freeRows() const;

    // Between `begin2D` and `end2D`.
    void draw(const PanelState &state);
    // After `end2D`.
    PanelEvents handle(int x, int y, bool pressed);

   private:
    struct Toggle {
        KTBUTTON *button;
        const char *caption;
        bool Switches::*on;
        Action action;
    };
    void style();
    void place();
    void setCaption(KTBUTTON &button, const std::string &text) const;
    void setText(KTLABEL &label, const std::string &text, unsigned width) const;
    void drawClip(const PanelState &state);

    KTNODE *root;
    KTWINDOW *window;
    KTBOX *overlay, *noticeBack, *clipBack;
    KTLABEL *time, *scene, *driver, *notice, *clip, *frame;
    KTBUTTON *previous, *next, *play;
    KTHSCROLLBAR *scrub;
    KTVSCROLLBAR *zoom;
    std::vector<Toggle> toggles;
    Measure measure;
    float unfoldedTop;
    unsigned scrubFrames = 0;
    bool overlayShown = true;
};

}  // namespace keltra::view

#endif
