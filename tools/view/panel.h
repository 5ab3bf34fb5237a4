#ifndef KELTRA_VIEW_PANEL_H
#define KELTRA_VIEW_PANEL_H

// The interface in front of the model: the engine's own, described by an XML file.

#include <keltra/keltra.h>
#include "tools/view/actions.h"
#include "tools/view/orbit.h"
#include "tools/view/panel_text.h"

#include <string>
#include <vector>

namespace keltra::view {

// What the panel shows.
struct PanelState {
    std::string clip;  // empty without clips
    unsigned frame = 0, frames = 0;
    bool playing = false;
    Switches switches;
    Figures figures;
    std::string notice;  // what went wrong; empty for nothing
    float zoomShare = 0.0f;
};

// What was done on it in this frame.
struct PanelEvents {
    bool held = false;  // the pen belongs to the panel
    Action action = Action::kNone;
    bool scrubbed = false, zoomed = false;
    unsigned frame = 0;
    float zoomShare = 0.0f;
};

class Panel {
   public:
    // Reads the description; the engine runs, and texture and font prefix lead to the font. Throws Failure
    // for a file that is no interface, or one without the widgets that the viewer needs.
    explicit Panel(const std::string &file);

    void setTitle(const std::string &title);
    void setOverlay(bool shown) { overlayShown = shown; }
    bool isOverlayShown() const { return overlayShown; }
    // Folded, only its title bar is left, at the lower edge.
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
