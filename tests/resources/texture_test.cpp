// SPDX-License-Identifier: Zlib
#include "foundation/text.h"
#include "tests/resources/texture_fixture.h"
#include "tests/support/allocations.h"
#include "tests/support/same_verdict.h"
#include "tests/support/small_stack.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(TextureTest, StartsEmpty) {
    const KTTEXTURE texture;
    EXPECT_EQ(texture.getFilename(), "[texture " + std::to_string(texture.getId()) + "]");
    EXPECT_EQ(texture.getTimeStamp(), 0);
    EXPECT_EQ(texture.getReferences(), 0);
    EXPECT_EQ(texture.getBitmap(), nullptr);
    EXPECT_EQ(texture.getSizeX(), 0u);
    EXPECT_EQ(texture.getSizeY(), 0u);
    EXPECT_EQ(texture.memory, 0u);
    EXPECT_EQ(texture.cubeType, 0u);
    EXPECT_FALSE(texture.isLoaded());
    EXPECT_FALSE(texture.isTrilinear());
    EXPECT_TRUE(texture.isMipmapped());
    EXPECT_FALSE(texture.isClamped());
    EXPECT_FALSE(texture.mipmapResident);
}

TEST_F(TextureTest, StandsAtTheTailOfTheList) {
    const unsigned before = KTTEXTURE::getNumberOfTextures();
    KTTEXTURE first, second;
    {
        const KTTEXTURE third;
        EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), before + 3);
        EXPECT_EQ(first.getNext(), &second);
        EXPECT_EQ(second.getNext(), &third);
        EXPECT_EQ(third.getNext(), nullptr);
        EXPECT_EQ(third.getPrevious(), &second);
    }
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), before + 2);
    EXPECT_EQ(second.getNext(), nullptr);
    EXPECT_EQ(KTTEXTURE::findById(second.getId()), &second);
    EXPECT_EQ(KTTEXTURE::findById(0), nullptr);
}

TEST_F(TextureTest, IsFoundByItsExactFilename) {
    write("Wall.tga", 2, 2);
    KTTEXTURE first, second;
    ASSERT_TRUE(first.load("Wall.tga"));
    ASSERT_TRUE(second.load("Wall.tga"));
    EXPECT_EQ(KTTEXTURE::findByFilename("Wall.tga"), &first);
    EXPECT_EQ(KTTEXTURE::findByFilename("wall.tga"), nullptr);
    EXPECT_EQ(KTTEXTURE::findByFilename(nullptr), nullptr);
}

TEST_F(TextureTest, LoadsAFileWithoutTheGl) {
    write("a.tga", 3, 2, 24);
    KTTEXTURE texture;
    EXPECT_TRUE(texture.load("a.tga"));
    EXPECT_STREQ(texture.getFilename(), "a.tga") << "the path is not kept";
    EXPECT_EQ(texture.getSizeX(), 3u);
    EXPECT_EQ(texture.getSizeY(), 2u);
    EXPECT_EQ(texture.getBpp(), 3u);
    EXPECT_EQ(bitmapOf(texture), exchanged(numbered(18), 3));
    EXPECT_FALSE(texture.isLoaded());
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(TextureTest, File24BitsIsChargedFourBytesAPixel) {
    write("a.tga", 30, 20, 24);
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("a.tga"));
    EXPECT_EQ(texture.memory, 30u * 20 * 4);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 30u * 20 * 4);
}

TEST_F(TextureTest, LoadingAnewReplacesTheCharge) {
    write("a.tga", 30, 20);
    write("b.tga", 8, 8);
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("a.tga"));
    ASSERT_TRUE(texture.load("b.tga"));
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 8u * 8 * 4);
    EXPECT_TRUE(texture.unload(true));
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
    EXPECT_EQ(texture.getBitmap(), nullptr);
}

TEST_F(TextureTest, LimitsSizesAndDepths) {
    KTTEXTURE texture;
    write("512.tga", 512, 512);
    EXPECT_TRUE(texture.load("512.tga"));
    write("wide.tga", 513, 1);
    write("high.tga", 1, 513);
    folder.write("zero.tga", joined(tgaHeader(kUncompressed, 0, 4, 24), Bytes(64)));
    folder.write("16.tga", joined(tgaHeader(kUncompressed, 4, 4, 16), Bytes(64)));
    folder.write("8.tga", joined(tgaHeader(kUncompressed, 4, 4, 8), Bytes(64)));
    for (const char *name : {"wide.tga", "high.tga", "zero.tga", "16.tga", "8.tga"}) {
        EXPECT_FALSE(texture.load(name)) << name;
        expectSameVerdict("tga", readFile(folder.path(name)), false);
    }
    EXPECT_EQ(texture.getSizeX(), 512u);
}

