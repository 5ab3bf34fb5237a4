// SPDX-License-Identifier: Zlib
#ifndef KELTRA_REGISTERED_H
#define KELTRA_REGISTERED_H

#include <keltra/export.h>

#include <cstddef>
#include <new>

namespace keltra {

class ObjectList;
template <class T>
class Gone;
template <class T>
class GoneMany;
template <class T>
class OnGone;

/** What the list of a class keeps in each of its objects. */
struct Registration {
    Registration *listPrevious, *listNext;
    unsigned int nameKey;  ///< under which the object is in the table of names
    unsigned short ownId;
    bool listed : 1;
    bool owned : 1;
    bool held : 1;      ///< pointers to the object may exist in others
    bool assigned : 1;  ///< it may show another object's identifier
    bool indexed : 1, named : 1, skipped : 1;
};

}  // namespace keltra

/**
 * A place on a list that leads through its objects: all of a class that exist, or all that point to one
 * object. An object leaves the list when it is destroyed; a copy is on none until it joins. `List` tells the
 * lists of one class apart.
 */
template <class T, class List = T>
class KTLISTED {
   protected:
    KTLISTED() : listLink(nullptr), listAfter(nullptr) {}
    KTLISTED(const KTLISTED &) : KTLISTED() {}
    KTLISTED &operator=(const KTLISTED &) { return *this; }  // NOLINT(bugprone-unhandled-self-assignment)
    ~KTLISTED() { leaveList(); }

    /** Becomes the first of the list that begins at `first`. */
    void joinList(KTLISTED *&first) {
        leaveList();
        listAfter = first;
        if (listAfter) listAfter->listLink = &listAfter;
        listLink = &first;
        first = this;
    }
    void leaveList() {
        if (!listLink) return;
        *listLink = listAfter;
        if (listAfter) listAfter->listLink = listLink;
        listLink = nullptr;
    }
    static T *objectAt(KTLISTED *place) { return static_cast<T *>(place); }
    /** Calls `visit(object)` with at most so many objects of the list that begins at `first`. */
    template <class Visit>
    static void visitList(KTLISTED *first, unsigned int most, Visit visit) {
        for (; first && most-- > 0; first = first->listAfter) visit(*objectAt(first));
    }

   private:
    KTLISTED **listLink;  // what points to this place: the list's beginning or the place before
    KTLISTED *listAfter;
};

/**
 * Whether an object counts its use of what one of its pointers leads to. A copy of the object does not.
 */
class KTUSE {
   public:
    KTUSE() : counted(false) {}
    KTUSE(const KTUSE &) : counted(false) {}
    KTUSE &operator=(const KTUSE &) { return *this; }

    /** Puts `value` into the pointer and counts it, before the use of the former one is taken back: they may
     * be the same. Returns what was counted before. */
    template <class T>
    T *set(T *&pointer, T *value) {
        if (value) value->incReferences();
        T *const former = take(pointer);
        pointer = value;
        counted = value != nullptr;
        return former;
    }
    /** Clears the pointer and takes its use back; returns what was counted. */
    template <class T>
    T *take(T *&pointer) {
        T *const used = counted ? pointer : nullptr;
        pointer = nullptr;
        counted = false;
        if (used) used->decReferences();
        return used;
    }
    /** Clears the pointer to what is being destroyed. */
    template <class T>
    void forget(T *&pointer) {
        pointer = nullptr;
        counted = false;
    }
    /** For holders that never give a use back when they are destroyed: takes one use of the former value,
     * no matter which holder counted it. */
    template <class T>
    static void exchange(T *&pointer, T *value) {
        if (pointer) pointer->decReferences();
        if (value) value->incReferences();
        pointer = value;
    }

   private:
    bool counted;
};

/**
 * Base of every class whose objects stand on a class-wide list (nodes, textures, materials, ...).
 *
 * An object that was constructed draws an identifier and joins the tail of its class's list; its destructor
 * takes it off again and gives the identifier back. A copy carries the original's visible id, name, links and
 * pointers, but it is on no list and owns none of them: destroying or assigning it never releases what the
 * original owns.
 *
 * The list owns the objects made with `new`: `cleanUp` and `KELTRA::free` delete them. Objects that live on
 * the stack or inside others are only taken off the list then, and may be destroyed later as usual.
 *
 * From 64 objects on, a search by name or identifier takes the same time however many there are; one that
 * finds nothing looks at all of them. A name that the application writes to the field itself, not with a
 * setter, is found too, but an object of the same name that is younger may be found in its place.
 */
template <class T>
class KTREGISTERED {
   public:
    static void *operator new(std::size_t size);
    static void *operator new(std::size_t size, const std::nothrow_t &) noexcept;
    static void *operator new(std::size_t, void *place) noexcept { return place; }
    static void operator delete(void *block) noexcept;
    static void operator delete(void *block, const std::nothrow_t &) noexcept;
    static void operator delete(void *, void *) noexcept {}

    /** True for an object on its class's list; false for a copy. */
    bool isRegistered() const { return registration.listed; }
    /** Notes that a pointer to this object was stored in another one: it is cleared when this object is
     * destroyed. All setters do it, and so does drawing with it, for what the application writes to a field;
     * without it, only some objects are searched for such pointers. */
    void markHeld() { registration.held = true; }

   protected:
    /** Gives up what an object owns and takes it off the list, as its destructor does. */
    typedef void (T::*Release)();

    KTREGISTERED();
    KTREGISTERED(const KTREGISTERED &);
    KTREGISTERED &operator=(const KTREGISTERED &) { return *this; }
    ~KTREGISTERED() {}

    /** True for an object made with `new`, not as a copy. */
    bool isFromNew() const { return registration.owned; }
    bool isHeld() const { return registration.held; }
    unsigned int enlist();
    void delist();
    /** To be called after the object's name was changed, and after it was assigned to. */
    void nameChanged();
    void fieldsAssigned();
    T *registeredPrevious() const { return objectOf(registration.listPrevious); }
    T *registeredNext() const { return objectOf(registration.listNext); }
    static unsigned int count();
    static T *firstRegistered();
    static T *findRegistered(unsigned int id);
    static T *findRegistered(const char *name);
    /** Deletes an object that the list owns; releases another. */
    static void destroy(T &object, Release release);
    static bool destroyAll(Release release);

   private:
    friend class keltra::GoneMany<T>;

    void setHeld(bool isHeld) { registration.held = isHeld; }
    static keltra::ObjectList &list();
    // The registration is the only member, so that both have one address.
    static T *objectOf(keltra::Registration *place) {
        return static_cast<T *>(reinterpret_cast<KTREGISTERED *>(place));
    }
    static const char *nameOf(keltra::Registration &place);
    static void show(keltra::Registration *before, keltra::Registration *after);

    keltra::Registration registration;
};

/* The library has the list of each class once. What is inline is the application's own there, too, and so not
 * exported. */
#if defined(KELTRA_BUILDING)
#define KT_LISTED_CLASS(T) extern template class KT_API KTREGISTERED<T>
#else
#define KT_LISTED_CLASS(T) class T
#endif

#endif
