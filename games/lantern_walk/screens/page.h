// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_PAGE_H
#define KELTRA_LANTERN_WALK_PAGE_H

// A page of the interface from its XML file: pressed with the pen, or with the pad and the first two buttons;
// in portrait and landscape.

#include <keltra/keltra.h>
#include <keltra/kit/input.h>

#include <string>

namespace lantern_walk {

/// Size of the picture in pixels, turned in landscape mode.
R3XVECTOR2D getScreenSize();

class Page {
   public:
    static constexpr int kMostButtons = 4;
    static constexpr int kNone = -1;

    /// Loads the file. The buttons are numbered in the order of `names`.
    bool load(const std::string &path, std::initializer_list<const char *> names);
    /// Puts its parts where the screen has its top, middle and bottom, and the first button into focus.
    void open();
    /// The button that was pressed: by the pen, when `reported` is its identifier, or by keys.
    int update(const KTINPUT &input, unsigned reported, float seconds);
    void pass() const { root->pass(); }

    void setEnabled(int button, bool status);
    void setCaption(int button, const char *text);
    /// Centred on the page for labels that begin at its left edge.
    void write(const char *label, const char *text);
    KTBOX *getBox(const char *name) const;
    const KTBUTTON *getButton(int button) const { return buttons[button]; }
    /// The middle of a button in pixels of the picture.
    R3XVECTOR2D getMiddle(int button) const;

   private:
    void prepare(KTNODE *node);
    void place(const char *name, float part) const;
    void moveFocus(int step);

    KTNODE *root = nullptr;
    KTBUTTON *buttons[kMostButtons] = {};
    bool isEnabled[kMostButtons] = {};
    int count = 0, focus = 0;
    float time = 0.0f;
};

}  // namespace lantern_walk

#endif
