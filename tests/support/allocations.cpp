#include "tests/support/allocations.h"

#include <atomic>
#include <cerrno>

#if defined(__SANITIZE_ADDRESS__)
// The compiler does not install the header that declares it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*onAllocation)(const volatile void *,
                                                                              std::size_t),
                                                         void (*onRelease)(const volatile void *));
#endif

namespace {

thread_local bool counting = false;
thread_local long counted = 0;
[[maybe_unused]] std::atomic<std::size_t> failingSize{0};
[[maybe_unused]] std::atomic<std::size_t> failingFrom{0};
std::atomic<int> failingCountdown{0};

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

extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);

// They stay glibc's own allocator, so free and the rest of the family need no counterpart here.
void *malloc(std::size_t size) {
    if (counting) ++counted;
    const bool isLarge = failingFrom > 0 && size >= failingFrom;
    if (isLarge || (failingCountdown > 0 && size == failingSize && --failingCountdown == 0)) {
        if (isLarge) failingFrom = 0;
        errno = ENOMEM;
        return nullptr;
    }
    return __libc_malloc(size);
}
void *calloc(std::size_t count, std::size_t size) {
    if (counting) ++counted;
    return __libc_calloc(count, size);
}
void *realloc(void *block, std::size_t size) {
    if (counting) ++counted;
    return __libc_realloc(block, size);
}
}

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

void Allocations::clear() {
    failingCountdown = 0;
    failingFrom = 0;
}

}  // namespace keltra::test
