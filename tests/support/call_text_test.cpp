// SPDX-License-Identifier: Zlib
#include "tests/support/call_text.h"

#include <gtest/gtest.h>

#include <functional>

#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

std::string *noted = nullptr;

class CallTextTest : public ::testing::Test {
   protected:
    CallTextTest() {
        noted = &lines;
        text = CallText();
        GlRecorder::setListener(
            [](const Call &call, unsigned pointers) { *noted += text.line(call, pointers) + '\n'; });
    }

    std::string linesOf(const std::function<void()> &calls) {
        lines.clear();
        calls();
        return lines;
    }
    std::string triangle(const std::vector<GLfixed> &corners, const std::vector<GLushort> &indices) {
        glVertexPointer(2, GL_FIXED, 0, corners.data());
        return linesOf([&] { glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, indices.data()); });
    }

    const GlRecorder::Stub stub;
    std::string lines;
    static inline CallText text;
};

TEST_F(CallTextTest, SaysValuesAndNoAddresses) {
    const GLfixed color[4] = {1, 2, -3, 4}, direction[4] = {5, 6, 7, 8};  // the recorder keeps four
    EXPECT_EQ(linesOf([] { glClearColorx(65536, 0, -1, 2); }), "glClearColorx 65536 0 -1 2\n");
    EXPECT_EQ(linesOf([&] { glMaterialxv(GL_FRONT_AND_BACK, GL_AMBIENT, color); }),
              "glMaterialxv 1032 4608 * : 1 2 -3 4\n");
    EXPECT_EQ(linesOf([&] { glLightxv(GL_LIGHT0, GL_SPOT_DIRECTION, direction); }),
              "glLightxv 16384 4612 * : 5 6 7\n");
    EXPECT_EQ(linesOf([] { glVertexPointer(2, GL_FIXED, 0, nullptr); }), "glVertexPointer 2 5132 0 null\n");
}

TEST_F(CallTextTest, ADrawingCallSaysWhichVerticesItDraws) {
    glEnableClientState(GL_VERTEX_ARRAY);
    const std::string line = triangle({0, 0, 1, 0, 0, 1}, {0, 1, 2});
    EXPECT_EQ(triangle({0, 0, 1, 0, 0, 1}, {0, 1, 2}), line) << "other addresses";
    EXPECT_NE(triangle({0, 0, 1, 0, 0, 2}, {0, 1, 2}), line) << "another vertex";
    EXPECT_NE(triangle({0, 0, 1, 0, 0, 1}, {0, 2, 1}), line) << "another order";
    EXPECT_EQ(triangle({0, 0, 1, 0, 0, 1, 9, 9}, {0, 1, 2}), line) << "a vertex that is not drawn";
    glDisableClientState(GL_VERTEX_ARRAY);
    EXPECT_EQ(triangle({0, 0, 1, 0, 0, 1}, {0, 1, 2}), triangle({0, 0, 1, 0, 0, 2}, {0, 1, 2}))
        << "an array that is off";
}

TEST_F(CallTextTest, OfArraysOnlyTheVerticesDrawnCount) {
    const GLfixed some[] = {9, 9, 9, 1, 2, 3, 4, 5, 6}, others[] = {8, 8, 8, 1, 2, 3, 4, 5, 6};
    glEnableClientState(GL_NORMAL_ARRAY);
    const auto draw = [&](const GLfixed *normals, GLint first) {
        glNormalPointer(GL_FIXED, 0, normals);
        return linesOf([&] { glDrawArrays(GL_TRIANGLES, first, 2); });
    };
    EXPECT_EQ(draw(some, 1), draw(others, 1));
    EXPECT_NE(draw(some, 0), draw(others, 0));
}

TEST_F(CallTextTest, TexelsCountAndWhatPadsTheirRowsDoesNot) {
    const auto upload = [&](std::vector<std::uint8_t> texels) {
        return linesOf([&] {
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
        });
    };
    EXPECT_EQ(upload({1, 2, 3, 0, 4, 5, 6}), upload({1, 2, 3, 99, 4, 5, 6}));
    EXPECT_NE(upload({1, 2, 3, 0, 4, 5, 6}), upload({1, 2, 3, 0, 4, 5, 7}));
}

}  // namespace
}  // namespace keltra::test
