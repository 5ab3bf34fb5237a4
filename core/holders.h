// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_HOLDERS_H
#define KELTRA_CORE_HOLDERS_H

#include "foundation/cold.h"

#include <cstddef>
#include <cstdint>

namespace keltra {

// A set of addresses: filled, then sorted, then searched.
class AddressTable {
   public:
    // Without memory it takes none.
    explicit AddressTable(unsigned int most);
    ~AddressTable();
    AddressTable(const AddressTable &) = delete;
    AddressTable &operator=(const AddressTable &) = delete;

    bool hasRoom() const { return addresses != nullptr; }
    void add(const void *address) { addresses[count++] = address; }
    void sort();
    bool has(const void *address) const;
    bool isEmpty() const { return count == 0; }
    // Once sorted and not empty.
    const void *lowest() const { return addresses[0]; }
    const void *highest() const { return addresses[count - 1]; }

   private:
    const void **const addresses;
    unsigned int count = 0;
};

// Objects of one class that are being destroyed: one, or many at once, for which each holder is visited only
// once.
template <class T>
class Gone {
   public:
    // No setter has stored a pointer to an object that is not held; the application may have, but then not
    // many holders are visited: this cost must not grow.
    Gone(const T &one, bool isHeld) : lowest(addressOf(&one)), held(isHeld) {}
    // Sorted and not empty.
    explicit Gone(const AddressTable &many)
        : many(&many),
          lowest(addressOf(many.lowest())),
          span(addressOf(many.highest()) - lowest),
          held(true) {}

    bool has(const T *object) const {
        return addressOf(object) - lowest <= span && (!many || many->has(object));
    }
    void clear(T *&pointer) const {
        if (has(pointer)) pointer = nullptr;
    }
    // How many holders are to be visited.
    unsigned int mostVisited() const { return held ? ~0u : 64; }

   private:
    static std::uintptr_t addressOf(const void *object) { return reinterpret_cast<std::uintptr_t>(object); }

    const AddressTable *many = nullptr;
    std::uintptr_t lowest, span = 0;  // all lie within
    bool held;
};

// Objects that were made one after the other mostly lie at equal distances: while all of a list are visited,
// the memory of those to come is asked for before their predecessors say where they are.
class Ahead {
   public:
#if __SIZEOF_POINTER__ == 8
    explicit Ahead(unsigned int objects) : areMany(objects > kCached) {}
    // The visited object, and what of it is needed.
    template <class... Parts>
    void passes(const void *object, const Parts &...parts) {
        if (!areMany) return;
        const auto address = reinterpret_cast<std::uintptr_t>(object);
        const std::uintptr_t further = (address - former) * kObjects;
        former = address;
        (ask(reinterpret_cast<std::uintptr_t>(&parts) + further, sizeof parts), ...);
    }

   private:
    static constexpr std::uintptr_t kObjects = 12, kLine = 64;
    static constexpr unsigned int kCached = 2000;  // what a cache holds comes fast enough
    // Of no consequence where there is no memory. In line: GCC 12 takes a call of it for one without effect.
    [[gnu::always_inline]] static void ask(std::uintptr_t begin, std::size_t size) {
        for (std::uintptr_t at = begin; at < begin + size; at += kLine)
            __builtin_prefetch(reinterpret_cast<const void *>(at), 1);
        __builtin_prefetch(reinterpret_cast<const void *>(begin + size - 1), 1);
    }
    const bool areMany;
    std::uintptr_t former = 0;
#else
    // A small machine has few of them.
    explicit Ahead(unsigned int) {}
    template <class... Parts>
    void passes(const void *, const Parts &...) {}
#endif
};

// A function that clears the pointers of one class to what is being destroyed. To be made at load time, as a
// static member of the class that has the pointers; the destroyed object's class knows none of them.
template <class T>
class OnGone {
   public:
    using Forget = void (*)(const Gone<T> &gone);
    explicit OnGone(Forget forget) : forget(forget), next(first) { first = this; }
    static void notify(const Gone<T> &gone) {
        for (const OnGone *each = first; each; each = each->next) each->forget(gone);
    }

   private:
    const Forget forget;
    const OnGone *const next;
    static const OnGone *first;
};
template <class T>
const OnGone<T> *OnGone<T>::first = nullptr;

// Collects objects that will be destroyed one by one, to clear the pointers to all of them first. What there
// is no memory for is searched for on its own when it is destroyed.
template <class T>
class GoneMany {
   public:
    explicit GoneMany(unsigned int most) : table(most) {}

    void add(T &object) {
        if (!table.hasRoom()) return;
        table.add(&object);
        object.setHeld(false);
    }
    void notify() {
        if (table.isEmpty()) return;
        table.sort();
        OnGone<T>::notify(Gone<T>(table));
    }

   private:
    AddressTable table;
};

// All objects from `begin` on, in the order of their class's list.
template <class T>
KELTRA_COLD void notifyGoneFrom(T *begin) {
    unsigned int count = 0;
    for (T *object = begin; object; object = object->getNext()) ++count;
    GoneMany<T> gone(count);
    for (T *object = begin; object; object = object->getNext()) gone.add(*object);
    gone.notify();
}

}  // namespace keltra

#endif
