// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_HOLDERS_H
#define KELTRA_CORE_HOLDERS_H

namespace keltra {

// A function that clears the pointers of one class to an object that is being destroyed. To be made at load
// time, as a static member of the class that has the pointers; the destroyed object's class knows none of
// them.
template <class T>
class OnGone {
   public:
    using Forget = void (*)(const T *gone, bool isHeld);
    explicit OnGone(Forget forget) : forget(forget), next(first) { first = this; }
    static void notify(const T *gone, bool isHeld) {
        for (const OnGone *each = first; each; each = each->next) each->forget(gone, isHeld);
    }

   private:
    const Forget forget;
    const OnGone *const next;
    static const OnGone *first;
};
template <class T>
const OnGone<T> *OnGone<T>::first = nullptr;

// How many objects are searched for pointers to one that is being destroyed. No setter has stored one that is
// not held; the application may have, but then not many objects are searched: this cost must not grow.
inline unsigned int searchedFor(bool isHeld) { return isHeld ? ~0u : 64; }

}  // namespace keltra

#endif
