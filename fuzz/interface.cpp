// SPDX-License-Identifier: Zlib
// Interface descriptions: what loads is drawn, pressed, changed and destroyed.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    KTNODE *root = KELTRA::loadXML(fileOf(data, size));
    compareVerdict("gui", data, size, root);
    Bytes bytes(data + size - (size < 64 ? size : 64), size < 64 ? size : 64);
    if (root) useTree(root, bytes, true);
    finish(size);
    return 0;
}
