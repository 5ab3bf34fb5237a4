// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_OBJECT_LIST_H
#define KELTRA_FOUNDATION_OBJECT_LIST_H

// The list of a class in the order of creation, with tables that find its objects by identifier and name.

#include <keltra/registered.h>

#include "foundation/identifier.h"
#include "foundation/object_pool.h"

#include <cstdint>

namespace keltra {

// Blocks from operator new whose constructor has not begun. There are several when the arguments of a
// constructor are themselves made on the heap; beyond `kMost` the oldest are dropped and do not count as
// objects on the heap.
class FreshBlocks {
   public:
    void add(void *block, std::size_t size);
    // True when `object` lies in one of the blocks, which is then removed.
    bool take(const void *object);

   private:
    static constexpr unsigned int kMost = 4;
    struct Block {
        char *begin;
        std::size_t size;
    };
    void drop(unsigned int index);
    Block blocks[kMost];
    unsigned int used;
};

// Names and identifiers are public fields that applications write to at any time: the tables only propose an
// object, and the caller compares. They are filled at the first search among at least `kFewest` objects; what
// was made since is added at the next search. They hold two pointers an entry, at most 24 bytes an object.
class ObjectList {
   public:
    using NameOf = const char *(*)(Registration &object);
    // Writes to public fields that two objects stand next to one another; null for the list's beginning or
    // end.
    using Show = void (*)(Registration *before, Registration *after);
    static constexpr unsigned int kFewest = 64;

    constexpr ObjectList(NameOf nameOf, Show show) : nameOf(nameOf), show(show) {}

    unsigned int append(Registration &object);
    void remove(Registration &object);
    void rename(Registration &object);
    void assign(Registration &object);
    bool isIndexed() const { return count >= kFewest && count <= kLargestId; }
    // The object that has drawn this identifier, and the first object of that name. Null when a search
    // through the list is needed.
    Registration *propose(unsigned int id);
    Registration *propose(const char *name);
    // What such a search found.
    void learn(Registration &object);

    Registration *first = nullptr, *last = nullptr;
    unsigned int count = 0;
    FreshBlocks fresh = {};
    ObjectPool pool = {};

   private:
    void leaveTables(Registration &object);
    // True when every object is in the tables.
    bool isComplete() { return (lastIndexed == last && skipped == 0) || catchUp(); }
    bool catchUp();
    void add(Registration &object);
    bool restart();
    void drop();
    void addName(Registration &object, std::uint32_t key, std::uint64_t more);
    void removeName(Registration &object);
    void removeId(Registration &object);
    Registration **idEntry(unsigned int id) const;
    std::uint64_t *nameEntry(std::uint32_t key, const char *name) const;
    std::uint64_t *farEntry(std::uint32_t key, const char *name) const;
    std::uint64_t *nearEntry(std::uint32_t key, const char *name, std::size_t length) const;
    unsigned int idHome(unsigned int id) const;
    unsigned int homeOf(std::uint32_t key) const;

    NameOf nameOf;
    Show show;
    Registration *lastIndexed = nullptr;  // those behind it are not in the tables yet
    Registration **ids = nullptr;         // open addressing by own identifier
    std::uint64_t *names = nullptr;       // by the name's key; 0 for none
    unsigned int capacity = 0;
    unsigned int usedIds = 0, usedNames = 0;  // with the entries of what was removed
    unsigned int skipped = 0;                 // without an identifier of their own
    unsigned int assigned = 0;
};

}  // namespace keltra

#endif
