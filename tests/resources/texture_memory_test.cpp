// SPDX-License-Identifier: Zlib
#include "tests/resources/texture_fixture.h"
#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

using TextureMemoryTest = TextureTest;

constexpr unsigned kSize = 16;
constexpr unsigned kCharge = kSize * kSize * 4;

std::vector<std::int64_t> uploadedLevels() {
    std::vector<std::int64_t> sizes;
    for (const Call &call : GlRecorder::all("glTexImage2D")) {
        sizes.push_back(call.arguments[3]);
        sizes.push_back(call.arguments[4]);
    }
    return sizes;
}

std::vector<std::int64_t> deletedNames() {
    std::vector<std::int64_t> names;
    for (const Call &call : GlRecorder::all("glDeleteTextures")) names.push_back(call.contents[0]);
    return names;
}

TEST_F(TextureMemoryTest, UpdateUploadsTheBitmap) {
    KTTEXTURE *texture = loaded("a.tga", 2);
    KTTEXTURE::channelCache[0] = texture;
    GlRecorder::clear();
    EXPECT_TRUE(texture->update());
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr);
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glGenTextures", "glBindTexture", "glPixelStorei", "glTexParameterx",
                            "glTexParameterx", "glTexParameterx", "glTexParameterx", "glTexImage2D"));
    EXPECT_EQ(GlRecorder::count("glPixelStorei", {GL_UNPACK_ALIGNMENT, 1}), 1);
    EXPECT_EQ(
        GlRecorder::count("glTexImage2D", {GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE}),
        1);
    EXPECT_EQ(GlRecorder::last("glTexImage2D").bytes, exchanged(numbered(16), 4));
}

TEST_F(TextureMemoryTest, UpdateSetsWrapAndFilters) {
    struct {
        bool trilinear, mipmapped, clamped;
        GLint wrap, magnification, minification;
    } const table[] = {
        {false, false, false, GL_REPEAT, GL_NEAREST, GL_NEAREST},
        {true, false, false, GL_REPEAT, GL_LINEAR, GL_LINEAR},
        {false, true, true, GL_CLAMP_TO_EDGE, GL_NEAREST, GL_NEAREST_MIPMAP_NEAREST},
        {true, true, true, GL_CLAMP_TO_EDGE, GL_LINEAR, GL_LINEAR_MIPMAP_LINEAR},
    };
    KTTEXTURE *texture = loaded("a.tga", 4);
    for (const auto &row : table) {
        texture->setFilter(row.trilinear, row.mipmapped, row.clamped);
        GlRecorder::clear();
        ASSERT_TRUE(texture->update());
        const std::vector<Call> calls = GlRecorder::all("glTexParameterx");
        ASSERT_EQ(calls.size(), 4u);
        EXPECT_THAT(calls[0].arguments, ElementsAre(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, row.wrap));
        EXPECT_THAT(calls[1].arguments, ElementsAre(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, row.wrap));
        EXPECT_THAT(calls[2].arguments, ElementsAre(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, row.magnification));
        EXPECT_THAT(calls[3].arguments, ElementsAre(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, row.minification));
    }
}

TEST_F(TextureMemoryTest, UpdateWithoutABitmapFails) {
    KTTEXTURE texture;
    EXPECT_FALSE(texture.update());
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(TextureMemoryTest, SizesThatAreNoPowersOfTwoUploadUnchanged) {
    write("a.tga", 300, 200, 24);
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("a.tga"));
    ASSERT_TRUE(texture.update());
    EXPECT_THAT(uploadedLevels(),
                ElementsAre(300, 200, 150, 100, 75, 50, 37, 25, 18, 12, 9, 6, 4, 3, 2, 1, 1, 1));
    EXPECT_EQ(
        GlRecorder::count("glTexImage2D", {GL_TEXTURE_2D, 8, GL_RGB, 1, 1, 0, GL_RGB, GL_UNSIGNED_BYTE}), 1);
    expectNoGlError();
}

TEST_F(TextureMemoryTest, MipmapsAreMadeInTheBitmap) {
    folder.write("a.tga", joined(tgaHeader(kUncompressed, 2, 2, 24), {1, 2, 3, 1, 2, 3, 1, 2, 3, 2, 3, 7}));
    KTTEXTURE texture;
    ASSERT_TRUE(texture.load("a.tga"));
    ASSERT_TRUE(texture.update());
    EXPECT_THAT(uploadedLevels(), ElementsAre(2, 2, 1, 1));
    EXPECT_THAT(GlRecorder::last("glTexImage2D").bytes, ElementsAre(4, 2, 1));
    EXPECT_THAT(bitmapOf(texture), ElementsAre(4, 2, 1, 3, 2, 1, 3, 2, 1, 7, 3, 2));
}

