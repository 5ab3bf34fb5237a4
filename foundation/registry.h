// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_REGISTRY_H
#define KELTRA_FOUNDATION_REGISTRY_H

// The bodies of KTREGISTERED. Each class specialises `PublicFields` and then instantiates them once, in its
// own source.

#include <keltra/registered.h>

#include "foundation/cold.h"
#include "foundation/memory.h"
#include "foundation/object_list.h"
#include "platform/platform.h"

#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

namespace keltra {

// A class whose objects are large can take their memory cleared by the system, which then costs nothing
// before it is used.
template <class T>
struct ObjectMemory {
    static const bool isCleared = false;
};

// For large blocks C libraries ask the system, which gives cleared pages; but on Linux of 64 bits they give
// what was released before, and clear it.
inline void *clearedBlock(std::size_t size) {
    void *const block = std::calloc(1, size);
#if defined(__linux__) && __SIZEOF_POINTER__ == 8
    if (block) platformDropZeros(block, size);
#endif
    return block;
}

// Pointers to what a class shows of its list: the members `name`, `previous` and `next`, and the static
// `first`, which may be nullptr.
template <class T>
struct PublicFields;

// Of a class whose members are called `previous` and `next`.
template <class T, auto Name, T **First>
struct UsualFields {
    static constexpr auto name = Name;
    static constexpr auto previous = &T::previous, next = &T::next;
    static constexpr T **first = First;
};

}  // namespace keltra

template <class T>
keltra::ObjectList &KTREGISTERED<T>::list() {
    static keltra::ObjectList instance(&nameOf, &show);
    return instance;
}

template <class T>
const char *KTREGISTERED<T>::nameOf(keltra::Registration &place) {
    static_assert(sizeof(std::declval<T &>().*keltra::PublicFields<T>::name) > 16,
                  "a search compares 16 at once");
    return objectOf(&place)->*keltra::PublicFields<T>::name;
}

template <class T>
void KTREGISTERED<T>::show(keltra::Registration *before, keltra::Registration *after) {
    using Fields = keltra::PublicFields<T>;
    if (before)
        objectOf(before)->*Fields::next = objectOf(after);
    else if constexpr (!std::is_null_pointer_v<decltype(Fields::first)>)
        *Fields::first = objectOf(after);
    if (after) objectOf(after)->*Fields::previous = objectOf(before);
}

template <class T>
void *KTREGISTERED<T>::operator new(std::size_t size, const std::nothrow_t &) noexcept {
    keltra::ObjectList &objects = list();
    void *block = nullptr;
    if constexpr (keltra::ObjectMemory<T>::isCleared)
        block = keltra::clearedBlock(size);
    else if (!(block = objects.pool.take(size, objects.count)))
        block = std::malloc(size);
    objects.fresh.add(block, size);
    return block;
}

template <class T>
void *KTREGISTERED<T>::operator new(std::size_t size) {
    void *block = operator new(size, std::nothrow);
    if (!block) keltra::throwNoMemory();
    return block;
}

// Removes the block of a constructor that threw: a later object at its address must not be taken for it.
template <class T>
void KTREGISTERED<T>::operator delete(void *block) noexcept {
    keltra::ObjectList &objects = list();
    objects.fresh.take(block);
    if (!objects.pool.giveBack(block, objects.count)) std::free(block);
}

template <class T>
void KTREGISTERED<T>::operator delete(void *block, const std::nothrow_t &) noexcept {
    operator delete(block);
}

template <class T>
KTREGISTERED<T>::KTREGISTERED() : registration() {
    registration.owned = list().fresh.take(this);
}

template <class T>
KELTRA_COLD KTREGISTERED<T>::KTREGISTERED(const KTREGISTERED &) : registration() {
    list().fresh.take(this);
}

template <class T>
unsigned int KTREGISTERED<T>::enlist() {
    static_cast<T *>(this)->*keltra::PublicFields<T>::next = nullptr;
    return list().append(registration);
}

template <class T>
void KTREGISTERED<T>::delist() {
    if (!registration.listed) return;
    list().remove(registration);
    T *const object = static_cast<T *>(this);
    object->*keltra::PublicFields<T>::previous = object->*keltra::PublicFields<T>::next = nullptr;
}

template <class T>
void KTREGISTERED<T>::nameChanged() {
    if (registration.indexed) list().rename(registration);
}

template <class T>
void KTREGISTERED<T>::fieldsAssigned() {
    if (registration.listed) list().assign(registration);
}

template <class T>
unsigned int KTREGISTERED<T>::count() {
    return list().count;
}

template <class T>
T *KTREGISTERED<T>::firstRegistered() {
    return objectOf(list().first);
}

template <class T>
T *KTREGISTERED<T>::findRegistered(unsigned int id) {
    if (list().isIndexed()) {
        T *proposed = objectOf(list().propose(id));
        if (proposed && proposed->id == id) return proposed;
    }
    for (keltra::Registration *place = list().first; place; place = place->listNext)
        if (objectOf(place)->id == id) return objectOf(place);
    return nullptr;
}

// The first character rejects most names without a call.
template <class T>
T *KTREGISTERED<T>::findRegistered(const char *name) {
    if (!name) return nullptr;
    if (list().isIndexed())
        if (keltra::Registration *proposed = list().propose(name)) return objectOf(proposed);
    for (keltra::Registration *place = list().first; place; place = place->listNext) {
        const char *own = nameOf(*place);
        if (*own != *name || std::strcmp(own, name) != 0) continue;
        list().learn(*place);
        return objectOf(place);
    }
    return nullptr;
}

template <class T>
KELTRA_COLD void KTREGISTERED<T>::destroy(T &object, Release release) {
    if (static_cast<KTREGISTERED &>(object).registration.owned)
        delete &object;
    else
        (object.*release)();
}

// A destructor may destroy further objects of the list, so its beginning is read again each time.
template <class T>
KELTRA_COLD bool KTREGISTERED<T>::destroyAll(Release release) {
    if (!firstRegistered()) return false;
    while (T *object = firstRegistered()) destroy(*object, release);
    return true;
}

#endif
