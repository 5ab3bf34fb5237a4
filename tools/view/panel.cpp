// SPDX-License-Identifier: Zlib
#include "tools/view/panel.h"

#include "tools/view/failure.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <utility>

namespace keltra::view {
namespace {

constexpr int kTitleHeight = 19;
constexpr int kTextInset = 6;
const R3XVECTOR4D kTitleColor(0.20f, 0.24f, 0.29f, 0.95f);
const R3XVECTOR4D kButtonColor(0.22f, 0.26f, 0.31f, 1.0f);
const R3XVECTOR4D kSwitchedColor(0.17f, 0.38f, 0.47f, 1.0f);
const R3XVECTOR4D kCursorColor(0.45f, 0.68f, 0.76f, 1.0f);
constexpr char kFontFile[] = "font.tga";
constexpr char kDim[] = "^c5558";

// Finds the widgets of a description by name.
class Finder {
   public:
    Finder(KTNODE *root, const std::string &file) : root(root), file(file) {}

    template <class Widget>
    void find(const char *name, unsigned type, Widget *&widget) const {
        KTNODE *found = root->findByNameInHierarchy(name);
        if (!found || found->getType() != type)
            throw failure(file,
                          std::string("the interface has no widget \"") + name + "\" of the right kind");
        widget = static_cast<Widget *>(found);
    }
    KTBUTTON *button(const char *name) const {
        KTBUTTON *found;
        find(name, KT_BUTTON, found);
        return found;
    }

