// SPDX-License-Identifier: Zlib
// Large blocks of memory. The address checker maps each and unmaps it again, and the system clears the pages,
// which takes longer than the rest of an execution. These are kept; between two uses, around them, and behind
// their end they are poisoned. KELTRA_FUZZ_PLAIN=1 leaves them to the checker, which knows who allocated
// them.

#include <sanitizer/asan_interface.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "fuzz/check.h"

extern "C" {
void *__interceptor_malloc(std::size_t size);
void *__interceptor_calloc(std::size_t count, std::size_t size);
void *__interceptor_realloc(void *block, std::size_t size);
void __interceptor_free(void *block);
}

namespace {

constexpr std::size_t kSmallest = 120 << 10, kLargest = 16 << 20, kAll = std::size_t{1} << 30;
constexpr std::size_t kAround = 64;
constexpr unsigned kMostPlaces = 512, kKept = 3;  // of a size, before the first is used again

struct Place {
    char *begin;
    std::size_t room, size;
    unsigned long freed;  // when; 0 while in use
};

Place places[kMostPlaces];
unsigned placeCount = 0;
unsigned long frees = 0;
char *all = nullptr;
std::size_t taken = 0;

Place *newPlace(std::size_t room) {
    if (!all)
        all = static_cast<char *>(
            mmap(nullptr, kAll, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
    if (all == MAP_FAILED || placeCount == kMostPlaces || kAll - taken < room) return nullptr;
    Place &place = places[placeCount++];
    place = {all + taken, room, 0, 0};
    taken += room;
    __asan_poison_memory_region(place.begin, room);
    return &place;
}

Place *placeFor(std::size_t size) {
    std::size_t room = kSmallest;
    while (room < size + 2 * kAround) room *= 2;
    Place *oldest = nullptr;
    unsigned unused = 0;
    for (unsigned i = 0; i < placeCount; ++i) {
        if (places[i].room != room || places[i].freed == 0) continue;
        ++unused;
        if (!oldest || places[i].freed < oldest->freed) oldest = &places[i];
    }
    return unused >= kKept ? oldest : newPlace(room);
}

void *take(std::size_t size) {
    Place *place = placeFor(size);
    if (!place) return nullptr;
    place->size = size;
    place->freed = 0;
    __asan_unpoison_memory_region(place->begin + kAround, size);
    return place->begin + kAround;
}

// Null for a block of the checker's.
Place *placeOf(void *block) {
    const char *const address = static_cast<const char *>(block);
    if (!all || address < all || address >= all + taken) return nullptr;
    for (unsigned i = 0; i < placeCount; ++i)
        if (address == places[i].begin + kAround && places[i].freed == 0) return &places[i];
    keltra::fuzz::require(false, "a large block is released twice, or not at its begin");
    return nullptr;
}

bool isLarge(std::size_t size) { return size >= kSmallest && size <= kLargest && !keltra::fuzz::isPlain(); }

}  // namespace

extern "C" {

void *malloc(std::size_t size) {
    void *block = isLarge(size) ? take(size) : nullptr;
    return block ? block : __interceptor_malloc(size);
}

void free(void *block) {
    Place *place = placeOf(block);
    if (!place) return __interceptor_free(block);
    __asan_poison_memory_region(place->begin + kAround, place->size);
    place->freed = ++frees;
}

void *calloc(std::size_t count, std::size_t size) {
    std::size_t bytes = 0;
    const bool isTooMuch = __builtin_mul_overflow(count, size, &bytes);
    void *block = !isTooMuch && isLarge(bytes) ? take(bytes) : nullptr;
    return block ? std::memset(block, 0, bytes) : __interceptor_calloc(count, size);
}

// Pages of these blocks are not given back after `calloc` has cleared them: the system would clear them
// again.
int madvise(void *address, std::size_t size, int advice) noexcept {
    const char *const begin = static_cast<const char *>(address);
    if (all && begin >= all && begin < all + taken) return 0;
    return static_cast<int>(syscall(SYS_madvise, address, size, advice));
}

void *realloc(void *block, std::size_t size) {
    Place *place = placeOf(block);
    if (!place) return __interceptor_realloc(block, size);
    void *moved = malloc(size);
    if (!moved) return nullptr;
    std::memcpy(moved, block, size < place->size ? size : place->size);
    free(block);
    return moved;
}
}
