// SPDX-License-Identifier: Zlib
// Built with every inline function of the headers kept, and with a class derived from each class: whatever
// those call has to be exported by the library, or this program does not link.

#include <keltra/keltra.h>

#include <initializer_list>
#include <type_traits>

namespace {

template <class Class>
class Derived : public Class {};

template <class... Classes>
bool copyEach() {
    bool same = true;
    (void)std::initializer_list<int>{[&same] {
        static_assert(std::is_copy_constructible<Classes>::value, "a program may copy it");
        Derived<Classes> *one = new Derived<Classes>;
        Derived<Classes> other(*one);
        other = *one;
        same = same && other.id == one->id;
        delete one;
        return 0;
    }()...};
    return same;
}

}  // namespace

int main() {
    const bool same = copyEach<KTBOX, KTBUTTON, KTCAMERA, KTEMITTER, KTFBO, KTFONT, KTHELPER, KTHSCROLLBAR,
                               KTLABEL, KTLIGHT, KTMATERIAL, KTMESH, KTNODE, KTSHADER, KTTEXTFIELD, KTTEXTURE,
                               KTVIDEO, KTVSCROLLBAR, KTWINDOW>();
    return same && copyEach<KTANIM>() ? 0 : 1;
}
