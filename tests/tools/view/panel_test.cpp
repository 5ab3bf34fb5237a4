// SPDX-License-Identifier: Zlib
// The panel by itself: what it shows of a state, and what it makes of the pen.

#include "tools/view/panel.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"
#include "tools/view/failure.h"
#include "tools/view/viewer.h"

using namespace keltra::test;
using namespace keltra::view;

namespace {

const std::string kData = KELTRA_VIEW_DATA;

class PanelTest : public ::testing::Test {
   protected:
    void SetUp() override {
        GlRecorder::setRecording(false);
        for (const char *name : {"font.tga", "font.txt"}) links.link(kData + name, name);
        engine = std::make_unique<RunningEngine>(links);
        state.clip = "walk";
        state.frames = 25;
        state.playing = true;
    }
    void TearDown() override {
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        engine.reset();
        GlRecorder::setRecording(true);
    }

    void open() { panel = std::make_unique<Panel>(kData + "panel.xml"); }
    // The description with `from` replaced by `to`, and the reason why it is refused.
    std::string refusal(const std::string &from, const std::string &to) {
        const std::vector<std::uint8_t> bytes = readFile(kData + "panel.xml");
        std::string text(bytes.begin(), bytes.end());
        const std::size_t at = text.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        if (at != std::string::npos) text.replace(at, from.size(), to);
        const std::string file = folder.write("panel.xml", text);
        try {
            Panel refused(file);
        } catch (const Failure &failure) {
            const std::string reason = failure.what();
            EXPECT_EQ(reason.find(file + ": "), 0u) << reason;
            return reason.substr(std::min(reason.size(), file.size() + 2));
        }
        return "";
    }

    // One frame with the pen there.
    PanelEvents frame(int x = 120, int y = 120, bool pressed = false) {
        EXPECT_TRUE(KELTRA::clear(true, true, false));
        KELTRA::begin2D();
        panel->draw(state);
        KELTRA::end2D();
        const PanelEvents events = panel->handle(x, y, pressed);
        EXPECT_TRUE(KELTRA::swap());
        return events;
    }
    // The action of a press and a release there.
    Action click(int x, int y) {
        frame();  // widgets are found in the render list of the frame before
        Action action = Action::kNone;
        for (bool pressed : {true, false, false}) {
            const PanelEvents events = frame(x, y, pressed);
            if (events.action != Action::kNone) action = events.action;
        }
        return action;
    }

    template <class Widget>
    static Widget &widget(const char *name) {
        for (KTNODE *node = KTNODE::getFirstNode(); node; node = node->getNextNode())
            if (std::string(node->getName()) == name) return static_cast<Widget &>(*node);
        throw std::runtime_error(name);
    }
    // A caption without the escapes that place it.
    static std::string caption(const char *name) {
        const std::string text = widget<KTBUTTON>(name).getCaption();
        return text.substr(text.size() < 12 ? 0 : 12);
    }

