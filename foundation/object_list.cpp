// SPDX-License-Identifier: Zlib
#include "foundation/object_list.h"

#include <keltra/foundation.h>

#include "foundation/name_hash.h"
#include "foundation/name_index.h"
#include "foundation/quiet.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#if defined(__SSE2__) && defined(__x86_64__)
#define KELTRA_NAME_WINDOW 8
#include <emmintrin.h>
#endif

namespace keltra {
namespace {

// Entries whose object has gone: a search goes on behind them.
Registration *const kGoneObject = reinterpret_cast<Registration *>(1);
constexpr std::uint64_t kGoneName = ~std::uint64_t{0};

// An entry of the table of names: the lower bits of the key, whose upper bits say where it stands; whether
// more objects may have the name; and the oldest of them. A null pointer stands for one that is not known: a
// search through the list finds it. The object's address is in the entry itself, since each further table on
// the way to it would be another miss of the processor's cache.
constexpr unsigned int kAddressBits = 48;
constexpr std::uint64_t kAddressMask = (std::uint64_t{1} << kAddressBits) - 1;
constexpr std::uint64_t kMoreObjects = std::uint64_t{1} << kAddressBits;
constexpr std::uint64_t kNameMask = ~(kAddressMask | kMoreObjects);

std::uint32_t nameSeed() {
    static const std::uint32_t seed = newNameSeed();
    return seed;
}

// Names that differ in their last characters only lie apart.
std::uint32_t spread(std::uint32_t hash) { return hash * 0x9E3779B1u; }

std::uint32_t keyOf(const char *name) { return spread(hashName(name, nameSeed())); }

#if defined(KELTRA_NAME_WINDOW)
// Never 0: these bits tell an entry from a free one.
std::uint64_t nameBits(std::uint32_t key) {
    const std::uint64_t bits = std::uint64_t{key} << (kAddressBits + 1);
    return bits ? bits : std::uint64_t{1} << (kAddressBits + 1);
}
#else
std::uint64_t nameBits(std::uint32_t key) { return std::uint64_t{key} << (kAddressBits + 1); }
#endif

std::uint64_t addressOf(const Registration &object) { return reinterpret_cast<std::uintptr_t>(&object); }

Registration *objectOf(std::uint64_t entry) {
    return reinterpret_cast<Registration *>(static_cast<std::uintptr_t>(entry & kAddressMask));
}

#if defined(KELTRA_NAME_WINDOW)
// Which of four entries have these bits of the key, and which are free.
unsigned int compareFour(const std::uint64_t *entries, __m128i wanted, unsigned int &free) {
    const auto keysOfTwo = [](const std::uint64_t *two) {
        return _mm_srli_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i *>(two)), kAddressBits + 1);
    };
    const __m128i keys =
        _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(keysOfTwo(entries)),
                                        _mm_castsi128_ps(keysOfTwo(entries + 2)), _MM_SHUFFLE(2, 0, 2, 0)));
    const auto bits = [](__m128i equal) { return unsigned(_mm_movemask_ps(_mm_castsi128_ps(equal))); };
    free = bits(_mm_cmpeq_epi32(keys, _mm_setzero_si128()));
    return bits(_mm_cmpeq_epi32(keys, wanted));
}

// Whether an object has the name of that length, without a branch for most of them.
bool isNamed(const char *own, const char *name, std::size_t length) {
    if (length < 8 || length > 16) return std::strcmp(own, name) == 0;
    const auto eight = [](const char *from) {
        std::uint64_t characters;
        std::memcpy(&characters, from, sizeof characters);
        return characters;
    };
    const char *const end = name + length - 8, *const ownEnd = own + length - 8;
    return ((eight(own) ^ eight(name)) | (eight(ownEnd) ^ eight(end)) |
            static_cast<unsigned char>(own[length])) == 0;
}
#endif

}  // namespace

void FreshBlocks::add(void *block, std::size_t size) {
    if (!block) return;
    if (used == kMost) drop(0);
    blocks[used++] = {static_cast<char *>(block), size};
}

bool FreshBlocks::take(const void *object) {
    const char *address = static_cast<const char *>(object);
    for (unsigned int i = used; i-- > 0;) {
        if (address < blocks[i].begin || address >= blocks[i].begin + blocks[i].size) continue;
        drop(i);
        return true;
    }
    return false;
}

