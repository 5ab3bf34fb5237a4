// SPDX-License-Identifier: Zlib
#include "core/gl_state.h"

#include <gtest/gtest.h>

#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

// The GL binds none in place of the bound one that is deleted.
TEST(GlStateTest, ATextureIsBoundAgainAfterAnUploadToOneThatIsDeleted) {
    const GlRecorder::Stub stub;
    setTexturing(true);
    bindTexture(1);
    bindForUpload(2);
    deleteTexture(2);
    GlRecorder::clear();
    useTexture();
    EXPECT_EQ(GlRecorder::count("glBindTexture", {GL_TEXTURE_2D, 1}), 1);
    useTexture();
    EXPECT_EQ(GlRecorder::count("glBindTexture"), 1);
    bindTexture(0);
    setTexturing(false);
    GlRecorder::clear();
}

}  // namespace
}  // namespace keltra::test
