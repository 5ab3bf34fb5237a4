// SPDX-License-Identifier: Zlib
// Targa files: what loads is drawn with and without mipmaps, reloaded, changed and copied.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    KTTEXTURE *texture = new KTTEXTURE;
    texture->incReferences();  // what has no user is destroyed when memory is short
    Bytes bytes(data, size);
    texture->setFilter(bytes.flag(), bytes.flag(), bytes.flag());
    const bool loaded = texture->load(fileOf(data, size));
    compareVerdict("tga", data, size, loaded);
    if (loaded) {
        unsigned int channel = bytes.u8() % 20;
        texture->render(&channel);
        texture->setFilter(true, true, false);
        texture->render(nullptr);
        {
            KTTEXTURE copy(*texture);
            texture->unload(true);
            copy.render(nullptr);
        }
        texture->reload();
        const std::string pixels(texture->getSizeX() * texture->getSizeY() * texture->getBpp(), 'p');
        texture->modify(pixels.data(), bytes.flag());
        texture->create(bytes.u8(), bytes.u8(), 3 + bytes.u8() % 4);
        KTTEXTURE::garbageCollect(static_cast<unsigned long>(bytes.u8()));
    }
    finish(size);
    return 0;
}