void FreshBlocks::drop(unsigned int index) {
    for (--used; index < used; ++index) blocks[index] = blocks[index + 1];
}

unsigned int ObjectList::append(Registration &object) {
    const unsigned int id = vnfNewId();
    object.ownId = static_cast<unsigned short>(id);
    object.listed = true;
    object.listPrevious = last;
    object.listNext = nullptr;
    (last ? last->listNext : first) = &object;
    show(last, &object);
    last = &object;
    ++count;
    return id;
}

void ObjectList::remove(Registration &object) {
    object.listed = false;
    --count;
    if (object.indexed || object.skipped || object.assigned) leaveTables(object);
    Registration *const before = object.listPrevious, *const after = object.listNext;
    (before ? before->listNext : first) = after;
    (after ? after->listPrevious : last) = before;
    show(before, after);
    object.listPrevious = object.listNext = nullptr;
    if (object.ownId) returnId(object.ownId);
    object.ownId = 0;
}

void ObjectList::leaveTables(Registration &object) {
    assigned -= object.assigned;
    skipped -= object.skipped;
    if (object.named) removeName(object);
    if (object.indexed) removeId(object);
    object.assigned = object.skipped = object.indexed = false;
    if (lastIndexed == &object) lastIndexed = object.listPrevious;
    if (capacity > 0 && (count < kFewest / 2 || count < capacity / 8)) drop();
}

void ObjectList::assign(Registration &object) {
    if (!object.assigned) ++assigned;
    object.assigned = true;
    rename(object);
}

void ObjectList::rename(Registration &object) {
    if (!object.indexed) return;
    if (object.named) removeName(object);
    const std::uint32_t key = keyOf(nameOf(object));
    std::uint64_t *entry = nameEntry(key, nameOf(object));
    if (!*entry) return addName(object, key, 0);
    Registration *const other = objectOf(*entry);
    if (!other) return;
    // Either may be the older one.
    other->named = false;
    *entry = nameBits(key) | kMoreObjects;
}

void ObjectList::learn(Registration &object) {
    if (!object.indexed || skipped > 0) return;
    if (object.named) removeName(object);
    addName(object, keyOf(nameOf(object)), kMoreObjects);
}

Registration *ObjectList::propose(unsigned int id) {
    if (assigned > 0 || id == 0 || id > kLargestId || !isComplete()) return nullptr;
    return *idEntry(id);
}

// What nameEntry finds, for most objects that are found: without a branch that depends on where the object
// stands, a processor begins the next search while it waits for the memory of this one. Null for all that is
// not so.
#if defined(KELTRA_NAME_WINDOW)
[[gnu::always_inline]] inline std::uint64_t *ObjectList::nearEntry(std::uint32_t key, const char *name,
                                                                   std::size_t length) const {
    const unsigned int home = homeOf(key);
    if (capacity - home < KELTRA_NAME_WINDOW) return nullptr;
    const __m128i wanted = _mm_set1_epi32(std::int32_t(nameBits(key) >> (kAddressBits + 1)));
    unsigned int free, laterFree;
    unsigned int matches = compareFour(names + home, wanted, free);
    matches |= compareFour(names + home + 4, wanted, laterFree) << 4;
    free |= laterFree << 4;
    // Nothing behind a free entry counts.
    matches &= free ^ (free - 1);
    if (!matches) return nullptr;
    std::uint64_t *const entry = names + home + __builtin_ctz(matches);
    Registration *const object = objectOf(*entry);
    return object && *entry != kGoneName && isNamed(nameOf(*object), name, length) ? entry : nullptr;
}
#endif

Registration *ObjectList::propose(const char *name) {
    if (!isComplete()) return nullptr;
#if defined(KELTRA_NAME_WINDOW)
    const std::size_t length = std::strlen(name);
    const std::uint32_t key = spread(hashName(name, length, nameSeed()));
    if (const std::uint64_t *const entry = nearEntry(key, name, length)) return objectOf(*entry);
    return objectOf(*farEntry(key, name));
#else
    return objectOf(*farEntry(keyOf(name), name));
#endif
}

// The entry of the object with that identifier of its own, or the free one behind the search.
Registration **ObjectList::idEntry(unsigned int id) const {
    for (unsigned int i = idHome(id);; i = i + 1 == capacity ? 0 : i + 1)
        if (!ids[i] || (ids[i] != kGoneObject && ids[i]->ownId == id)) return ids + i;
}

