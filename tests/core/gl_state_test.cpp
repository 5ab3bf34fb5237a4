// SPDX-License-Identifier: Zlib
#include "core/gl_state.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

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

TEST(GlStateTest, TheInitialMaterialIsThatOfANewContext) {
    const GlRecorder::Stub stub;
    forgetInitialMaterial();
    GlRecorder::clear();
    useInitialMaterial();
    const std::int64_t one = 65536, dark = one / 5, bright = one * 4 / 5;
    const std::vector<std::int64_t> none = {0, 0, 0, one};
    const std::pair<GLenum, std::vector<std::int64_t>> expected[] = {
        {GL_EMISSION, none},
        {GL_AMBIENT, {dark, dark, dark, one}},
        {GL_DIFFUSE, {bright, bright, bright, one}},
        {GL_SPECULAR, none}};
    const std::vector<Call> colors = GlRecorder::all("glMaterialxv");
    ASSERT_EQ(colors.size(), std::size(expected));
    for (std::size_t i = 0; i < colors.size(); ++i) {
        EXPECT_EQ(colors[i].arguments[0], GL_FRONT_AND_BACK);
        EXPECT_EQ(colors[i].arguments[1], expected[i].first);
        EXPECT_EQ(colors[i].contents, expected[i].second);
    }
    EXPECT_EQ(GlRecorder::count("glMaterialx", {GL_FRONT_AND_BACK, GL_SHININESS, 0}), 1);
    GlRecorder::clear();
    useInitialMaterial();
    EXPECT_EQ(GlRecorder::count("glMaterialxv"), 0) << "the GL holds it";
    forgetInitialMaterial();
    GlRecorder::clear();
}

}  // namespace
}  // namespace keltra::test
