// SPDX-License-Identifier: Zlib
#include "tests/support/allocations.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <new>

#include "tests/support/code_file.h"
#include "tools/support/interpose.h"

#if defined(__SANITIZE_ADDRESS__)
// The compiler does not install the header that declares it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onAllocation)(const volatile void *,
                                                                              std::size_t),
                                                         void (*onRelease)(const volatile void *));
#endif

namespace {

#ifdef _WIN32
#define KELTRA_PER_THREAD  // MinGW's variables of threads are blocks of malloc
#else
#define KELTRA_PER_THREAD thread_local
#endif

KELTRA_PER_THREAD bool counting = false;
KELTRA_PER_THREAD long counted = 0;
[[maybe_unused]] std::atomic<std::size_t> failingSize{0};
[[maybe_unused]] std::atomic<std::size_t> failingFrom{0};
std::atomic<int> failingCountdown{0};
[[maybe_unused]] KELTRA_PER_THREAD keltra::test::AllocationWatch *watch = nullptr;

// For failNth.
class NthFailure final : public keltra::test::AllocationWatch {
   public:
    bool mustFail(const void *) override { return countdown > 0 && --countdown == 0 && (failed = true); }
    void allocated(void *, const void *) override { ++live; }
    void released(void *) override { --live; }

    long countdown = 0, live = 0;
    bool failed = false;
};
KELTRA_PER_THREAD NthFailure nthFailure;

}  // namespace

#if defined(__SANITIZE_ADDRESS__)

namespace {
void onAllocation(const volatile void *, std::size_t) {
    if (counting) ++counted;
}
void onRelease(const volatile void *) {}
[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(onAllocation, onRelease);
}  // namespace

#else

#ifndef _WIN32
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void __libc_free(void *block);
}
#endif

namespace {

#ifdef _WIN32
template <class F>
F *ofLibrary(F *&known, const char *name) {
    if (!known) known = keltra::nextFunction<F>(name);
    return known;
}
// Constants at the start: functions of this file are called before its statics are constructed.
void *(*libraryMalloc)(std::size_t) = nullptr;
void *(*libraryCalloc)(std::size_t, std::size_t) = nullptr;
void *(*libraryRealloc)(void *, std::size_t) = nullptr;
void (*libraryFree)(void *) = nullptr;
void *__libc_malloc(std::size_t size) { return ofLibrary(libraryMalloc, "malloc")(size); }
void *__libc_calloc(std::size_t count, std::size_t size) {
    return ofLibrary(libraryCalloc, "calloc")(count, size);
}
void *__libc_realloc(void *block, std::size_t size) {
    return ofLibrary(libraryRealloc, "realloc")(block, size);
}
void __libc_free(void *block) { ofLibrary(libraryFree, "free")(block); }
#endif

template <class Get>
void *allocate(const void *caller, Get get) {
    if (counting) ++counted;
    if (watch && watch->mustFail(caller)) {
        errno = ENOMEM;
        return nullptr;
    }
    void *block = get();
    if (watch && block) watch->allocated(block, caller);
    return block;
}

// Whether the code at the address is the engine's, in its library or in this program, or the test's own.
bool isOurs(const void *caller) {
    const char *file = keltra::test::fileOfCode(caller);
    return !file || std::strstr(file, "keltra") || keltra::test::isOfProgram(caller);
}

// As the standard has it: the handler of new makes room or throws.
void *allocateOrThrow(std::size_t size, const void *caller) {
    for (;;) {
        if (void *block = allocate(caller, [size] { return __libc_malloc(size ? size : 1); })) return block;
        const std::new_handler handler = std::get_new_handler();
        if (!handler) throw std::bad_alloc();
        handler();
    }
}

}  // namespace

// They stay the C library's own allocator, so the rest of the family need no counterpart here.
KELTRA_INTERPOSE(void *, , malloc, (std::size_t size)) {
    const bool isLarge = failingFrom > 0 && size >= failingFrom;
    if (isLarge || (failingCountdown > 0 && size == failingSize && isOurs(__builtin_return_address(0)) &&
                    --failingCountdown == 0)) {
        if (counting) ++counted;
        if (isLarge) failingFrom = 0;
        errno = ENOMEM;
        return nullptr;
    }
    return allocate(__builtin_return_address(0), [size] { return __libc_malloc(size); });
}
KELTRA_INTERPOSE(void *, , calloc, (std::size_t count, std::size_t size)) {
    return allocate(__builtin_return_address(0), [count, size] { return __libc_calloc(count, size); });
}
KELTRA_INTERPOSE(void *, , realloc, (void *block, std::size_t size)) {
    void *moved =
        allocate(__builtin_return_address(0), [block, size] { return __libc_realloc(block, size); });
    if (watch && moved && block) watch->released(block);
    return moved;
}
KELTRA_INTERPOSE(void, , free, (void *block)) {
    if (watch && block) watch->released(block);
    __libc_free(block);
}

// The C++ library's own are malloc's callers: these tell who asks.
void *operator new(std::size_t size) { return allocateOrThrow(size, __builtin_return_address(0)); }
void *operator new[](std::size_t size) { return allocateOrThrow(size, __builtin_return_address(0)); }
void operator delete(void *block) noexcept { free(block); }
void operator delete[](void *block) noexcept { free(block); }
void operator delete(void *block, std::size_t) noexcept { free(block); }
void operator delete[](void *block, std::size_t) noexcept { free(block); }

#endif

namespace keltra::test {

void Allocations::startCounting() {
    counted = 0;
    counting = true;
}

long Allocations::stopCounting() {
    counting = false;
    return counted;
}

bool Allocations::canFail() {
#if defined(__SANITIZE_ADDRESS__)
    return false;
#else
    return true;
#endif
}

void Allocations::failNext(std::size_t size, int nth) {
    failingSize = size;
    failingCountdown = nth;
}

void Allocations::failNextFrom(std::size_t size) { failingFrom = size; }

void Allocations::failNth(long nth) {
    nthFailure.countdown = nth;
    nthFailure.live = 0;
    nthFailure.failed = false;
    watch = &nthFailure;
}

long Allocations::live() { return nthFailure.live; }

bool Allocations::hasFailed() { return nthFailure.failed; }

void Allocations::clear() {
    failingCountdown = 0;
    failingFrom = 0;
    watch = nullptr;
}

void AllocationWatch::install(AllocationWatch *installed) { watch = installed; }

}  // namespace keltra::test
