// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ENGINE_FIXTURE_H
#define KELTRA_TESTS_ENGINE_FIXTURE_H

// Starts the engine before each test and stops it after, with the recorder's log empty at the test's first
// line. The frame helpers draw one frame each and check that the GL has no error.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <functional>

#include "tests/support/gl_recorder.h"
#include "tests/support/image.h"
#include "tests/support/startup_faults.h"

namespace keltra::test {

class EngineTest : public ::testing::Test {
   protected:
    /// Called before start-up: a fixture sets here what it needs.
    virtual void prepare(KTSETTINGS &) {}

    void SetUp() override {
        StartupFaults::clear();
        prepare(settings);
        ASSERT_TRUE(KELTRA::init(&settings))
            << "the engine does not start; is this a screen of 16 or 24 bits?";
        expectNoGlError();
        GlRecorder::clear();
    }

    void TearDown() override {
        if (KELTRA::isActive()) {
            expectNoGlError();
            EXPECT_TRUE(KELTRA::free());
        }
        EXPECT_EQ(GlRecorder::countFloat(), 0) << "a floating-point entry point of the GL was called";
        restoreSwitches();
        GlRecorder::clear();
        StartupFaults::clear();
    }

    /// Fails the test for every error of the GL. The recorder does not log the query.
    static void expectNoGlError() {
        const GlRecorder::Pause pause;
        constexpr int kMostErrors = 8;
        for (int i = 0; i < kMostErrors; ++i) {
            const GLenum error = glGetError();
            if (error == GL_NO_ERROR) return;
            ADD_FAILURE() << "GL error 0x" << std::hex << error;
        }
    }

    /// A whole frame with a 3D pass: `pass` passes the nodes. Returns the picture, taken before the swap.
    static Image frame3D(KTCAMERA *camera, const std::function<void()> &pass) {
        return frame(camera, pass, nullptr);
    }
    /// A whole frame with an empty 3D pass and a 2D pass.
    static Image frame2D(const std::function<void()> &pass) { return frame(nullptr, nullptr, pass); }
    static Image frame(KTCAMERA *camera, const std::function<void()> &pass3D,
                       const std::function<void()> &pass2D) {
        EXPECT_TRUE(KELTRA::clear(true, true, false));
        EXPECT_TRUE(KELTRA::begin3D(camera));
        if (pass3D) pass3D();
        EXPECT_TRUE(KELTRA::end3D());
        if (pass2D) {
            EXPECT_TRUE(KELTRA::begin2D());
            pass2D();
            EXPECT_TRUE(KELTRA::end2D());
        }
        Image picture = captureFrame(KTSETTINGS::windowX, KTSETTINGS::windowY);
        expectNoGlError();
        EXPECT_TRUE(KELTRA::swap());
        return picture;
    }

    KTSETTINGS settings;

   private:
    // These keep their values from one start of the engine to the next.
    static void restoreSwitches() {
        KELTRA::wireframeOff();
        KELTRA::shadowingOff();
        KELTRA::bloomingOff();
        KELTRA::HDROff();
        KELTRA::DOFOff();
        KELTRA::setSkybox(nullptr);
        KTOPENGL::nearPlane = 1.0f;
        KTOPENGL::farPlane = 1024.0f;
        KTOPENGL::angleOfView = 45.0f;
        KTOPENGL::backgroundColor = R3XVECTOR4D(0.2f, 0.2f, 0.6f, 1.0f);
        KTOPENGL::globalAmbientLight = R3XVECTOR4D(0.2f, 0.2f, 0.2f, 1.0f);
    }
};

}  // namespace keltra::test

#endif