   private:
    KTNODE *root;
    const std::string &file;
};

}  // namespace

Panel::Panel(const std::string &file) : root(KELTRA::loadXML(file.c_str())) {
    if (!root) throw failure(file, "cannot be read as an interface");
    const Finder finder(root, file);
    finder.find("panel", KT_WINDOW, window);
    finder.find("scrub", KT_HSCROLLBAR, scrub);
    finder.find("zoom", KT_VSCROLLBAR, zoom);
    using Boxes = std::initializer_list<std::pair<const char *, KTBOX **>>;
    for (const auto &[name, box] :
         Boxes{{"overlay", &overlay}, {"noticeBack", &noticeBack}, {"clipBack", &clipBack}})
        finder.find(name, KT_BOX, *box);
    using Labels = std::initializer_list<std::pair<const char *, KTLABEL **>>;
    for (const auto &[name, label] : Labels{{"time", &time},
                                            {"scene", &scene},
                                            {"driver", &driver},
                                            {"notice", &notice},
                                            {"clip", &clip},
                                            {"frame", &frame}})
        finder.find(name, KT_LABEL, *label);
    previous = finder.button("previous");
    next = finder.button("next");
    play = finder.button("play");
    toggles = {
        {finder.button("wire"), "wire", &Switches::wire, Action::kWire},
        {finder.button("boxes"), "boxes", &Switches::boxes, Action::kBoxes},
        {finder.button("normals"), "normals", &Switches::normals, Action::kNormals},
        {finder.button("bones"), "bones", &Switches::bones, Action::kBones},
        {finder.button("lights"), "lights", &Switches::lights, Action::kLights},
        {finder.button("culling"), "culling", &Switches::culling, Action::kCulling},
    };
    KTFONT *font = window->font;
    if (!font) throw failure(file, "the interface's panel has no font");
    // A prefix, so that no model finds the texture by its name; the engine still reads the file by it.
    if (KTTEXTURE *glyphs = font->getTexture())
        std::snprintf(glyphs->filename, sizeof glyphs->filename, ".//%s", kFontFile);
    measure = [font](const std::string &text) { return font->stringLength(text.c_str()); };
    unfoldedTop = window->getPosition().y;
    style();
}

// Sets what a description cannot: borders, colours of parts, and that the panel cannot be dragged.
void Panel::style() {
    window->setThickness(1);
    window->setStaticStatus(true);
    if (KTBUTTON *title = window->getTitleBar()) {
        title->setStaticStatus(true);
        title->setThickness(1);
        title->setColor(kTitleColor);
    }
    for (KTBOX *box : {overlay, noticeBack}) box->setThickness(0);
    clipBack->setThickness(1);
    for (KTBUTTON *button : {previous, next, play}) {
        button->setThickness(1);
        button->setColor(kButtonColor);
    }
    for (const Toggle &toggle : toggles) toggle.button->setThickness(1);
    scrub->setThickness(0);
    zoom->setThickness(0);
    for (KTBUTTON *cursor : {scrub->getCursor(), zoom->getCursor()}) {
        if (!cursor) continue;
        cursor->setThickness(1);
        cursor->setColor(kCursorColor);
        cursor->setCaption("");
    }
    setCaption(*previous, "<");
    setCaption(*next, ">");
}

void Panel::setTitle(const std::string &title) {
    const std::string mark = isFolded() ? "[+] " : "";
    const unsigned width = static_cast<unsigned>(window->sizeX - 4 * kTextInset) - measure("[+] ");
    window->setCaption((mark + "^x0005^y0001" + cutText(plainText(title), width, measure)).c_str());
}

void Panel::fold() { window->minmaximize(); }

// A click on the title bar folds the window too, so the position is set in every frame.
void Panel::place() {
    const float bottom = static_cast<float>(KTSETTINGS::getSDLWindowY());
    window->setPosition(0.0f, isFolded() ? bottom : unfoldedTop);
}

FreeRows Panel::freeRows() const {
    const int bottom = isFolded() ? KTSETTINGS::getSDLWindowY() : static_cast<int>(unfoldedTop);
    return {overlayShown ? overlay->getSizeY() : 0, bottom - kTitleHeight};
}

void Panel::setCaption(KTBUTTON &button, const std::string &text) const {
    button.setCaption(centredText(text, button.sizeX, button.sizeY, measure).c_str());
}

void Panel::setText(KTLABEL &label, const std::string &text, unsigned width) const {
    label.write("%s", cutText(text, width, measure).c_str());
}

void Panel::drawClip(const PanelState &state) {
    const unsigned width = static_cast<unsigned>(clipBack->sizeX - 2 * kTextInset);
    if (state.clip.empty())
        clip->write("%sno clips", kDim);
    else
        setText(*clip, plainText(state.clip), width);
    setCaption(*play, state.playing && state.frames > 0 ? "Pause" : "Play");
    frame->write("%s", frameText(state.frame, state.frames).c_str());
    scrubFrames = state.frames;
    // The scroll bar needs a range above 0.
    scrub->setMaxValue(state.frames > 1 ? static_cast<float>(state.frames - 1) : 1.0f);
    if (scrub->getCursor() && !scrub->getCursor()->isClicked())
        scrub->setValue(static_cast<float>(state.frame));
}

void Panel::draw(const PanelState &state) {
    place();
    const unsigned width = static_cast<unsigned>(overlay->sizeX - 2 * kTextInset);
    for (KTLABEL *label : {time, scene, driver}) label->setDisplayStatus(overlayShown);
    overlay->setDisplayStatus(overlayShown);
    setText(*time, timeText(state.figures), width);
    setText(*scene, sceneText(state.figures), width);
    setText(*driver, driverText(state.figures), width);
    noticeBack->setDisplayStatus(!state.notice.empty());
    notice->setDisplayStatus(!state.notice.empty());
    setText(*notice, plainText(state.notice), width);
    drawClip(state);
    for (const Toggle &toggle : toggles) {
        const bool on = state.switches.*toggle.on;
        setCaption(*toggle.button, switchText(on, toggle.caption));
        toggle.button->setColor(on ? kSwitchedColor : kButtonColor);
    }
    if (zoom->getCursor() && !zoom->getCursor()->isClicked()) zoom->setValue(state.zoomShare);
    root->pass();
}

PanelEvents Panel::handle(int x, int y, bool pressed) {
    PanelEvents events;
    unsigned id = 0;
    events.held = KTELEMENT::manageGUIEvents(0, x, y, pressed ? 1 : 0, 0, &id);
    if (scrub->getCursor() && scrub->getCursor()->isClicked() && scrubFrames > 0) {
        events.scrubbed = true;
        events.frame = static_cast<unsigned>(std::lround(scrub->getValue()));
    }
    if (zoom->getCursor() && zoom->getCursor()->isClicked()) {
        events.zoomed = true;
        events.zoomShare = zoom->getValue();
    }
    if (id == 0) return events;
    if (id == previous->getId()) events.action = Action::kPreviousClip;
    if (id == next->getId()) events.action = Action::kNextClip;
    if (id == play->getId()) events.action = Action::kPlay;
    for (const Toggle &toggle : toggles)
        if (id == toggle.button->getId()) events.action = toggle.action;
    return events;
}

}  // namespace keltra::view