TEST_F(TextureTest, FailedLoadKeepsEverything) {
    write("good.tga", 4, 4);
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("good.tga"));
    const unsigned char *bitmap = texture.getBitmap();
    Bytes cut = uncompressedTga(8, 8, 24);
    cut.pop_back();
    folder.write("cut.tga", cut);
    folder.write("empty.tga", Bytes());
    folder.write("run.tga", joined(tgaHeader(kRunLength, 4, 1, 24), {0x80, 1, 2, 3, 0x80, 1}));
    const std::string longName(256, 'x');
    for (const char *name : {"cut.tga", "empty.tga", "run.tga", "missing.tga", "", longName.c_str()})
        EXPECT_FALSE(texture.load(name)) << name;
    EXPECT_FALSE(texture.load(nullptr));
    EXPECT_STREQ(texture.getFilename(), "good.tga");
    EXPECT_EQ(texture.getBitmap(), bitmap);
    EXPECT_EQ(texture.getSizeX(), 4u);
    EXPECT_EQ(texture.getBpp(), 4u);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 64u);
}

TEST_F(TextureTest, RefusesEveryTruncationOfAFile) {
    const Bytes files[] = {
        uncompressedTga(2, 2, 24),
        uncompressedTga(2, 2, 32),
        joined(tgaHeader(kRunLength, 3, 1, 24), {0x81, 1, 2, 3, 0x00, 4, 5, 6}),
        joined(tgaHeader(kRunLength, 3, 1, 32), {0x01, 1, 2, 3, 4, 5, 6, 7, 8, 0x80, 9, 9, 9, 9}),
    };
    KTTEXTURE texture;
    for (const Bytes &file : files)
        for (std::size_t size = 0; size < file.size(); ++size) {
            folder.write("cut.tga", Bytes(file.begin(), file.begin() + size));
            EXPECT_FALSE(texture.load("cut.tga")) << size << " of " << file.size();
            expectSameVerdict("tga", file.data(), size, false);
        }
    EXPECT_EQ(texture.getBitmap(), nullptr);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
}

TEST_F(TextureTest, FileOfAnotherKindGivesATextureWithoutPixels) {
    write("good.tga", 4, 4);
    folder.write("mapped.tga", joined(tgaHeader(1, 8, 2, 24, 0x20), Bytes(64)));
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("good.tga"));
    EXPECT_TRUE(texture.load("mapped.tga"));
    expectSameVerdict("tga", readFile(folder.path("mapped.tga")), true);
    EXPECT_EQ(texture.getBitmap(), nullptr);
    EXPECT_EQ(texture.getSizeX(), 8u);
    EXPECT_EQ(texture.getSizeY(), 2u);
    EXPECT_STREQ(texture.getFilename(), "mapped.tga");
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 8u * 2 * 4) << "charged all the same";
    EXPECT_FALSE(texture.update());
    EXPECT_TRUE(texture.render(nullptr));
    EXPECT_EQ(GlRecorder::last("glBindTexture").arguments[1], 0);
}

TEST_F(TextureTest, OutOfMemoryLeavesTheTextureAsItWas) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    write("good.tga", 4, 4);
    write("large.tga", 33, 32);
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("good.tga"));
    Allocations::failNext(33 * 32 * 4);
    EXPECT_FALSE(texture.load("large.tga"));
    Allocations::failNext(32 * 32 * 3);
    EXPECT_FALSE(texture.create(32, 32, 3));
    Allocations::clear();
    EXPECT_STREQ(texture.getFilename(), "good.tga");
    EXPECT_EQ(bitmapOf(texture), exchanged(numbered(64), 4));
    EXPECT_TRUE(texture.load("large.tga"));
}

TEST_F(TextureTest, LoadingDynamicIsTrueAndChangesNothing) {
    write("good.tga", 4, 4);
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("good.tga"));
    EXPECT_TRUE(texture.load("[dynamic]"));
    EXPECT_STREQ(texture.getFilename(), "good.tga");
    EXPECT_EQ(bitmapOf(texture), exchanged(numbered(64), 4));
}