TEST_F(TextureMemoryTest, OnePixelHasNoMipmaps) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(1, 1, 3));
    EXPECT_EQ(GlRecorder::count("glTexImage2D"), 1);
    EXPECT_TRUE(texture.mipmapResident);
}

TEST_F(TextureMemoryTest, ChargesPlainTexturesOnce) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(texture->update());
        EXPECT_EQ(texture->memory, kCharge);
        EXPECT_EQ(KELTRA::videoMemoryUsed, kCharge);
    }
    texture->unload(false);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 0u);
    EXPECT_EQ(GlRecorder::count("glDeleteTextures"), 3);
}

TEST_F(TextureMemoryTest, EveryUploadWithMipmapsDoublesTheCharge) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    texture->setFilter(false, true, false);
    ASSERT_TRUE(texture->update());
    EXPECT_EQ(texture->memory, 2 * kCharge);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 4 * kCharge);
    EXPECT_TRUE(texture->mipmapResident);
    ASSERT_TRUE(texture->update());
    EXPECT_EQ(texture->memory, 4 * kCharge);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 4 * kCharge - 2 * kCharge + 8 * kCharge)
        << "popped once, pushed twice";
    texture->unload(true);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 2 * kCharge);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), static_cast<unsigned long>(kCharge) - 4 * kCharge);
}

TEST_F(TextureMemoryTest, ChargeWrapsAroundAfterManyUploads) {
    KTTEXTURE *texture = loaded("a.tga", 1);
    texture->setFilter(false, true, false);
    texture->incReferences();
    for (int i = 0; i < 40; ++i) ASSERT_TRUE(texture->update());
    EXPECT_EQ(texture->memory, 0u);
}

TEST_F(TextureMemoryTest, TextureIsUploadedWithoutMipmapsAfterMipmaps) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    texture->setFilter(false, true, false);
    ASSERT_TRUE(texture->update());
    texture->setFilter(false, false, false);
    EXPECT_FALSE(texture->mipmapResident);
    EXPECT_EQ(texture->memory, 2 * kCharge);
    texture->unload(false);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 2 * kCharge);
}

class GarbageTest : public TextureTest {
   protected:
    // Three resident textures in use, rendered in the frames 10, 30 and 20.
    void SetUp() override {
        TextureTest::SetUp();
        const char *const names[] = {"a.tga", "b.tga", "c.tga"};
        const long stamps[] = {10, 30, 20};
        for (int i = 0; i < 3; ++i) {
            texture[i] = loaded(names[i], kSize);
            texture[i]->incReferences();
            KELTRA::timeStamp = stamps[i];
            ASSERT_TRUE(texture[i]->render(nullptr));
            name[i] = texture[i]->getGLId();
        }
        ASSERT_EQ(KELTRA::videoMemoryUsed, 3 * kCharge);
        GlRecorder::clear();
    }

    KTTEXTURE *texture[3];
    unsigned name[3];
};

TEST_F(GarbageTest, EvictsTheNewestFirst) {
    EXPECT_TRUE(KTTEXTURE::garbageCollect(0));
    EXPECT_THAT(deletedNames(), ElementsAre(name[1], name[2], name[0]));
    EXPECT_EQ(KELTRA::videoMemoryUsed, 0u);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 3u);
}

TEST_F(GarbageTest, StopsBelowTheLimit) {
    EXPECT_TRUE(KTTEXTURE::garbageCollect(2 * kCharge));
    EXPECT_THAT(deletedNames(), ElementsAre(name[1], name[2])) << "what equals the limit is not below it";
    EXPECT_TRUE(texture[0]->isLoaded());
    EXPECT_EQ(texture[1]->getBitmap(), nullptr);
}

