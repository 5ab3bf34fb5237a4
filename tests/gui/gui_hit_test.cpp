// SPDX-License-Identifier: Zlib
// Many widgets against a slow and simple reference.

#include <random>

#include "tests/gui/gui_fixture.h"

namespace keltra::test {
namespace {

/// The hit test from first principles: absolute positions are summed from the root down, windows clip what is
/// below them.
struct Reference {
    const KTBOX *box;
    double x, y;
    bool clipped;
    double left, top, right, bottom;

    bool contains(int px, int py) const {
        if (clipped && (px < left || py < top || px > right || py > bottom)) return false;
        return px >= x && py >= y && px <= x + box->sizeX && py <= y + box->sizeY;
    }
};

void collect(KTNODE *node, double x, double y, const Reference *window, std::vector<Reference> &all) {
    x += node->position.x;
    y += node->position.y;
    Reference entry{};
    entry.box = dynamic_cast<KTBOX *>(node);
    if (entry.box) {
        entry.x = x;
        entry.y = y;
        const KTNODE *parent = node->getParent();
        const bool isTitle = parent && parent->getType() == KT_WINDOW && parent->getChild(0) == node;
        if (window && node->getType() != KT_WINDOW && !isTitle) {
            entry.clipped = true;
            entry.left = window->x;
            entry.top = window->y;
            entry.right = window->x + window->box->sizeX;
            entry.bottom = window->y + window->box->sizeY;
        }
        if (entry.box->checkStatus && entry.box->displayStatus) all.push_back(entry);
    }
    const bool folded = node->getType() == KT_WINDOW && static_cast<KTWINDOW *>(node)->isMinimized();
    if (folded && !all.empty() && all.back().box == node) all.pop_back();
    const Reference around = entry;
    const Reference *inner = node->getType() == KT_WINDOW ? &around : window;
    for (unsigned int i = 0; i < (folded ? 1 : node->getNumberOfChildren()); ++i)
        collect(node->getChild(i), x, y, inner, all);
}

TEST_F(GuiTest, AHundredWidgetsAreHitAsTheReferenceSays) {
    std::mt19937 generator(20061);
    const auto random = [&generator](int low, int high) {
        return low + static_cast<int>(generator() % static_cast<unsigned int>(high - low + 1));
    };
    std::vector<KTBOX *> widgets;
    std::vector<KTNODE *> roots;
    while (widgets.size() < 100) {
        KTBOX *box;
        switch (random(0, 4)) {
            case 0:
                box = new KTWINDOW;
                break;
            case 1:
                box = new KTTEXTFIELD;
                break;
            case 2:
                box = new KTHSCROLLBAR;
                break;
            case 3:
                box = new KTBOX;
                break;
            default:
                box = new KTBUTTON;
                break;
        }
        if (box->getType() == KT_WINDOW)
            static_cast<KTWINDOW *>(box)->setSizes(random(20, 120), random(20, 120));
        else
            box->setSizes(random(4, 60), random(4, 60));
        box->setPosition(static_cast<float>(random(0, 160)), static_cast<float>(random(0, 220)));
        if (random(0, 3) == 0) box->setDisplayStatus(false);
        if (random(0, 3) == 0) box->setCheckStatus(true);
        if (!widgets.empty() && random(0, 2) != 0) {
            KTBOX *parent =
                widgets[static_cast<unsigned int>(random(0, static_cast<int>(widgets.size()) - 1))];
            box->setPosition(static_cast<float>(random(-10, 80)), static_cast<float>(random(-10, 80)));
            box->link(parent);
        } else {
            roots.push_back(box);
        }
        widgets.push_back(box);
    }
    for (KTBOX *widget : widgets) {
        if (widget->getType() == KT_WINDOW && random(0, 4) == 0)
            static_cast<KTWINDOW *>(widget)->minmaximize();
        if (random(0, 1)) widget->setForemost();
    }
    list(roots);
    std::vector<Reference> references;
    for (KTNODE *root : roots) collect(root, 0.0, 0.0, nullptr, references);

    const auto found = [] {
        std::vector<KTBOX *> clicked;
        for (unsigned int i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
            KTBOX *box = dynamic_cast<KTBOX *>(KTELEMENT::element[i].getNode());
            if (box && box->clickedStatus) clicked.push_back(box);
        }
        return clicked;
    };
    int hits = 0;
    for (int i = 0; i < 10000; ++i) {
        const int x = random(-20, 260), y = random(-20, 340);
        const Reference *expected = nullptr;
        for (const Reference &reference : references)
            if (reference.contains(x, y) &&
                (!expected || reference.box->foremostTimeStamp > expected->box->foremostTimeStamp))
                expected = &reference;
        point(x, y, 1);
        ASSERT_EQ(over, expected != nullptr) << x << ", " << y;
        for (KTBOX *box : found()) {
            ASSERT_EQ(box, expected->box) << x << ", " << y;
            ++hits;
        }
        point(-1000, -1000, 0);  // a title that is released outside does not fold its window
    }
    EXPECT_GT(hits, 2000);
}

}  // namespace
}  // namespace keltra::test
