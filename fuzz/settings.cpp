// SPDX-License-Identifier: Zlib
// Settings files, and an engine that is started with what they say.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    KTSETTINGS settings;
    const bool loaded = settings.load(fileOf(data, size));
    compareVerdict("settings", data, size, loaded);
    if (size % 4) return 0;  // a start takes twenty times as long as reading
    begin();
    KELTRA::free();
    if (KELTRA::init(&settings)) {
        draw(nullptr, nullptr);
        KELTRA::free();
    }
    finish(size);
    return 0;
}