TEST_F(TextureTest, PathIsAPrefixOfAtMost255Characters) {
    write("a.tga", 2, 2);
    const std::string prefix = folder.path("a");
    KTTEXTURE::setPath(prefix.c_str());
    EXPECT_STREQ(KTTEXTURE::getPath(), prefix.c_str());
    KTTEXTURE texture;
    EXPECT_TRUE(texture.load(".tga")) << "no separator is added";
    KTTEXTURE::setPath(std::string(300, 'p').c_str());
    EXPECT_EQ(KTTEXTURE::getPath(), std::string(255, 'p'));
    EXPECT_FALSE(texture.load(std::string(255, 'n').c_str()));
    KTTEXTURE::setPath(nullptr);
    EXPECT_STREQ(KTTEXTURE::getPath(), "");
    EXPECT_TRUE(texture.load(folder.path("a.tga").c_str()));
}

TEST_F(TextureTest, LoadsOnTheStackOfTheDevice) {
    write("a.tga", 512, 512);
    folder.write("b.tga", joined(tgaHeader(kRunLength, 512, 2, 32, 0x20), Bytes(8 * 5, 0xFF)));
    KTTEXTURE texture;
    bool plain = false, packed = false;
    ASSERT_TRUE(runOnSmallStack([&] {
        plain = texture.load("a.tga");
        packed = texture.load("b.tga");
    }));
    EXPECT_TRUE(plain);
    EXPECT_TRUE(packed);
    EXPECT_EQ(texture.getSizeY(), 2u);
}

TEST_F(TextureTest, CreatesABlackDynamicTexture) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(8, 4, 4));
    EXPECT_TRUE(texture.isLoaded());
    EXPECT_STREQ(texture.getFilename(), "[dynamic]");
    EXPECT_EQ(texture.getSizeX(), 8u);
    EXPECT_EQ(texture.getSizeY(), 4u);
    EXPECT_EQ(texture.getBpp(), 4u);
    EXPECT_THAT(bitmapOf(texture), Each(0));
    EXPECT_EQ(texture.memory, 0u) << "a dynamic texture is not charged";
    EXPECT_EQ(KELTRA::videoMemoryUsed, 0u);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
}

TEST_F(TextureTest, CreateLimitsSizesAndFormats) {
    KTTEXTURE texture;
    EXPECT_FALSE(texture.create(513, 4, 3));
    EXPECT_FALSE(texture.create(4, 513, 3));
    EXPECT_FALSE(texture.create(4, 4, 2));
    EXPECT_FALSE(texture.create(4, 4, 7));
    EXPECT_FALSE(texture.create(0xFFFFFFFFu, 1, 3));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    EXPECT_TRUE(texture.create(512, 512, 3));
    expectNoGlError();
}

TEST_F(TextureTest, CreateTakesEmptySizesWithoutAGlError) {
    KTTEXTURE texture;
    EXPECT_TRUE(texture.create(0, 0, 3));
    EXPECT_TRUE(texture.create(0, 8, 4));
    EXPECT_TRUE(texture.modify("", true));
    EXPECT_TRUE(texture.render(nullptr));
    expectNoGlError();
}

TEST_F(TextureTest, TargetFormatsHaveNoBitmapAndUploadNothing) {
    for (unsigned format : {5u, 6u}) {
        KTTEXTURE texture;
        GlRecorder::clear();
        EXPECT_TRUE(texture.create(16, 16, format));
        EXPECT_EQ(texture.getBitmap(), nullptr);
        EXPECT_TRUE(texture.isLoaded());
        EXPECT_EQ(GlRecorder::count("glTexImage2D"), 0);
        EXPECT_TRUE(texture.update());
    }
}

TEST_F(TextureTest, CreateKeepsTheChargeOfWhatWasLoaded) {
    write("a.tga", 8, 8);
    KTTEXTURE texture;
    texture.setFilter(false, false, false);
    ASSERT_TRUE(texture.load("a.tga"));
    ASSERT_TRUE(texture.update());
    EXPECT_EQ(KELTRA::videoMemoryUsed, 256u);
    const auto old = texture.getGLId();
    GlRecorder::clear();
    ASSERT_TRUE(texture.create(2, 2, 3));
    EXPECT_THAT(GlRecorder::last("glDeleteTextures").contents, ElementsAre(old));
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 256u);
    EXPECT_EQ(texture.memory, 256u);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 256u) << "popped for the old texture and pushed for the new";
}

