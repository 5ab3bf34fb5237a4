// SPDX-License-Identifier: Zlib
// docs/interface.md: the stacking order.

#include "tests/docs/interface_fixture.h"

namespace keltra::test {
namespace {

class LayerClaims : public InterfaceClaims {
   protected:
    static KTTEXTURE *halfTransparentRed() {
        KTTEXTURE *texture = new KTTEXTURE;
        texture->setFilter(false, false, true);
        texture->create(2, 1, 4);
        const unsigned char pixels[] = {255, 0, 0, 0, 255, 0, 0, 255};
        texture->modify(reinterpret_cast<const char *>(pixels), true);
        return texture;
    }
    const std::array<int, 3> red = {255, 0, 0}, green = {0, 255, 0};
};

TEST_F(LayerClaims, StringsLieUnderWidgetsAndLabelsOverThem) {
    KTBOX *box = add<KTBOX>(100, 100);
    box->setThickness(0);
    box->setColor(0, 1, 0, 1);
    EXPECT_EQ(draw([&] { font->putString(110, 110, "A"); }).at(115, 115), green);
    KTLABEL *label = add<KTLABEL>(110, 110);
    label->setFont(font);
    label->write("A");
    EXPECT_NE(draw().at(115, 115), green);
}

TEST_F(LayerClaims, APictureShowsItsAlphaOnATransparentBoxOnly) {
    KTBOX *box = add<KTBOX>(100, 100);
    box->setThickness(0);
    box->setTexture(halfTransparentRed());
    box->setColor(1, 1, 1, 1);
    EXPECT_EQ(draw().at(110, 110), red);
    box->setColor(1, 1, 1, 0.999f);
    const Image picture = draw();
    EXPECT_EQ(picture.at(110, 110), picture.at(10, 10)) << "the background";
    EXPECT_GT(picture.at(150, 110)[0], 250);
}

TEST_F(LayerClaims, AHiddenWindowLeavesItsChildrenVisible) {
    KTWINDOW *window = add<KTWINDOW>(0, 19);
    KTBUTTON *button = add<KTBUTTON>(10, 30, window);
    window->setDisplayStatus(false);
    Image picture = draw();
    const auto background = picture.at(200, 300);
    EXPECT_EQ(picture.at(100, 120), background) << "the body";
    EXPECT_NE(picture.at(60, 8), background) << "the title bar";
    EXPECT_NE(picture.at(30, 69), background) << "the button";
    EXPECT_TRUE(pen(30, 69, 1));
    pen(30, 69, 0);
    EXPECT_EQ(id, button->getId());

    ASSERT_TRUE(window->unlink());
    picture = draw();
    EXPECT_EQ(picture.at(60, 8), background);
    EXPECT_EQ(picture.at(30, 69), background);
    EXPECT_FALSE(pen(30, 69, 1));
}

}  // namespace
}  // namespace keltra::test
