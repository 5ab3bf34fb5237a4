// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_HOLDERS_H
#define KELTRA_CORE_HOLDERS_H

#include <algorithm>
#include <functional>
#include <new>

namespace keltra {

// Objects of one class that are being destroyed: one, or many at once, for which each holder is visited only
// once.
template <class T>
class Gone {
   public:
    // No setter has stored a pointer to an object that is not held; the application may have, but then not
    // many holders are visited: this cost must not grow.
    Gone(const T &one, bool isHeld) : one(&one), visited(isHeld ? ~0u : 64) {}
    // `many` in ascending order.
    Gone(const T *const *many, unsigned int count) : many(many), count(count), visited(~0u) {}

    bool has(const T *object) const {
        return many ? std::binary_search(many, many + count, object, std::less<const T *>()) : object == one;
    }
    void clear(T *&pointer) const {
        if (has(pointer)) pointer = nullptr;
    }
    // How many holders are to be visited.
    unsigned int mostVisited() const { return visited; }

   private:
    const T *one = nullptr;
    const T *const *many = nullptr;
    unsigned int count = 0;
    unsigned int visited;
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
    explicit GoneMany(unsigned int most) : objects(most > 1 ? new (std::nothrow) const T *[most] : nullptr) {}
    ~GoneMany() { delete[] objects; }
    GoneMany(const GoneMany &) = delete;
    GoneMany &operator=(const GoneMany &) = delete;

    void add(T &object) {
        if (!objects) return;
        objects[count++] = &object;
        object.setHeld(false);
    }
    void notify() {
        if (count == 0) return;
        std::sort(objects, objects + count, std::less<const T *>());
        OnGone<T>::notify(Gone<T>(objects, count));
    }

   private:
    const T **const objects;
    unsigned int count = 0;
};

// All objects from `begin` on, in the order of their class's list.
template <class T>
void notifyGoneFrom(T *begin) {
    unsigned int count = 0;
    for (T *object = begin; object; object = object->getNext()) ++count;
    GoneMany<T> gone(count);
    for (T *object = begin; object; object = object->getNext()) gone.add(*object);
    gone.notify();
}

}  // namespace keltra

#endif
