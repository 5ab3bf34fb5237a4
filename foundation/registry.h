#ifndef KELTRA_FOUNDATION_REGISTRY_H
#define KELTRA_FOUNDATION_REGISTRY_H

// The bodies of KTREGISTERED. Each class instantiates them once, in its own source; it supplies
//   static void setLink(T &object, T *previous, T *next)   keeps its visible links in step with the list
//   static void setFirst(T *first)                         keeps its visible list head in step
//   static void letGo(T &object)                           releases what the object owns and takes it off the
//   list

#include <keltra/foundation.h>
#include <keltra/registered.h>

#include <cstdlib>

#include "foundation/quiet.h"
#include "foundation/text.h"

namespace keltra {

// Blocks from operator new whose constructor has not begun. There are several when the arguments of a
// constructor are themselves made on the heap; beyond `kMost` the oldest are dropped and do not count as
// objects on the heap.
class FreshBlocks {
   public:
    void add(void *block, std::size_t size) {
        if (!block) return;
        if (used == kMost) drop(0);
        blocks[used++] = {static_cast<char *>(block), size};
    }
    // True when `object` lies in one of the blocks, which is then removed.
    bool take(const void *object) {
        const char *address = static_cast<const char *>(object);
        for (unsigned int i = used; i-- > 0;) {
            if (address < blocks[i].begin || address >= blocks[i].begin + blocks[i].size) continue;
            drop(i);
            return true;
        }
        return false;
    }

   private:
    static const unsigned int kMost = 4;
    struct Block {
        char *begin;
        std::size_t size;
    };
    void drop(unsigned int index) {
        for (--used; index < used; ++index) blocks[index] = blocks[index + 1];
    }
    Block blocks[kMost];
    unsigned int used;
};

// A class whose objects are large can take their memory cleared by the system, which then costs nothing
// before it is used.
template <class T>
struct ObjectMemory {
    static const bool isCleared = false;
};

// One list a class.
template <class T>
struct Registry {
    static T *first;
    static T *last;
    static unsigned int count;
    static KTREGISTERED<T> *alive;
    static FreshBlocks fresh;
};
template <class T>
T *Registry<T>::first = nullptr;
template <class T>
T *Registry<T>::last = nullptr;
template <class T>
unsigned int Registry<T>::count = 0;
template <class T>
KTREGISTERED<T> *Registry<T>::alive = nullptr;
template <class T>
FreshBlocks Registry<T>::fresh = {};

}  // namespace keltra

template <class T>
void *KTREGISTERED<T>::operator new(std::size_t size, const std::nothrow_t &) noexcept {
    void *block = keltra::ObjectMemory<T>::isCleared ? std::calloc(1, size) : std::malloc(size);
    keltra::Registry<T>::fresh.add(block, size);
    return block;
}

template <class T>
void *KTREGISTERED<T>::operator new(std::size_t size) {
    void *block = operator new(size, std::nothrow);
    if (!block) throw std::bad_alloc();
    return block;
}

// Removes the block of a constructor that threw: a later object at its address must not be taken for it.
template <class T>
void KTREGISTERED<T>::operator delete(void *block) noexcept {
    keltra::Registry<T>::fresh.take(block);
    std::free(block);
}

template <class T>
void KTREGISTERED<T>::operator delete(void *block, const std::nothrow_t &) noexcept {
    operator delete(block);
}

template <class T>
void KTREGISTERED<T>::joinAlive() {
    using Registry = keltra::Registry<T>;
    alivePrevious = nullptr;
    aliveNext = Registry::alive;
    if (aliveNext) aliveNext->alivePrevious = this;
    Registry::alive = this;
}

template <class T>
KTREGISTERED<T>::~KTREGISTERED() {
    if (alivePrevious)
        alivePrevious->aliveNext = aliveNext;
    else
        keltra::Registry<T>::alive = aliveNext;
    if (aliveNext) aliveNext->alivePrevious = alivePrevious;
}

template <class T>
T *KTREGISTERED<T>::firstAlive() {
    return static_cast<T *>(keltra::Registry<T>::alive);
}

template <class T>
T *KTREGISTERED<T>::nextAlive() const {
    return static_cast<T *>(aliveNext);
}

template <class T>
KTREGISTERED<T>::KTREGISTERED(const KTREGISTERED &)
    : listPrevious(nullptr), listNext(nullptr), ownId(0), listed(false), heap(false) {
    joinAlive();
    keltra::Registry<T>::fresh.take(this);
}

template <class T>
KTREGISTERED<T>::KTREGISTERED()
    : listPrevious(nullptr), listNext(nullptr), ownId(0), listed(false), heap(false) {
    joinAlive();
    heap = keltra::Registry<T>::fresh.take(this);
}

template <class T>
unsigned int KTREGISTERED<T>::enlist() {
    using Registry = keltra::Registry<T>;
    T *self = static_cast<T *>(this);
    ownId = vnfNewId();
    listed = true;
    listPrevious = Registry::last;
    if (Registry::last) {
        KTREGISTERED *tail = Registry::last;
        tail->listNext = self;
        T::setLink(*Registry::last, tail->listPrevious, self);
    } else {
        Registry::first = self;
        T::setFirst(self);
    }
    Registry::last = self;
    T::setLink(*self, listPrevious, nullptr);
    ++Registry::count;
    return ownId;
}

template <class T>
void KTREGISTERED<T>::delist() {
    if (!listed) return;
    using Registry = keltra::Registry<T>;
    listed = false;
    --Registry::count;
    if (listPrevious) {
        KTREGISTERED *before = listPrevious;
        before->listNext = listNext;
        T::setLink(*listPrevious, before->listPrevious, listNext);
    } else {
        Registry::first = listNext;
        T::setFirst(listNext);
    }
    if (listNext) {
        KTREGISTERED *after = listNext;
        after->listPrevious = listPrevious;
        T::setLink(*listNext, listPrevious, after->listNext);
    } else {
        Registry::last = listPrevious;
    }
    listPrevious = listNext = nullptr;
    T::setLink(*static_cast<T *>(this), nullptr, nullptr);
    if (ownId) keltra::returnId(ownId);
    ownId = 0;
}

template <class T>
unsigned int KTREGISTERED<T>::count() {
    return keltra::Registry<T>::count;
}

template <class T>
T *KTREGISTERED<T>::firstRegistered() {
    return keltra::Registry<T>::first;
}

template <class T>
void KTREGISTERED<T>::destroy(T &object) {
    if (static_cast<KTREGISTERED &>(object).heap)
        delete &object;
    else
        T::letGo(object);
}

// A destructor may destroy further objects of the list, so the head is read again each time.
template <class T>
bool KTREGISTERED<T>::destroyAll() {
    using Registry = keltra::Registry<T>;
    if (!Registry::first) return false;
    while (T *object = Registry::first) destroy(*object);
    return true;
}

#endif
