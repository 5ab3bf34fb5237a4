// SPDX-License-Identifier: Zlib
// Texts with escapes, in every place that formats or draws one.

#include <cstring>
#include <string>
#include <vector>

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    Bytes bytes(data, size);
    KTFONT *font = new KTFONT;
    font->setTexture(new KTTEXTURE);
    font->setCharSizeX(bytes.flag() ? 16 : bytes.u8());
    font->setCharSizeY(bytes.u8());
    for (int i = 0; i < 8; ++i)
        font->setKerning(static_cast<char>(bytes.u8()), static_cast<signed char>(bytes.u8()));
    KTNODE root;
    KTWINDOW window;
    KTLABEL label;
    KTTEXTFIELD field;
    window.setFont(font);
    label.setFont(font);
    field.setFont(font);
    window.setSizes(bytes.i32(), bytes.i32());
    const unsigned int width = bytes.flag() ? bytes.u8() : static_cast<unsigned int>(bytes.i32());
    const std::string text(reinterpret_cast<const char *>(bytes.rest()), bytes.left());
    font->stringLength(text.c_str());
    std::vector<char> broken(2 * std::strlen(text.c_str()) + 1);  // as the header says
    font->format(text.c_str(), broken.data(), width);
    window.write("%s", text.c_str());
    window.write("%s", text.c_str());
    window.format();
    window.setCaption(text.c_str());
    label.write("%s", text.c_str());
    for (char c : text.substr(0, 300)) field.manageKey(c);
    for (KTNODE *node :
         {static_cast<KTNODE *>(&window), static_cast<KTNODE *>(&label), static_cast<KTNODE *>(&field)})
        node->link(&root);
    draw(nullptr, &root);
    KELTRA::begin2D();
    font->putString(bytes.i32(), bytes.i32(), "%s", text.c_str());
    for (char c : text.substr(0, 50)) font->putChar(c, -c, c, c & 1);
    KELTRA::end2D();
    for (KTNODE *node :
         {static_cast<KTNODE *>(&window), static_cast<KTNODE *>(&label), static_cast<KTNODE *>(&field)})
        node->unlink();
    finish(size);
    return 0;
}
