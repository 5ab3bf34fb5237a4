// SPDX-License-Identifier: Zlib
#include "tests/support/engine_fixture.h"

namespace keltra::test {
namespace {

// Widgets as the screen shows them, in portrait and in landscape mode.

constexpr float kFace = 0.5f;

class GuiDrawTest : public EngineTest, public ::testing::WithParamInterface<bool> {
   protected:
    void prepare(KTSETTINGS &used) override { used.setLandscape(GetParam()); }
    void SetUp() override {
        EngineTest::SetUp();
        KTOPENGL::setBackgroundColor(0.0f, 0.0f, 0.0f, 1.0f);
        font = new KTFONT;
        KTTEXTURE *glyphs = new KTTEXTURE;
        glyphs->setFilter(false, false, false);
        ASSERT_TRUE(glyphs->create(16, 16, 4));
        const std::string white(16 * 16 * 4, '\xff');  // every glyph is a full cell
        glyphs->modify(white.data(), false);
        font->setTexture(glyphs);
    }
    /// The pixel that the interface has at (x, y).
    static std::array<int, 3> at(const Image &picture, int x, int y) {
        return GetParam() ? picture.at(y, KTSETTINGS::windowY - 1 - x) : picture.at(x, y);
    }
    static void expectColor(const Image &picture, int x, int y, float red, float green, float blue) {
        const std::array<int, 3> pixel = at(picture, x, y);
        const float wanted[3] = {red, green, blue};
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(pixel[i], 255.0f * wanted[i], 10.0f) << x << ", " << y << " channel " << i;
    }

    KTFONT *font = nullptr;
};

TEST_P(GuiDrawTest, ABoxIsRaisedAndAPressedOneSunken) {
    KTBOX box;
    box.setPosition(20.0f, 30.0f);
    for (bool pressed : {false, true}) {
        box.setClickedStatus(pressed);
        const Image picture = frame2D([&box] { box.pass(); });
        const float face = pressed ? 0.9f * kFace : kFace;
        const float light = (face + kFace * (pressed ? 0.7f : 1.3f)) / 2,
                    dark = (face + kFace * (pressed ? 1.3f : 0.7f)) / 2;
        expectColor(picture, 50, 60, face, face, face);
        expectColor(picture, 50, 30, light, light, light);
        expectColor(picture, 20, 60, light, light, light);
        expectColor(picture, 50, 93, dark, dark, dark);
        expectColor(picture, 83, 60, dark, dark, dark);
        const float corner = (face + kFace * (pressed ? 0.4f : 1.6f)) / 2;
        expectColor(picture, 20, 30, corner, corner, corner);
        expectColor(picture, 19, 60, 0, 0, 0);
        expectColor(picture, 84, 60, 0, 0, 0);
        expectColor(picture, 50, 94, 0, 0, 0);
    }
}

TEST_P(GuiDrawTest, AWindowClipsWhatItHolds) {
    KTWINDOW window;
    window.setPosition(40.0f, 50.0f);
    window.setSizes(100, 80);
    window.setThickness(0);
    window.getTitleBar()->setThickness(0);
    KTBUTTON button;
    button.setThickness(0);
    button.setColor(0.0f, 1.0f, 0.0f, 1.0f);
    button.setPosition(70.0f, 60.0f);
    button.link(&window);
    KTTEXTFIELD field;
    field.setFont(font);
    field.setCaption("ab");
    field.setColor(1.0f, 1.0f, 0.0f, 1.0f);
    field.setThickness(0);
    field.setPosition(-20.0f, 20.0f);
    field.link(&window);
    KTLABEL label;
    label.setFont(font);
    ASSERT_TRUE(label.write("cdefghij"));
    label.setPosition(60.0f, 4.0f);
    label.link(&window);
    const Image picture = frame2D([&window] { window.pass(); });
    expectColor(picture, 90, 120, 0.0f, 0.0f, 0.54f);
    expectColor(picture, 60, 40, 0.72f, 0.27f, 0.0f);
    expectColor(picture, 120, 120, 0.0f, 1.0f, 0.0f);
    expectColor(picture, 142, 120, 0, 0, 0);
    expectColor(picture, 120, 132, 0, 0, 0);
    expectColor(picture, 50, 100, 1.0f, 1.0f, 0.0f);
    expectColor(picture, 45, 75, 1.0f, 1.0f, 1.0f);
    expectColor(picture, 38, 75, 0, 0, 0);
    expectColor(picture, 110, 60, 1.0f, 1.0f, 1.0f);
    expectColor(picture, 150, 60, 0, 0, 0);
}

TEST_P(GuiDrawTest, TheForemostWindowCoversTheOther) {
    KTWINDOW first, second;
    first.setPosition(20.0f, 40.0f);
    second.setPosition(70.0f, 60.0f);
    first.setColor(1.0f, 0.0f, 0.0f, 1.0f);
    second.setColor(0.0f, 1.0f, 0.0f, 1.0f);
    const auto pass = [&] {
        second.pass();
        first.pass();
    };
    expectColor(frame2D(pass), 100, 100, 0.0f, 1.0f, 0.0f);
    first.setForemost();
    expectColor(frame2D(pass), 100, 100, 1.0f, 0.0f, 0.0f);
    first.minmaximize();
    const Image folded = frame2D(pass);
    expectColor(folded, 100, 100, 0.0f, 1.0f, 0.0f);
    expectColor(folded, 60, 30, 0.72f, 0.27f, 0.0f);
}

TEST_P(GuiDrawTest, ThePointerMeetsWhatTheScreenShows) {
    KTBUTTON button;
    button.setPosition(100.0f, 150.0f);
    button.setThickness(0);
    button.setColor(1.0f, 1.0f, 1.0f, 1.0f);
    const Image picture = frame2D([&button] { button.pass(); });
    for (int y = 0; y < KTSETTINGS::windowY; y += 7)
        for (int x = 0; x < KTSETTINGS::windowX; x += 7) {
            // Boxes react to one pixel more than they show at the far edges, so the middle of a pixel
            // decides.
            const int across = GetParam() ? KTSETTINGS::windowY - y : x, down = GetParam() ? x : y;
            if (across == 164 || down == 214 || across == 100) continue;
            const bool shown = picture.at(x, y)[0] > 128;
            EXPECT_EQ(KTELEMENT::manageGUIEvents(0, x, y, 0, 0, nullptr), shown) << x << ", " << y;
        }
}

TEST_P(GuiDrawTest, StartAndStopLeaveNoWidgetBehind) {
    KTBUTTON onStack;
    onStack.setFont(font);
    onStack.setTexture(font->getTexture());
    KTWINDOW *window = new KTWINDOW;
    window->setFont(font);
    onStack.link(window);
    frame2D([window] { window->pass(); });
    KTELEMENT::manageGUIEvents(0, 30, 30, 1, 0, nullptr);
    ASSERT_TRUE(KELTRA::free());
    EXPECT_EQ(onStack.font, nullptr);
    EXPECT_EQ(onStack.texture, nullptr);
    EXPECT_TRUE(onStack.isRoot());
    ASSERT_TRUE(KELTRA::init(&settings));
    frame2D([&onStack] { onStack.pass(); });
    EXPECT_FALSE(KTELEMENT::manageGUIEvents(0, 239, 319, 0, 0, nullptr));
}

INSTANTIATE_TEST_SUITE_P(, GuiDrawTest, ::testing::Values(false, true),
                         [](const auto &info) { return info.param ? "Landscape" : "Portrait"; });

}  // namespace
}  // namespace keltra::test
