// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_VIEW_VIEWER_FIXTURE_H
#define KELTRA_TESTS_TOOLS_VIEW_VIEWER_FIXTURE_H

// A viewer in this process: keys and pen are put into SDL's queue, and pictures are kept beside the tests.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/gl_recorder.h"
#include "tests/support/image.h"
#include "tests/support/temp_file.h"
#include "tests/tools/view/sdl_events.h"
#include "tools/support/shot.h"
#include "tools/view/failure.h"
#include "tools/view/viewer.h"

namespace keltra::test {

class ViewerTest : public SdlEvents {
   protected:
    static constexpr double kStep = 1.0 / 25.0;

    void SetUp() override { GlRecorder::setRecording(false); }
    void TearDown() override {
        viewer.reset();
        EXPECT_FALSE(KELTRA::isActive());
        EXPECT_EQ(KTNODE::getNumberOfNodes(), 0u);
        EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
        GlRecorder::setRecording(true);
    }

    static std::string sample(const std::string &name) { return KELTRA_EXAMPLE_DATA + name; }

    // Copies sample files into the test's folder and returns the path of the first.
    std::string copied(std::initializer_list<const char *> names) {
        for (const char *name : names)
            std::filesystem::copy_file(sample(name), folder.path(name),
                                       std::filesystem::copy_options::overwrite_existing);
        return folder.path(*names.begin());
    }

    void start(const std::string &file, std::vector<std::string> clips = {}) {
        view::ViewerSettings settings;
        settings.file = file;
        settings.clips = std::move(clips);
        settings.data = KELTRA_VIEW_DATA;
        settings.panel = settings.data + "panel.xml";
        settings.repeatable = true;
        viewer = std::make_unique<view::Viewer>(settings);
    }

    // A whole click, with the frames it takes.
    void click(int x, int y) {
        frames(1);  // widgets are looked for among those of the frame before
        button(x, y, true);
        button(x, y, false);
        frames(3);
    }

    void frames(int count, double seconds = kStep) {
        for (int i = 0; i < count; ++i) ASSERT_TRUE(viewer->frame(seconds));
    }
    // The next frame's picture; with a name it is kept, to be looked at.
    support::Shot shot(const std::string &name = "", double seconds = 0.0) {
        support::Shot taken;
        EXPECT_TRUE(viewer->frame(seconds, [&taken] { taken = support::takeShot(); }));
        keep(taken, name);
        return taken;
    }
    static void keep(const support::Shot &taken, const std::string &name) {
        if (name.empty()) return;
        std::string reason;
        EXPECT_TRUE(support::saveShot(
            taken, KELTRA_VIEW_PICTURES + name + "_" + std::to_string(screenDepth()) + ".png", &reason))
            << reason;
    }
    // Pixels that differ, in a part of the screen.
    static int differing(const support::Shot &one, const support::Shot &other, int top = 0,
                         int bottom = 320) {
        int count = 0;
        for (int i = top * 240; i < bottom * 240; ++i) {
            const std::size_t at = static_cast<std::size_t>(i) * 3;
            count += !std::equal(&one.pixels[at], &one.pixels[at] + 3, &other.pixels[at]);
        }
        return count;
    }

    TempFolder folder;
    std::unique_ptr<view::Viewer> viewer;
};

}  // namespace keltra::test

#endif