TEST_F(TextureTest, ModifyUploadsThePixels) {
    KTTEXTURE texture;
    texture.setFilter(false, false, false);
    ASSERT_TRUE(texture.create(3, 1, 3));
    GlRecorder::clear();
    const char pixels[] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_TRUE(texture.modify(pixels, false));
    EXPECT_THAT(GlRecorder::names(), ElementsAre("glBindTexture", "glPixelStorei", "glTexSubImage2D"));
    EXPECT_EQ(GlRecorder::count("glPixelStorei", {GL_UNPACK_ALIGNMENT, 1}), 1);
    EXPECT_EQ(GlRecorder::count("glTexSubImage2D", {GL_TEXTURE_2D, 0, 0, 0, 3, 1, GL_RGB, GL_UNSIGNED_BYTE}),
              1);
    EXPECT_THAT(GlRecorder::last("glTexSubImage2D").bytes, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_THAT(bitmapOf(texture), Each(0));
    EXPECT_TRUE(texture.modify(pixels, true));
    EXPECT_THAT(bitmapOf(texture), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_FALSE(texture.modify(nullptr, true));
}

TEST_F(TextureTest, ModifyWithoutABitmapOnlyMakesIt) {
    KTTEXTURE texture;
    texture.setFilter(false, false, false);
    ASSERT_TRUE(texture.create(2, 1, 4));
    texture.bitmap[0] = 9;
    texture.unload(true);
    GlRecorder::clear();
    const char pixels[] = {1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_FALSE(texture.modify(pixels, true));
    EXPECT_THAT(bitmapOf(texture), Each(0));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    EXPECT_TRUE(texture.modify(pixels, true));
    EXPECT_THAT(bitmapOf(texture), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

TEST_F(TextureTest, ModifyForgetsChannel0) {
    KTTEXTURE first, second;
    ASSERT_TRUE(first.create(2, 2, 3));
    ASSERT_TRUE(second.create(2, 2, 3));
    first.render(nullptr);
    EXPECT_TRUE(second.modify(std::string(12, 'x').c_str(), false));
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr);
    GlRecorder::clear();
    first.render(nullptr);
    EXPECT_EQ(GlRecorder::count("glBindTexture", {GL_TEXTURE_2D, first.getGLId()}), 1);
}

TEST_F(TextureTest, ModifyLeavesTheGlWithoutErrorWhereItHasNoSuchImage) {
    const std::string pixels(16 * 16 * 6, 'x');
    KTTEXTURE fresh;
    EXPECT_TRUE(fresh.modify(pixels.c_str(), false));
    EXPECT_FALSE(fresh.modify(pixels.c_str(), true));
    EXPECT_TRUE(fresh.modify(pixels.c_str(), true));
    KTTEXTURE target;
    ASSERT_TRUE(target.create(16, 16, 5));
    EXPECT_TRUE(target.modify(pixels.c_str(), false));
    KTTEXTURE evicted;
    ASSERT_TRUE(evicted.create(16, 16, 3));
    evicted.unload(false);
    EXPECT_TRUE(evicted.modify(pixels.c_str(), true));
    write("large.tga", 16, 16, 24);
    KTTEXTURE reloaded;
    ASSERT_TRUE(reloaded.create(2, 2, 4));
    ASSERT_TRUE(reloaded.load("large.tga"));
    EXPECT_TRUE(reloaded.modify(pixels.c_str(), true));
    EXPECT_EQ(GlRecorder::count("glTexSubImage2D"), 0);
    expectNoGlError();
}

TEST_F(TextureTest, ModifyTakesItsOwnBitmap) {
    write("a.tga", 2, 2, 24);
    KTTEXTURE texture;
    texture.setFilter(false, false, false);
    ASSERT_TRUE(texture.load("a.tga"));
    ASSERT_TRUE(texture.update());
    EXPECT_TRUE(texture.modify(reinterpret_cast<const char *>(texture.getBitmap()), true));
    EXPECT_EQ(bitmapOf(texture), exchanged(numbered(12), 3));
}

TEST_F(TextureTest, RenderReadsUploadsAndBindsOnce) {
    write("a.tga", 4, 4);
    KTTEXTURE texture;
    keltra::copyText(texture.filename, "a.tga");
    KELTRA::timeStamp = 70000;
    EXPECT_TRUE(texture.render(nullptr));
    EXPECT_TRUE(texture.isLoaded());
    EXPECT_EQ(texture.getTimeStamp(), 70000);
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 1);
    EXPECT_EQ(GlRecorder::last("glBindTexture").arguments[1], texture.getGLId());
    EXPECT_EQ(KTTEXTURE::channelCache[0], &texture);
    GlRecorder::clear();
    KELTRA::timeStamp = 70001;
    EXPECT_TRUE(texture.render(nullptr));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    EXPECT_EQ(texture.getTimeStamp(), 70001);
}

TEST_F(TextureTest, RenderTakesChannels0To15) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(2, 2, 3));
    const int before = texture.getTimeStamp();
    unsigned int channel = 16;
    EXPECT_FALSE(texture.render(&channel));
    channel = 0xFFFFFFFF;
    EXPECT_FALSE(texture.render(&channel));
    EXPECT_EQ(texture.getTimeStamp(), before);
    channel = 15;
    EXPECT_TRUE(texture.render(&channel));
    EXPECT_EQ(KTTEXTURE::channelCache[15], &texture);
    EXPECT_TRUE(KTTEXTURE::channelActive[15]);
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr);
}

