// SPDX-License-Identifier: Zlib
// Kerning files, and text that is drawn with them.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    KTFONT *font = new KTFONT;
    const bool loaded = font->loadKerning(fileOf(data, size));
    compareVerdict("kerning", data, size, loaded);
    font->setTexture(new KTTEXTURE);
    std::string all;
    for (char c = 32; c < 127; ++c) all += c;
    font->stringLength(all.c_str());
    char broken[KTFONT::maxCharacters];
    font->format(all.c_str(), broken, 100);
    KELTRA::begin2D();
    font->putString(0, 0, "%s", broken);
    KELTRA::end2D();
    finish(size);
    return 0;
}
