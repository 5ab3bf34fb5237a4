// SPDX-License-Identifier: Zlib
// Programs: each byte is a call of the public interface, the bytes behind it are the arguments. Objects are
// taken from the engine's own lists, so that none is used that the engine has destroyed.

#include "fuzz/calls.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr int kMostCalls = 400;
    begin();
    Bytes bytes(data, size);
    for (int i = 0; i < kMostCalls && !bytes.isAtEnd(); ++i) call(bytes);
    checkLists();
    if (isChosen(16, data, size)) restart();  // takes as long as some fifty calls
    finish(size);
    return 0;
}