TEST_F(TextureTest, UnreadableFileIsBoundAsName0AndTriedAgain) {
    KTTEXTURE texture;
    keltra::copyText(texture.filename, "late.tga");
    for (int i = 0; i < 2; ++i) {
        GlRecorder::clear();
        EXPECT_TRUE(texture.render(nullptr));
        EXPECT_FALSE(texture.isLoaded());
        EXPECT_TRUE(KTTEXTURE::channelActive[0]);
        EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), i == 0 ? 1 : 0);
        EXPECT_EQ(GlRecorder::count("glBindTexture", {GL_TEXTURE_2D, 0}), 1);
    }
    write("late.tga", 4, 4);
    EXPECT_TRUE(texture.render(nullptr));
    EXPECT_TRUE(texture.isLoaded());
}

TEST_F(TextureTest, SwitchesTexturingOncePerChannel) {
    GlRecorder::clear();
    EXPECT_TRUE(KTTEXTURE::texturingOn(3));
    EXPECT_TRUE(KTTEXTURE::texturingOn(3));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 1);
    EXPECT_TRUE(KTTEXTURE::texturingOn(16));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 16);
    KTTEXTURE texture;
    KTTEXTURE::channelCache[2] = KTTEXTURE::channelCache[9] = &texture;
    EXPECT_TRUE(KTTEXTURE::texturingOff(2));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 17) << "other channels are on";
    EXPECT_TRUE(KTTEXTURE::texturingOff(2));
    EXPECT_EQ(GlRecorder::count("glEnable", {GL_TEXTURE_2D}), 17);
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_TEXTURE_2D}), 1);
    EXPECT_EQ(KTTEXTURE::channelCache[2], &texture) << "one channel's switch keeps its texture";
    EXPECT_TRUE(KTTEXTURE::texturingOff(99));
    EXPECT_EQ(GlRecorder::count("glDisable", {GL_TEXTURE_2D}), 16);
    EXPECT_THAT(KTTEXTURE::channelCache, Each(nullptr));
    EXPECT_THAT(KTTEXTURE::channelActive, Each(false));
    EXPECT_EQ(GlRecorder::count("glActiveTexture"), 0);
}

TEST_F(TextureTest, ReloadMakesAnUnloadedTextureResident) {
    KTTEXTURE *texture = loaded("a.tga", 4);
    ASSERT_TRUE(texture->update());
    EXPECT_FALSE(texture->reload());
    texture->unload(true);
    EXPECT_FALSE(texture->isLoaded());
    EXPECT_TRUE(texture->reload());
    EXPECT_TRUE(texture->isLoaded());
    EXPECT_EQ(bitmapOf(*texture), exchanged(numbered(64), 4));
    texture->unload(false);
    EXPECT_NE(texture->getBitmap(), nullptr);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 0u);
}

TEST_F(TextureTest, SetFilterUploadsAResidentTextureAnew) {
    KTTEXTURE *texture = loaded("a.tga", 4);
    EXPECT_TRUE(texture->setFilter(true, false, true));
    EXPECT_TRUE(texture->isTrilinear());
    EXPECT_FALSE(texture->isMipmapped());
    EXPECT_TRUE(texture->isClamped());
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    ASSERT_TRUE(texture->update());
    GlRecorder::clear();
    EXPECT_TRUE(texture->setFilter(false, false, true));
    EXPECT_EQ(GlRecorder::count("glTexImage2D"), 1);
}

TEST_F(TextureTest, CountsReferencesAndStoresTheCubeType) {
    KTTEXTURE texture;
    texture.incReferences();
    texture.incReferences();
    texture.decReferences();
    EXPECT_EQ(texture.getReferences(), 1);
    texture.setCubeType(7);
    EXPECT_EQ(texture.cubeType, 7u);
}

}  // namespace
}  // namespace keltra::test
