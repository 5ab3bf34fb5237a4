// SPDX-License-Identifier: Zlib
// Emitter descriptions: what loads emits for some frames.

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    KTEMITTER *emitter = new KTEMITTER;
    const bool loaded = emitter->load(fileOf(data, size));
    compareVerdict("emitter", data, size, loaded);
    for (int frame = 0; frame < 3; ++frame) draw(emitter, nullptr);
    if (isChosen(16, data, size)) {  // takes longer than all the rest
        KTEMITTER other;
        other.setNumberOfParticles(600);
        other.initialize();
        draw(&other, nullptr);
    }
    emitter->setNumberOfParticles(3);
    draw(emitter, nullptr);
    finish(size);
    return 0;
}
