// SPDX-License-Identifier: Zlib
#include "tools/view/gl_calls.h"

#include <keltra/keltra.h>

#include <GLES/gl.h>
#include <gtest/gtest.h>

using keltra::view::glCallsMade;

// The wrappers are between the engine and the driver: every call is counted and forwarded.
TEST(GlCalls, CountsThoseOfTheProgramAndOfTheEngine) {
    KTSETTINGS settings;
    ASSERT_TRUE(KELTRA::init(&settings));
    EXPECT_GT(glCallsMade(), 10u);

    const unsigned long before = glCallsMade();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(glCallsMade(), before + 1);
    KTOPENGL::blendingOn();
    EXPECT_EQ(glCallsMade(), before + 2);
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    KTOPENGL::blendingOn();
    EXPECT_EQ(glCallsMade(), before + 3) << "a switch that is on already makes no call";
    KTOPENGL::blendingOff();
    EXPECT_FALSE(glIsEnabled(GL_BLEND));

    const unsigned long floats = glCallsMade();
    glAlphaFunc(GL_GREATER, 0.5f);
    EXPECT_EQ(glCallsMade(), floats + 1) << "the calls with floats, too";
    GLfloat reference = 0.0f;
    glGetFloatv(GL_ALPHA_TEST_REF, &reference);
    EXPECT_NEAR(reference, 0.5f, 0.01f) << "they reach the driver";

    KELTRA::free();
}
