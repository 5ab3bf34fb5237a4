// SPDX-License-Identifier: Zlib
// Settings files, and an engine that is started with what they say.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    KTSETTINGS settings;
    beginTime();
    const bool loaded = settings.load(fileOf(data, size));
    compareVerdict("settings", data, size, loaded);
    // A start takes twenty times as long as reading.
    if (isChosen(16, data, size) && KELTRA::init(&settings)) {
        draw(nullptr, nullptr);
        KELTRA::free();
    }
    finishTime(size);
    return 0;
}
