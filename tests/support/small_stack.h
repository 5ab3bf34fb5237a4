// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SMALL_STACK_H
#define KELTRA_TESTS_SMALL_STACK_H

// Runs a callable in a thread whose stack is as small as the device's. A deeper one ends the test program.

#include <pthread.h>

#include <cstddef>
#include <functional>

namespace keltra::test {

#if defined(__SANITIZE_ADDRESS__)
// The address sanitizer puts red zones around every local, which makes frames about four times as large.
constexpr std::size_t kSmallStack = 256 * 1024;
#else
constexpr std::size_t kSmallStack = 64 * 1024;
#endif

/// True once `work` has run to its end; false when the thread could not be started. The thread has no GL
/// context.
inline bool runOnSmallStack(std::function<void()> work) {
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    pthread_t thread;
    const bool started = pthread_attr_setstacksize(&attributes, kSmallStack) == 0 &&
                         pthread_create(
                             &thread, &attributes,
                             [](void *call) -> void * {
                                 (*static_cast<std::function<void()> *>(call))();
                                 return nullptr;
                             },
                             &work) == 0;
    pthread_attr_destroy(&attributes);
    return started && pthread_join(thread, nullptr) == 0;
}

}  // namespace keltra::test

#endif
