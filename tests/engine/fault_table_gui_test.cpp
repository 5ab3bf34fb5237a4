// SPDX-License-Identifier: Zlib
// Failures of the calls of widgets, the loader of interface files left out.

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

const std::string tooLong(256, 'a');

TEST_F(FaultTableTest, Widgets) {
    check({
        {"KTBOX::checkLimits",
         [](Folder) {
             int dy = 0;
             EXPECT_FALSE(KTBOX().checkLimits(nullptr, &dy));
         },
         kError, KT_FAULT_NULL, "KTBOX::checkLimits: `dx` is null"},
        {"KTBOX::checkLimits",
         [](Folder) {
             int dx = 0;
             EXPECT_FALSE(KTBOX().checkLimits(&dx, nullptr));
             EXPECT_FALSE(KTBOX().checkLimits(&dx, &dx));
         },
         kError, KT_FAULT_NULL, "KTBOX::checkLimits: `dy` is null"},
        {"KTBUTTON::setCaption", [](Folder) { KTBUTTON().setCaption(nullptr); }, kWarning, KT_FAULT_NULL,
         "KTBUTTON::setCaption: `text` is null"},
        {"KTBUTTON::setCaption", [](Folder) { KTBUTTON().setCaption(tooLong.c_str()); }, kWarning,
         KT_FAULT_ARGUMENT, "KTBUTTON::setCaption: `text` is longer than 255 characters"},
        {"KTWINDOW::setCaption", [](Folder) { KTWINDOW().setCaption(tooLong.c_str()); }, kWarning,
         KT_FAULT_ARGUMENT, "KTWINDOW::setCaption: `text` is longer than 255 characters"},
        {"KTTEXTFIELD::manageKey",
         [](Folder) {
             EXPECT_FALSE(KTTEXTFIELD().manageKey(0));
             EXPECT_FALSE(KTTEXTFIELD().manageKey('a'));
         },
         kError, KT_FAULT_STATE, "KTTEXTFIELD::manageKey: the text field has no font"},
    });
}

TEST_F(FaultTableTest, TextOfWidgets) {
    static KTFONT *const font = new KTFONT;
    check({
        {"KTLABEL::write", [](Folder) { EXPECT_FALSE(KTLABEL().write(nullptr)); }, kError, KT_FAULT_NULL,
         "KTLABEL::write: `format` is null"},
        {"KTLABEL::write", [](Folder) { EXPECT_FALSE(KTLABEL().write("a")); }, kError, KT_FAULT_STATE,
         "KTLABEL::write: the label has no font"},
        {"KTLABEL::write",
         [](Folder) {
             KTLABEL label;
             label.setFont(font);
             EXPECT_TRUE(label.write("%s", tooLong.c_str()));
         },
         kWarning, KT_FAULT_ARGUMENT, "KTLABEL::write: `text` is longer than 255 characters"},
#ifndef _WIN32  // whose C library writes such a character in another form
        {"KTLABEL::write",
         [](Folder) {
             KTLABEL label;
             label.setFont(font);
             EXPECT_FALSE(label.write("%ls", L"\u0100"));
         },
         kError, KT_FAULT_ARGUMENT, "KTLABEL::write: `format` is not to be written"},
#endif
        {"KTWINDOW::write", [](Folder) { EXPECT_FALSE(KTWINDOW().write(nullptr)); }, kError, KT_FAULT_NULL,
         "KTWINDOW::write: `format` is null"},
        {"KTWINDOW::write",
         [](Folder) { EXPECT_FALSE(KTWINDOW().write("%s", std::string(3968, 'a').c_str())); }, kError,
         KT_FAULT_FULL, "KTWINDOW::write: text, 3967 at most: full"},
#ifndef _WIN32  // whose C library writes such a character in another form
        {"KTWINDOW::write", [](Folder) { EXPECT_FALSE(KTWINDOW().write("%ls", L"\u0100")); }, kError,
         KT_FAULT_ARGUMENT, "KTWINDOW::write: `format` is not to be written"},
#endif
        {"KTWINDOW::format", [](Folder) { EXPECT_FALSE(KTWINDOW().format()); }, kError, KT_FAULT_STATE,
         "KTWINDOW::format: the window has no font"},
    });
}

TEST_F(FaultTableTest, WhatWidgetsDoThemselvesIsNoFault) {
    KTWINDOW window;
    KTTEXTFIELD field;
    ASSERT_TRUE(field.link(&window));
    KTFAULTS::clear();
    window.setCaption(tooLong.substr(1).c_str());
    window.setDisplayStatus(true);
    field.setDisplayStatus(false);
    EXPECT_FALSE(window.minmaximize());
    EXPECT_TRUE(window.minmaximize());
    unsigned int activated;
    for (int pressed : {0, 1, 1, 0, 0}) {
        frame2D([&] { window.pass(); });
        KTELEMENT::manageGUIEvents(0, 10, 30, pressed, 0, &activated);
    }
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

}  // namespace
}  // namespace keltra::test
