// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>

#include <cstdlib>
#include <new>

#include "tests/support/allocations.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/small_stack.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

using RecorderTest = EngineTest;

TEST_F(RecorderTest, SeesTheCallsOfTheLibraryAndPassesThemOn) {
    KTOPENGL::setBackgroundColor(1.0f, 0.0f, 0.0f, 1.0f);
    EXPECT_TRUE(KELTRA::clear(true, false, false));

    EXPECT_THAT(GlRecorder::names(), ElementsAre("glClearColorx", "glClear"));
    EXPECT_THAT(GlRecorder::last("glClearColorx").arguments, ElementsAre(65536, 0, 0, 65536));
    EXPECT_EQ(GlRecorder::count("glClear", {GL_COLOR_BUFFER_BIT}), 1);
    EXPECT_EQ(GlRecorder::count("glClear", {GL_DEPTH_BUFFER_BIT}), 0);
    EXPECT_THAT(captureFrame().at(120, 160), ElementsAre(255, 0, 0));
    EXPECT_EQ(GlRecorder::count("glReadPixels"), 0);
}

TEST(StubTest, HandsOutNamesAndWhatWasSet) {
    const GlRecorder::Stub stub;
    GlRecorder::setInteger(GL_RED_BITS, {5});
    GlRecorder::setPixels({1, 2, 3, 4});
    GlRecorder::setError(GL_INVALID_ENUM);

    GLuint names[2] = {};
    GLint bits = 0;
    glGenTextures(2, names);
    glGetIntegerv(GL_RED_BITS, &bits);

    EXPECT_THAT(names, ElementsAre(1, 2));
    EXPECT_THAT(GlRecorder::last("glGenTextures").contents, ElementsAre(1, 2));
    EXPECT_EQ(bits, 5);
    EXPECT_THAT(captureFrame(2, 2).at(1, 1), ElementsAre(1, 2, 3));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(StubTest, KeepsWhatPointersPointTo) {
    const GlRecorder::Stub stub;
    const GLfixed color[4] = {1, 2, 3, 4};
    const std::uint8_t texels[7] = {1, 2, 3, 0, 4, 5, 6};  // rows are padded to the default alignment of 4

    glMaterialxv(GL_FRONT_AND_BACK, GL_AMBIENT, color);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 1, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, texels);

    EXPECT_THAT(GlRecorder::last("glMaterialxv").contents, ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(GlRecorder::last("glTexImage2D").bytes, ElementsAre(1, 2, 3, 0, 4, 5, 6));
}

TEST(StubTest, TellsFloatEntryPointsApart) {
    const GlRecorder::Stub stub;
    glColor4x(1, 2, 3, 4);
    EXPECT_EQ(GlRecorder::countFloat(), 0);
    glColor4f(1.0f, 0.5f, 0.0f, 1.0f);
    EXPECT_EQ(GlRecorder::countFloat(), 1);
    EXPECT_THAT(GlRecorder::last("glColor4f").arguments, ElementsAre(65536, 32768, 0, 65536));
}

TEST(StartupFaultsTest, FailsTheNextCallOnlyAndCounts) {
    StartupFaults::clear();
    StartupFaults::fail("SDL_Init");

    EXPECT_FALSE(KELTRA::init(nullptr));
    EXPECT_EQ(StartupFaults::succeeded("SDL_Init"), 0);
    EXPECT_TRUE(KELTRA::init(nullptr));
    EXPECT_TRUE(KELTRA::free());

    EXPECT_EQ(StartupFaults::count("SDL_Init"), 2);
    EXPECT_EQ(StartupFaults::succeeded("SDL_Init"), 1);
    EXPECT_EQ(StartupFaults::succeeded("eglCreateContext"), StartupFaults::succeeded("eglDestroyContext"));
    StartupFaults::clear();
}

TEST(AllocationsTest, AreCountedAlsoInsideTheLibrary) {
    Allocations::startCounting();
    void *block = vnfMalloc(1000);
    const long counted = Allocations::stopCounting();
    vnfFree(block);
    EXPECT_EQ(counted, 1);
}

TEST(AllocationsTest, FailOnceWhenTold) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    Allocations::failNext(1000, 2);
    void *first = vnfMalloc(1000);
    void *second = vnfMalloc(1000);
    void *third = vnfMalloc(1000);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_NE(third, nullptr);
    for (void *block : {first, second, third}) vnfFree(block);
    Allocations::clear();
}

TEST(ImageTest, GoldenPicturesMustMatchWithinTheTolerance) {
    if (std::getenv("KELTRA_UPDATE_GOLDEN")) GTEST_SKIP() << "golden pictures are being written";
    Image image{2, 1, {10, 20, 30, 40, 50, 60}};
    Image other = image;
    other.pixels[4] += 6;

    const Difference difference = compare(image, other);
    EXPECT_TRUE(difference.sameSize);
    EXPECT_EQ(difference.largest, 6);
    EXPECT_DOUBLE_EQ(difference.mean, 1.0);
    EXPECT_FALSE(compare(image, Image{1, 2, image.pixels}).sameSize);
    EXPECT_THAT(matchesGolden(image, "no_such_picture", {}).message(), HasSubstr("no golden picture"));
}

TEST(ImageTest, SurvivesAPngFile) {
    const TempFolder folder;
    const Image image{2, 1, {10, 20, 30, 40, 50, 60}};
    ASSERT_TRUE(savePng(image, folder.path("a.png")));
    EXPECT_EQ(loadPng(folder.path("a.png")).pixels, image.pixels);
    EXPECT_TRUE(loadPng(folder.path("missing.png")).empty());
}

TEST(SmallStackTest, RunsToItsEnd) {
    int result = 0;
    EXPECT_TRUE(runOnSmallStack([&] { result = 7; }));
    EXPECT_EQ(result, 7);
}

#ifndef _WIN32  // which gives a thread more than it asks for
TEST(SmallStackDeathTest, EndsTheProgramWhereTheStackEnds) {
    const auto overrun = [] {
        volatile char large[2 * kSmallStack];
        for (std::size_t i = sizeof large; i > 0; i -= 64) large[i - 1] = 1;
    };
    EXPECT_DEATH(runOnSmallStack(overrun), "");
}
#endif

TEST(TempFolderTest, IsGoneWithTheObject) {
    std::string path;
    {
        const TempFolder folder;
        path = folder.write("a.bin", std::vector<std::uint8_t>{1, 2, 3});
        EXPECT_THAT(readFile(path), ElementsAre(1, 2, 3));
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

}  // namespace
}  // namespace keltra::test
