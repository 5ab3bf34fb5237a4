// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_NODE_CLASS_H
#define KELTRA_SCENE_NODE_CLASS_H

// From a node to its class. The type code is not enough: applications set it, and assigning a node copies it.

#include <keltra/node.h>

class KTBOX;
class KTBUTTON;
class KTCAMERA;
class KTEMITTER;
class KTHELPER;
class KTHSCROLLBAR;
class KTLABEL;
class KTLIGHT;
class KTMESH;
class KTTEXTFIELD;
class KTVSCROLLBAR;
class KTWINDOW;

namespace keltra {

// The code under which a class's constructors join it.
template <class Class>
struct ClassCode;

template <KT_NODE_TYPE code>
struct Code {
    static constexpr KT_NODE_TYPE value = code;
};

template <>
struct ClassCode<KTBOX> : Code<KT_BOX> {};
template <>
struct ClassCode<KTBUTTON> : Code<KT_BUTTON> {};
template <>
struct ClassCode<KTCAMERA> : Code<KT_CAMERA> {};
template <>
struct ClassCode<KTEMITTER> : Code<KT_EMITTER> {};
template <>
struct ClassCode<KTHELPER> : Code<KT_HELPER> {};
template <>
struct ClassCode<KTHSCROLLBAR> : Code<KT_HSCROLLBAR> {};
template <>
struct ClassCode<KTLABEL> : Code<KT_LABEL> {};
template <>
struct ClassCode<KTLIGHT> : Code<KT_LIGHT> {};
template <>
struct ClassCode<KTMESH> : Code<KT_MESH> {};
template <>
struct ClassCode<KTTEXTFIELD> : Code<KT_TEXTFIELD> {};
template <>
struct ClassCode<KTVSCROLLBAR> : Code<KT_VSCROLLBAR> {};
template <>
struct ClassCode<KTWINDOW> : Code<KT_WINDOW> {};

// The node as an object of `Class`; null for null and for nodes of other classes. The caller includes the
// header of the class.
template <class Class>
Class *as(KTNODE *node) {
    return node && node->isOfClass(ClassCode<Class>::value) ? static_cast<Class *>(node) : nullptr;
}

template <class Class>
const Class *as(const KTNODE *node) {
    return node && node->isOfClass(ClassCode<Class>::value) ? static_cast<const Class *>(node) : nullptr;
}

// The same for nodes that also have the class's own code as their type: where the code decides what a node is
// taken for, and the class whether it can be.
template <class Class>
Class *asTyped(KTNODE *node) {
    return node && node->type == ClassCode<Class>::value ? as<Class>(node) : nullptr;
}

template <class Class>
const Class *asTyped(const KTNODE *node) {
    return node && node->type == ClassCode<Class>::value ? as<Class>(node) : nullptr;
}

}  // namespace keltra

#endif
