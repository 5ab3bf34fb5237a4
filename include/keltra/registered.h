#ifndef KELTRA_REGISTERED_H
#define KELTRA_REGISTERED_H

#include <cstddef>
#include <new>

#include <keltra/export.h>

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
    bool isRegistered() const { return listed; }

   protected:
    KTREGISTERED();
    KTREGISTERED(const KTREGISTERED &);
    KTREGISTERED &operator=(const KTREGISTERED &) { return *this; }
    ~KTREGISTERED();

    /** True for an object made with `new`, not as a copy. */
    bool isFromNew() const { return heap; }
    unsigned int enlist();
    void delist();
    T *registeredPrevious() const { return listPrevious; }
    T *registeredNext() const { return listNext; }
    static unsigned int count();
    static T *firstRegistered();
    static void destroy(T &object);
    static bool destroyAll();
    /** Every object in existence, copies too: for those that hold a pointer which must be cleared. */
    static T *firstAlive();
    T *nextAlive() const;

   private:
    void joinAlive();

    T *listPrevious, *listNext;
    KTREGISTERED *alivePrevious, *aliveNext;
    unsigned int ownId;
    bool listed, heap;
};

#endif