// The entry of an object that still has this name; else one that stands for an unknown object, which may have
// it; else the free one behind the search.
std::uint64_t *ObjectList::nameEntry(std::uint32_t key, const char *name) const {
#if defined(KELTRA_NAME_WINDOW)
    if (std::uint64_t *const entry = nearEntry(key, name, std::strlen(name))) return entry;
#endif
    return farEntry(key, name);
}

std::uint64_t *ObjectList::farEntry(std::uint32_t key, const char *name) const {
    std::uint64_t *unknown = nullptr;
    for (unsigned int i = homeOf(key);; i = i + 1 == capacity ? 0 : i + 1) {
        const std::uint64_t entry = names[i];
        if (!entry) return unknown ? unknown : names + i;
        if ((entry & kNameMask) != nameBits(key) || entry == kGoneName) continue;
        Registration *const object = objectOf(entry);
        if (!object)
            unknown = names + i;
        else if (std::strcmp(nameOf(*object), name) == 0)
            return names + i;
    }
}

bool ObjectList::catchUp() {
    // One entry in five stays free, so that searches are short and end.
    for (Registration *next; (next = lastIndexed ? lastIndexed->listNext : first);) {
        if ((std::max(usedIds, usedNames) + 1) * 5 <= capacity * 4)
            add(*next);
        else if (!restart())
            return false;
    }
    return skipped == 0;
}

void ObjectList::add(Registration &object) {
    lastIndexed = &object;
    // Identifiers that are drawn anew after vnfOpenLog may be in use already.
    if (!object.ownId || *idEntry(object.ownId) || (addressOf(object) & ~kAddressMask)) {
        object.skipped = true;
        ++skipped;
        return;
    }
    unsigned int i = idHome(object.ownId);
    while (ids[i] && ids[i] != kGoneObject) i = i + 1 == capacity ? 0 : i + 1;
    usedIds += !ids[i];
    ids[i] = &object;
    object.indexed = true;
    const std::uint32_t key = keyOf(nameOf(object));
    std::uint64_t *entry = nameEntry(key, nameOf(object));
    if (*entry)
        *entry |= kMoreObjects;
    else
        addName(object, key, 0);
}

// Begins with empty tables, of three entries for two objects.
bool ObjectList::restart() {
    drop();
    const unsigned int wider = count + count / 2;
    ids = static_cast<Registration **>(std::calloc(wider, sizeof(Registration *)));
    names = static_cast<std::uint64_t *>(std::calloc(wider, sizeof(std::uint64_t)));
    if (!ids || !names) {
        drop();
        return false;
    }
    capacity = wider;
    return true;
}

void ObjectList::drop() {
    for (Registration *object = lastIndexed; object; object = object->listPrevious)
        object->indexed = object->named = object->skipped = false;
    std::free(ids);
    std::free(names);
    ids = nullptr;
    names = nullptr;
    lastIndexed = nullptr;
    capacity = usedIds = usedNames = skipped = 0;
}

void ObjectList::addName(Registration &object, std::uint32_t key, std::uint64_t more) {
    // Renamed again and again without a new object: no search would end in a full table.
    if ((usedNames + 1) * 10 > capacity * 9) return drop();
    object.nameKey = key;
    object.named = true;
    unsigned int i = homeOf(key);
    while (names[i] && names[i] != kGoneName) i = i + 1 == capacity ? 0 : i + 1;
    usedNames += !names[i];
    names[i] = nameBits(key) | more | addressOf(object);
}

void ObjectList::removeName(Registration &object) {
    unsigned int i = homeOf(object.nameKey);
    while (objectOf(names[i]) != &object) i = i + 1 == capacity ? 0 : i + 1;
    names[i] = names[i] & kMoreObjects ? names[i] & ~kAddressMask : kGoneName;
    object.named = false;
}

void ObjectList::removeId(Registration &object) { *idEntry(object.ownId) = kGoneObject; }

unsigned int ObjectList::idHome(unsigned int id) const { return homeOf(id * 0x9E3779B1u); }

unsigned int ObjectList::homeOf(std::uint32_t key) const {
    return static_cast<unsigned int>(std::uint64_t{key} * capacity >> 32);
}

}  // namespace keltra