TEST_F(GarbageTest, EvictsNothingBelowTheLimit) {
    EXPECT_TRUE(KTTEXTURE::garbageCollect(3 * kCharge + 1));
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

TEST_F(GarbageTest, DestroysWhatNobodyUses) {
    texture[0]->decReferences();
    texture[2]->decReferences();
    texture[2]->decReferences();
    EXPECT_TRUE(KTTEXTURE::garbageCollect(1000000));
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
    EXPECT_EQ(KTTEXTURE::getFirst(), texture[1]);
    EXPECT_THAT(deletedNames(), UnorderedElementsAre(name[0], name[2]));
    EXPECT_EQ(KELTRA::videoMemoryUsed, kCharge);
}

TEST_F(GarbageTest, EqualStampsGoInOrderOfCreation) {
    for (KTTEXTURE *each : texture) each->timeStamp = 5;
    EXPECT_TRUE(KTTEXTURE::garbageCollect(0));
    EXPECT_THAT(deletedNames(), ElementsAre(name[0], name[1], name[2]));
}

TEST_F(GarbageTest, EvictedTextureComesBackWhenRendered) {
    KTTEXTURE::garbageCollect(0);
    EXPECT_TRUE(texture[1]->render(nullptr));
    EXPECT_TRUE(texture[1]->isLoaded());
    EXPECT_EQ(KELTRA::videoMemoryUsed, kCharge);
}

TEST_F(GarbageTest, FailsWithoutTexturesOrMemory) {
    if (Allocations::canFail()) {
        Allocations::failNext(3 * 2 * sizeof(void *));
        EXPECT_FALSE(KTTEXTURE::garbageCollect(0));
        Allocations::clear();
        EXPECT_TRUE(texture[0]->isLoaded());
    }
    KTTEXTURE::cleanUp();
    EXPECT_FALSE(KTTEXTURE::garbageCollect(0));
    EXPECT_FALSE(KTTEXTURE::cleanUp());
}

TEST_F(GarbageTest, UploadMakesRoomForItself) {
    KELTRA::videoMemoryTotal = 3 * kCharge + kCharge / 2;
    KTTEXTURE *fourth = loaded("d.tga", kSize);
    GlRecorder::clear();
    EXPECT_TRUE(fourth->update()) << "it is used by nobody, but it is the one that room is made for";
    EXPECT_TRUE(fourth->isLoaded());
    EXPECT_EQ(KTTEXTURE::findById(fourth->getId()), fourth);
    EXPECT_THAT(deletedNames(), ElementsAre(name[1]));
    EXPECT_EQ(KELTRA::videoMemoryUsed, 3 * kCharge);
}

TEST_F(GarbageTest, UploadKeepsItsOwnBitmapThoughItIsTheNewest) {
    KELTRA::videoMemoryTotal = 3 * kCharge;
    KTTEXTURE *fourth = loaded("d.tga", kSize);
    KELTRA::timeStamp = 40;
    EXPECT_TRUE(fourth->render(nullptr));
    EXPECT_TRUE(fourth->isLoaded());
    EXPECT_NE(fourth->getBitmap(), nullptr);
    EXPECT_TRUE(texture[0]->isLoaded());
    EXPECT_FALSE(texture[1]->isLoaded());
    EXPECT_FALSE(texture[2]->isLoaded());
}

TEST_F(GarbageTest, NothingIsCollectedOnceTheBudgetIsExceeded) {
    KELTRA::videoMemoryTotal = 2 * kCharge;
    KTTEXTURE *fourth = loaded("d.tga", kSize);
    GlRecorder::clear();
    EXPECT_TRUE(fourth->update());
    EXPECT_THAT(deletedNames(), IsEmpty()) << "the free memory wraps around to a large number";
    EXPECT_EQ(KELTRA::videoMemoryUsed, 4 * kCharge);
}

TEST_F(GarbageTest, TextureAboveTheWholeBudgetEvictsNothing) {
    KELTRA::videoMemoryTotal = 5 * kCharge;
    KTTEXTURE *large = loaded("d.tga", 4 * kSize);
    texture[1]->decReferences();
    GlRecorder::clear();
    EXPECT_TRUE(large->update());
    EXPECT_TRUE(texture[0]->isLoaded()) << "the limit wraps around to a large number";
    EXPECT_THAT(deletedNames(), ElementsAre(name[1])) << "but what nobody uses goes";
}

TEST_F(GarbageTest, CollectionDuringAMaterialLeavesItsLaterSlotsEmpty) {
    KELTRA::videoMemoryTotal = 3 * kCharge;
    KTTEXTURE *fourth = loaded("d.tga", kSize);
    KTMATERIAL counted, cloned;
    counted.setTexture(0, fourth);
    counted.texture[1] = texture[1];
    texture[1]->decReferences();
    cloned.clone(&counted);
    EXPECT_TRUE(cloned.render(nullptr));
    EXPECT_EQ(cloned.getTexture(0), fourth);
    EXPECT_EQ(cloned.getTexture(1), nullptr);
    EXPECT_EQ(counted.getTexture(1), nullptr);
    EXPECT_TRUE(counted.setTexture(0, nullptr));
}

TEST_F(GarbageTest, CleanUpDestroysAll) {
    EXPECT_TRUE(KTTEXTURE::cleanUp());
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
    EXPECT_EQ(KTTEXTURE::getFirst(), nullptr);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 0u);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
    EXPECT_THAT(KTTEXTURE::channelCache, ::testing::Each(nullptr));
}

