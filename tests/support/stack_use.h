// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_STACK_USE_H
#define KELTRA_TESTS_STACK_USE_H

// Measures how much stack a callable takes.

#include <pthread.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

namespace keltra::test {

class StackUse {
   public:
    /// The bytes of stack that `work` takes at most, in a thread of its own, which has no GL context. It runs
    /// twice: at first the dynamic linker looks functions up. 0 when the thread could not be started.
    static std::size_t of(const std::function<void()> &work) {
        StackUse use(work);
        pthread_attr_t attributes;
        if (pthread_attr_init(&attributes) != 0) return 0;
        pthread_t thread;
        const bool started = pthread_attr_setstack(&attributes, use.memory.data(), use.memory.size()) == 0 &&
                             pthread_create(&thread, &attributes, run, &use) == 0;
        pthread_attr_destroy(&attributes);
        return started && pthread_join(thread, nullptr) == 0 ? use.used : 0;
    }

   private:
    struct alignas(64) Line {
        std::uint8_t bytes[64];
    };
    static constexpr std::size_t kSize = 256 * 1024;
    static constexpr std::size_t kOwnFrames = 512;  // of what paints
    static constexpr std::uint8_t kPaint = 0xa5;

    // As a vector of lines, aligned as a stack has to be.
    struct Memory {
        std::vector<Line> lines = std::vector<Line>(kSize / sizeof(Line));
        std::uint8_t *data() { return lines.data()->bytes; }
        static std::size_t size() { return kSize; }
    };

    explicit StackUse(const std::function<void()> &call) : work(call) {}

    static void *run(void *use) {
        static_cast<StackUse *>(use)->measure();
        return nullptr;
    }
    [[gnu::noinline]] void measure() {
        work();
        auto *top = static_cast<std::uint8_t *>(__builtin_frame_address(0));
        std::uint8_t *end = top - kOwnFrames;
        std::memset(memory.data(), kPaint, static_cast<std::size_t>(end - memory.data()));
        work();
        const std::uint8_t *lowest =
            std::find_if(memory.data(), end, [](std::uint8_t byte) { return byte != kPaint; });
        used = static_cast<std::size_t>(top - lowest);
    }

    const std::function<void()> &work;
    Memory memory;
    std::size_t used = 0;
};

}  // namespace keltra::test

#endif
