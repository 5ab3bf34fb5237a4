// SPDX-License-Identifier: Zlib
// Films: each is played twice, to a texture that fits or is too small.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    KTTEXTURE *screen = new KTTEXTURE;
    const unsigned int side = isChosen(16, data, size) ? 512 : 32;  // all of its mipmaps are made
    screen->create(side, side, 3);
    KTVIDEO *film = new KTVIDEO;
    film->setTexture(screen);
    require(film->load(fileOf(data, size)), "KTVIDEO::load");
    film->play();
    for (int steps = 0; film->getStatus() == KT_VIDEO_PLAYING && steps < 20000; ++steps) film->update(1);
    film->playLoop();
    film->update(10);  // one that fails starts again at each
    {
        KTVIDEO copy(*film);
        copy.update(10);
    }
    finish(size);
    return 0;
}
