// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TEXTURE_FIXTURE_H
#define KELTRA_TESTS_TEXTURE_FIXTURE_H

#include <string>

#include "tests/formats/tga_bytes.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {

/// The engine with no texture memory in use and a folder of texture files.
class TextureTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        KTTEXTURE::setPath(folder.prefix().c_str());
        KTTEXTURE::usedMemory = 0;
        KELTRA::videoMemoryUsed = 0;
    }
    void TearDown() override {
        EngineTest::TearDown();
        KTTEXTURE::setPath(nullptr);
        KTTEXTURE::usedMemory = 0;
        KELTRA::videoMemoryUsed = 0;
    }

    /// Writes a file of numbered pixels.
    void write(const char *name, unsigned sizeX, unsigned sizeY, unsigned bits = 32) {
        folder.write(name, uncompressedTga(sizeX, sizeY, bits));
    }
    /// A loaded texture of `sizeX` x `sizeX` pixels with 32 bits, without mipmaps: it is charged 4 bytes a
    /// pixel.
    KTTEXTURE *loaded(const char *name, unsigned sizeX) {
        write(name, sizeX, sizeX);
        KTTEXTURE *texture = new KTTEXTURE;
        texture->setFilter(false, false, false);
        EXPECT_TRUE(texture->load(name));
        return texture;
    }
    static Bytes bitmapOf(const KTTEXTURE &texture) {
        const unsigned char *bitmap = texture.getBitmap();
        return {bitmap, bitmap + texture.getSizeX() * texture.getSizeY() * texture.getBpp()};
    }

    TempFolder folder;
};

}  // namespace keltra::test

#endif