TEST_F(TextureMemoryTest, DestroyedTextureLeavesNoPointer) {
    KTMATERIAL material, copyOfMaterial(material);
    KTFBO target;
    KTOPENGL::FBOFlag = true;
    {
        KTTEXTURE texture;
        ASSERT_TRUE(texture.create(4, 4, 3));
        unsigned int channel = 5;
        texture.render(&channel);
        material.setTexture(2, &texture);
        copyOfMaterial.setTexture(7, &texture);
        EXPECT_TRUE(target.bindTexture(0, &texture));
    }
    KTOPENGL::FBOFlag = false;
    EXPECT_EQ(KTTEXTURE::channelCache[5], nullptr);
    EXPECT_EQ(material.getTexture(2), nullptr);
    EXPECT_EQ(copyOfMaterial.getTexture(7), nullptr);
    EXPECT_EQ(target.getTexture(), nullptr);
}

TEST_F(TextureMemoryTest, UnloadedTextureIsBoundAnew) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(4, 4, 3));
    texture.render(nullptr);
    unsigned int channel = 4;
    texture.render(&channel);
    texture.unload(false);
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr);
    EXPECT_EQ(KTTEXTURE::channelCache[4], nullptr);
    texture.render(&channel);
    EXPECT_EQ(GlRecorder::last("glBindTexture").arguments[1], texture.getGLId());
}

TEST_F(TextureMemoryTest, DestroyingACopyReleasesNothing) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    ASSERT_TRUE(texture->update());
    GlRecorder::clear();
    {
        KTTEXTURE copy(*texture);
        EXPECT_EQ(copy.getId(), texture->getId());
        EXPECT_EQ(copy.getGLId(), texture->getGLId());
        EXPECT_EQ(copy.getBitmap(), texture->getBitmap());
        EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 1u);
        unsigned int channel = 3;
        EXPECT_TRUE(copy.render(&channel));
        EXPECT_TRUE(copy.unload(true));
        EXPECT_FALSE(copy.isLoaded());
        KTTEXTURE another(*texture);
        another.render(&channel);
    }
    EXPECT_EQ(GlRecorder::count("glDeleteTextures"), 0);
    EXPECT_EQ(KTTEXTURE::channelCache[3], nullptr);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), kCharge);
    EXPECT_EQ(KELTRA::videoMemoryUsed, kCharge);
    EXPECT_EQ(KTTEXTURE::findById(texture->getId()), texture);
    EXPECT_EQ(bitmapOf(*texture), exchanged(numbered(kCharge), 4));
}

TEST_F(TextureMemoryTest, CopyOutlivesItsOriginal) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    ASSERT_TRUE(texture->update());
    const Bytes pixels = bitmapOf(*texture);
    KTTEXTURE copy(*texture);
    copy.render(nullptr);
    delete texture;
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr) << "its GL texture is gone";
    EXPECT_EQ(bitmapOf(copy), pixels);
    GlRecorder::clear();
    EXPECT_TRUE(copy.modify(std::string(kCharge, 'x').c_str(), false));
    EXPECT_EQ(GlRecorder::count("glTexSubImage2D"), 0);
    EXPECT_TRUE(copy.render(nullptr));
    EXPECT_EQ(GlRecorder::count("glTexImage2D"), 1) << "it uploads one of its own";
    EXPECT_EQ(KELTRA::videoMemoryUsed, kCharge);
    EXPECT_TRUE(copy.unload(true));
    EXPECT_EQ(KELTRA::videoMemoryUsed, 0u);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
}

TEST_F(TextureMemoryTest, AnEmptyBitmapKeepsTheChargeOfTheFile) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    ASSERT_TRUE(texture->create(2, 2, 4));
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), kCharge);
    EXPECT_TRUE(texture->unload(true));
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
}