    TempFolder folder;
    LinkFolder links;
    std::unique_ptr<RunningEngine> engine;
    std::unique_ptr<Panel> panel;
    PanelState state;
};

TEST_F(PanelTest, NeedsEveryWidgetOfTheRightKind) {
    for (const char *name : {"panel",  "overlay", "noticeBack", "clipBack", "time",  "scene",  "driver",
                             "notice", "clip",    "frame",      "previous", "next",  "play",   "scrub",
                             "zoom",   "wire",    "boxes",      "normals",  "bones", "lights", "culling"}) {
        const std::string value = std::string("value=\"") + name + "\"";
        EXPECT_EQ(refusal(value, "value=\"other\""),
                  std::string("the interface has no widget \"") + name + "\" of the right kind");
    }
    EXPECT_EQ(refusal("<vslider>\n    <name value=\"zoom\"", "<vslider>\n    <name value=\"time\""),
              "the interface has no widget \"zoom\" of the right kind");
}

TEST_F(PanelTest, NeedsAFontAndADocument) {
    EXPECT_EQ(refusal("<size width=\"240\" height=\"85\"/>\n    <usefont ref=\"text\"/>",
                      "<size width=\"240\" height=\"85\"/>"),
              "the interface's panel has no font");
    EXPECT_EQ(refusal("<root>", "<rot>"), "cannot be read as an interface");
    EXPECT_THROW(Panel(folder.path("none.xml")), Failure);
}

TEST_F(PanelTest, ButtonsAskForTheirActions) {
    open();
    const struct {
        int x, y;
        Action action;
    } cases[] = {
        {17, 250, Action::kPreviousClip}, {161, 250, Action::kNextClip}, {205, 250, Action::kPlay},
        {40, 290, Action::kWire},         {120, 290, Action::kBoxes},    {195, 290, Action::kNormals},
        {40, 309, Action::kBones},        {120, 309, Action::kLights},   {195, 309, Action::kCulling},
    };
    for (const auto &[x, y, action] : cases) EXPECT_EQ(click(x, y), action) << x << ", " << y;
    EXPECT_EQ(click(120, 120), Action::kNone) << "beside the panel";
    EXPECT_EQ(click(90, 250), Action::kNone) << "the name of the clip is not a button";
}

TEST_F(PanelTest, HoldsThePenOnlyOnItsWidgets) {
    open();
    frame();
    EXPECT_FALSE(frame(120, 120, true).held);
    frame(120, 120, false);
    EXPECT_TRUE(frame(40, 290, true).held);
    frame(40, 290, false);
}

TEST_F(PanelTest, CaptionsShowWhatIsOn) {
    open();
    state.switches.wire = true;
    state.switches.culling = false;
    frame();
    EXPECT_EQ(caption("wire"), "[x] wire");
    EXPECT_EQ(caption("culling"), "[ ] culling");
    EXPECT_EQ(caption("play"), "Pause");
    state.playing = false;
    state.switches.wire = false;
    frame();
    EXPECT_EQ(caption("wire"), "[ ] wire");
    EXPECT_EQ(caption("play"), "Play");
    state.playing = true;
    state.frames = 0;
    frame();
    EXPECT_EQ(caption("play"), "Play") << "nothing plays without frames";
}

TEST_F(PanelTest, ANoticeIsShownWhileThereIsOne) {
    open();
    frame();
    EXPECT_FALSE(widget<KTBOX>("noticeBack").getDisplayStatus());
    state.notice = "walk cannot be loaded";
    frame();
    EXPECT_TRUE(widget<KTBOX>("noticeBack").getDisplayStatus());
    EXPECT_TRUE(widget<KTLABEL>("notice").getDisplayStatus());
    state.notice.clear();
    frame();
    EXPECT_FALSE(widget<KTLABEL>("notice").getDisplayStatus());
}

TEST_F(PanelTest, TheOverlayAndTheFoldedPanelLeaveTheirRowsFree) {
    open();
    frame();
    EXPECT_EQ(panel->freeRows().top, 44);
    EXPECT_EQ(panel->freeRows().bottom, 216);
    panel->setOverlay(false);
    frame();
    EXPECT_EQ(panel->freeRows().top, 0);
    EXPECT_FALSE(widget<KTLABEL>("driver").getDisplayStatus());
    panel->fold();
    frame();
    EXPECT_TRUE(panel->isFolded());
    EXPECT_EQ(panel->freeRows().bottom, 301);
    EXPECT_EQ(widget<KTWINDOW>("panel").getPosition().y, 320.0f);
    panel->fold();
    frame();
    EXPECT_FALSE(panel->isFolded());
    EXPECT_EQ(widget<KTWINDOW>("panel").getPosition().y, 235.0f);
}

TEST_F(PanelTest, TheScrubBarFollowsTheClipUntilItIsHeld) {
    open();
    state.frame = 12;
    frame();
    KTHSCROLLBAR &scrub = widget<KTHSCROLLBAR>("scrub");
    EXPECT_EQ(scrub.getValue(), 12.0f);
    EXPECT_FALSE(frame().scrubbed);
    frame(14 + 75, 271, true);  // on the cursor
    PanelEvents events = frame(14 + 150, 271, true);
    EXPECT_TRUE(events.scrubbed);
    events = frame(14 + 150, 271, true);
    EXPECT_EQ(events.frame, 24u);
    EXPECT_EQ(scrub.getValue(), 24.0f) << "the state does not move the cursor that is held";
    frame(14 + 150, 271, false);
    frame();
    frame();
    EXPECT_EQ(scrub.getValue(), 12.0f);
}

TEST_F(PanelTest, WithoutFramesNothingIsScrubbed) {
    open();
    state.frames = 0;
    state.clip.clear();
    frame();
    frame(16, 271, true);
    EXPECT_FALSE(frame(100, 271, true).scrubbed);
    frame(100, 271, false);
}

TEST_F(PanelTest, TheZoomStripGivesAShare) {
    open();
    state.zoomShare = 0.5f;
    frame();
    EXPECT_NEAR(widget<KTVSCROLLBAR>("zoom").getValue(), 0.5f, 0.01f);
    frame(231, 74 + 59, true);
    frame(231, 74, true);
    const PanelEvents events = frame(231, 74, true);
    EXPECT_TRUE(events.zoomed);
    EXPECT_NEAR(events.zoomShare, 0.0f, 0.05f);
    frame(231, 74, false);
}

TEST_F(PanelTest, TitlesAreCutToTheWindow) {
    open();
    panel->setTitle("hero^c8000.kte");
    frame();
    EXPECT_NE(std::string(widget<KTWINDOW>("panel").getTitleBar()->getCaption()).find("hero?c8000.kte"),
              std::string::npos);
    panel->setTitle(std::string(100, 'W'));
    frame();
    const std::string title = widget<KTWINDOW>("panel").getTitleBar()->getCaption();
    EXPECT_EQ(title.substr(title.size() - 2), "..");
    EXPECT_LT(title.size(), 60u);
}

}  // namespace
