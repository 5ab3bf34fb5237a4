// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ENGINE_HEAP_H
#define KELTRA_TESTS_ENGINE_HEAP_H

#include <keltra/texture.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "tests/support/allocations.h"
#include "tests/support/code_file.h"

namespace keltra::test {

#ifdef _WIN32
inline std::size_t sizeOfBlock(void *block) { return _msize(block); }
#else
inline std::size_t sizeOfBlock(void *block) { return malloc_usable_size(block); }
#endif

// What the engine and the libraries inside it hold of the heap; blocks of the driver and of SDL are not
// counted.
class EngineHeap final : public AllocationWatch {
   public:
    EngineHeap() { install(this); }
    ~EngineHeap() { install(nullptr); }
    bool mustFail(const void *) override { return false; }
    void allocated(void *block, const void *caller) override {
        if (!isOurs(caller)) return;
        Entry &entry = entryOf(block, true);
        entry = {block, sizeOfBlock(block)};
        held += entry.size;
        peak = std::max(peak, held);
    }
    void released(void *block) override {
        Entry &entry = entryOf(block, false);
        if (entry.block != block) return;
        held -= entry.size;
        entry = {&freed, 0};
    }

    /// Those of textures, which are not counted among the memory beside them.
    static std::size_t bitmaps() {
        std::size_t bytes = 0;
        for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture; texture = texture->getNext())
            if (texture->getBitmap()) bytes += sizeOfBlock(texture->getBitmap());
        return bytes;
    }

    std::size_t held = 0, peak = 0;

   private:
    struct Entry {
        const void *block;
        std::size_t size;
    };
    static constexpr std::size_t kEntries = 1u << 16;

    static bool isOurs(const void *caller) {
        const char *file = fileOfCode(caller);
        if (!file) return false;
        for (const char *library : {"libkeltra.", "keltra.dll", "libtinyxml", "libmpeg2"})
            if (std::strstr(file, library)) return true;
        return false;
    }
    // The block's entry, or the one that it gets.
    Entry &entryOf(const void *block, bool isNew) {
        std::size_t i = reinterpret_cast<std::uintptr_t>(block) / 8 * 0x9E3779B1u % kEntries;
        while (entries[i].block && entries[i].block != block && !(isNew && entries[i].block == &freed))
            i = (i + 1) % kEntries;
        return entries[i];
    }

    char freed = 0;
    std::array<Entry, kEntries> entries = {};
};

}  // namespace keltra::test

#endif