TEST_F(TextureMemoryTest, ABitmapOfModifyHasTheChargeOfTheFile) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    ASSERT_TRUE(texture->create(2, 2, 5));
    EXPECT_EQ(texture->getBitmap(), nullptr);
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), kCharge);
    EXPECT_FALSE(texture->modify(std::string(20, 'x').c_str(), true));
    EXPECT_TRUE(texture->unload(true));
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), 0u);
}

TEST_F(TextureMemoryTest, UploadOfACopyLeavesTheOriginalResident) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    ASSERT_TRUE(texture->update());
    KTTEXTURE copy(*texture);
    EXPECT_TRUE(copy.update());
    EXPECT_NE(copy.getGLId(), texture->getGLId());
    EXPECT_EQ(GlRecorder::count("glDeleteTextures"), 0);
    EXPECT_EQ(KELTRA::videoMemoryUsed, 2 * kCharge);
}

TEST_F(TextureMemoryTest, AssignmentReleasesWhatTheTargetOwned) {
    KTTEXTURE *first = loaded("a.tga", kSize), *second = loaded("b.tga", 8);
    ASSERT_TRUE(first->update());
    ASSERT_TRUE(second->update());
    second->render(nullptr);
    const auto name = second->getGLId();
    GlRecorder::clear();
    *second = *first;
    EXPECT_THAT(deletedNames(), ElementsAre(name));
    EXPECT_EQ(KTTEXTURE::channelCache[0], nullptr);
    EXPECT_EQ(second->getGLId(), first->getGLId());
    EXPECT_EQ(second->getBitmap(), first->getBitmap());
    EXPECT_EQ(KTTEXTURE::getUsedMemory(), kCharge);
    EXPECT_EQ(KELTRA::videoMemoryUsed, kCharge);
    EXPECT_EQ(first->getNext(), second) << "it stays on the list";
    const KTTEXTURE &same = *first;
    *first = same;
    delete first;
    EXPECT_NE(second->getBitmap(), nullptr);
    EXPECT_EQ(KTTEXTURE::getFirst(), second);
}

TEST_F(TextureMemoryTest, CopyAssignedBackSurvives) {
    KTTEXTURE *texture = loaded("a.tga", kSize);
    ASSERT_TRUE(texture->update());
    const Bytes pixels = bitmapOf(*texture);
    KTTEXTURE copy(*texture);
    *texture = copy;
    EXPECT_FALSE(texture->isLoaded()) << "the GL texture was its own and is gone";
    EXPECT_EQ(bitmapOf(*texture), pixels);
    EXPECT_TRUE(texture->render(nullptr));
    EXPECT_TRUE(copy.render(nullptr));
    EXPECT_EQ(GlRecorder::count("glTexImage2D"), 3);
}

TEST_F(TextureMemoryTest, TextureOnTheStackIsOnlyTakenOffTheList) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(4, 4, 3));
    const auto name = texture.getGLId();
    EXPECT_TRUE(KTTEXTURE::cleanUp());
    EXPECT_THAT(deletedNames(), ElementsAre(name));
    EXPECT_FALSE(texture.isRegistered());
    EXPECT_FALSE(texture.isLoaded());
    EXPECT_EQ(texture.getBitmap(), nullptr);
    EXPECT_TRUE(texture.create(4, 4, 3));
}

TEST_F(TextureMemoryTest, SurvivesTheEngine) {
    KTTEXTURE texture;
    ASSERT_TRUE(texture.create(4, 4, 3));
    texture.render(nullptr);
    ASSERT_TRUE(KELTRA::free());
    EXPECT_FALSE(texture.isLoaded());
}

TEST(TextureWithoutContextTest, NothingIsUploadedAndNothingFails) {
    ASSERT_FALSE(KELTRA::isActive());
    const unsigned before = KELTRA::videoMemoryUsed;
    {
        KTTEXTURE texture;
        EXPECT_TRUE(texture.create(4, 4, 3));
        EXPECT_FALSE(texture.update());
        EXPECT_FALSE(texture.isLoaded());
        EXPECT_TRUE(texture.render(nullptr));
        EXPECT_TRUE(texture.modify(std::string(48, 'x').c_str(), true));
        EXPECT_TRUE(KTTEXTURE::texturingOff(16));
        EXPECT_TRUE(texture.unload(true));
    }
    EXPECT_EQ(KELTRA::videoMemoryUsed, before);
}

}  // namespace
}  // namespace keltra::test
