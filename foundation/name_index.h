// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_NAME_INDEX_H
#define KELTRA_FOUNDATION_NAME_INDEX_H

// Looks objects up by name during one load, in which nothing but the load itself makes or renames any. Names
// are public fields that applications write to at any time, so an index does not outlive the load.

#include <cstddef>
#include <cstdint>

namespace keltra {

std::uint32_t hashName(const char *name, std::uint32_t seed);
// Another one at each start, so that no file can be made whose names all collide.
std::uint32_t newNameSeed();

// The first object that was added under each name. Names stay where they are: the table only points to them.
class NameTable {
   public:
    NameTable();
    ~NameTable();
    NameTable(const NameTable &) = delete;
    NameTable &operator=(const NameTable &) = delete;

    void *find(const char *name) const;
    // Nothing changes when the name is known already. False when out of memory.
    bool add(const char *name, void *object);

   private:
    struct Entry {
        const char *name;  // null for a free entry
        void *object;
        std::uint32_t hash;
    };
    static constexpr std::size_t kFirstEntries = 32;

    Entry &entryOf(const char *name, std::uint32_t hash) const;
    bool grow();

    Entry firstEntries[kFirstEntries];  // a small load takes no memory
    Entry *entries;
    std::size_t capacity, count;
    std::uint32_t seed;
};

// What `search` finds, the first object of a class's list with a name, in constant time. The list is read at
// the first look-up; objects that are made or named afterwards are to be added in the order of their
// creation.
template <class T>
class NameIndex {
   public:
    using NameOf = const char *(*)(const T &);
    using Search = T *(*)(const char *);

    NameIndex(NameOf nameOf, Search search) : nameOf(nameOf), search(search), filled(false), whole(true) {}

    T *find(const char *name) {
        fill();
        return whole ? static_cast<T *>(table.find(name)) : search(name);
    }
    void add(T *object) {
        if (filled && whole) whole = table.add(nameOf(*object), object);
    }

    // Reads the list now, once.
    void fill() {
        if (filled) return;
        filled = true;
        for (T *object = T::getFirst(); object && whole; object = object->getNext())
            whole = table.add(nameOf(*object), object);
    }

   private:
    NameOf nameOf;
    Search search;  // when memory for the table runs out
    NameTable table;
    bool filled, whole;
};

}  // namespace keltra

#endif
