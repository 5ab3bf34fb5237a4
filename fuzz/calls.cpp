// SPDX-License-Identifier: Zlib
#include "fuzz/calls.h"

#include <set>

namespace keltra::fuzz {
namespace {

// The object of a list at a place that the bytes name; null for some.
template <class T>
T *pick(T *first, T *(*next)(const T &), unsigned count, Bytes &bytes) {
    const unsigned place = bytes.u8();
    if (!count || place == 255) return nullptr;
    T *object = first;
    for (unsigned i = place % count; i && object; --i) object = next(*object);
    return object;
}

KTNODE *node(Bytes &bytes) {
    return pick<KTNODE>(
        KTNODE::getFirstNode(), [](const KTNODE &one) { return one.getNextNode(); },
        KTNODE::getNumberOfNodes(), bytes);
}
template <class T>
T *resource(T *first, unsigned count, Bytes &bytes) {
    return pick<T>(
        first, [](const T &one) { return one.getNext(); }, count, bytes);
}
KTTEXTURE *texture(Bytes &bytes) {
    return resource(KTTEXTURE::getFirst(), KTTEXTURE::getNumberOfTextures(), bytes);
}
KTMATERIAL *material(Bytes &bytes) {
    return resource(KTMATERIAL::getFirst(), KTMATERIAL::getNumberOfMaterials(), bytes);
}
KTFONT *font(Bytes &bytes) { return resource(KTFONT::getFirst(), KTFONT::getNumberOfFonts(), bytes); }
KTSHADER *shader(Bytes &bytes) {
    return resource(KTSHADER::getFirst(), KTSHADER::getNumberOfShaders(), bytes);
}
KTANIM *animation(Bytes &bytes) { return resource(KTANIM::getFirst(), KTANIM::getNumberOfAnims(), bytes); }

// The node as its class; null when it is of another.
template <class T>
T *as(KT_NODE_TYPE code, Bytes &bytes) {
    KTNODE *found = node(bytes);
    return found && found->isOfClass(code) ? static_cast<T *>(found) : nullptr;
}

void make(Bytes &bytes) {
    if (KTNODE::getNumberOfNodes() > 200) return;
    switch (bytes.u8() % 18) {
        case 0:
            new KTNODE;
            break;
        case 1:
            new KTMESH;
            break;
        case 2:
            new KTLIGHT;
            break;
        case 3:
            new KTCAMERA;
            break;
        case 4:
            new KTHELPER;
            break;
        case 5:
            new KTEMITTER;
            break;
        case 6:
            new KTBOX;
            break;
        case 7:
            new KTLABEL;
            break;
        case 8:
            new KTBUTTON;
            break;
        case 9:
            new KTTEXTFIELD;
            break;
        case 10:
            new KTHSCROLLBAR;
            break;
        case 11:
            new KTVSCROLLBAR;
            break;
        case 12:
            new KTWINDOW;
            break;
        case 13:
            new KTTEXTURE;
            break;
        case 14:
            new KTMATERIAL;
            break;
        case 15:
            new KTFONT;
            break;
        case 16:
            new KTFBO;
            break;
        default:
            // A megabyte, which takes as long as all other calls of an input.
            if (KTANIM::getNumberOfAnims() == 0) new KTANIM;
    }
}

void destroy(Bytes &bytes) {
    switch (bytes.u8() % 8) {
        case 0:
            delete texture(bytes);
            break;
        case 1:
            delete material(bytes);
            break;
        case 2:
            delete font(bytes);
            break;
        case 3:
            delete animation(bytes);
            break;
        case 4:
            if (KTNODE *found = node(bytes)) found->remove();
            break;
        default:
            delete node(bytes);
    }
}

// A copy of an object of its own class, and an assignment of it to another.
template <class T>
void copy(KT_NODE_TYPE code, Bytes &bytes) {
    T *from = as<T>(code, bytes), *to = as<T>(code, bytes);
    if (!from) return;
    T made(*from);
    if (to) *to = made;
    made = *from;
    draw(&made, &made);
}

void copies(Bytes &bytes) {
    switch (bytes.u8() % 12) {
        case 0:
            return copy<KTNODE>(KT_NODE, bytes);
        case 1:
            return copy<KTMESH>(KT_MESH, bytes);
        case 2:
            return copy<KTLIGHT>(KT_LIGHT, bytes);
        case 3:
            return copy<KTCAMERA>(KT_CAMERA, bytes);
        case 4:
            return copy<KTEMITTER>(KT_EMITTER, bytes);
        case 5:
            return copy<KTBOX>(KT_BOX, bytes);
        case 6:
            return copy<KTLABEL>(KT_LABEL, bytes);
        case 7:
            return copy<KTBUTTON>(KT_BUTTON, bytes);
        case 8:
            return copy<KTWINDOW>(KT_WINDOW, bytes);
        case 9:
            return copy<KTHSCROLLBAR>(KT_HSCROLLBAR, bytes);
        case 10:
            return copy<KTVSCROLLBAR>(KT_VSCROLLBAR, bytes);
        default:
            if (KTTEXTURE *from = texture(bytes)) {
                KTTEXTURE made(*from);
                if (KTTEXTURE *to = texture(bytes)) *to = made;
                made.render(nullptr);
            }
    }
}

void linking(Bytes &bytes) {
    KTNODE *one = node(bytes), *other = node(bytes);
    if (!one) return;
    switch (bytes.u8() % 8) {
        case 0:
            one->unlink();
            break;
        case 1:
            one->setTargetNode(other);
            break;
        case 2:
            KELTRA::setSkybox(one);
            break;
        case 3:
            one->setName(bytes.text(12).c_str());
            break;
        case 4:
            one->findByNameInHierarchy(bytes.text(12).c_str());
            break;
        case 5:
            one->getFinalMatrix(other ? other->getName() : nullptr);
            break;
        case 6:
            if (bytes.u8() < 20) one->type = bytes.u8() % 20;
            break;
        default:
            one->link(other);
    }
}

void placing(Bytes &bytes) {
    KTNODE *one = node(bytes);
    if (!one) return;
    switch (bytes.u8() % 6) {
        case 0:
            one->setPosition(bytes.vector());
            break;
        case 1:
            one->setRotation(bytes.vector());
            break;
        case 2:
            one->setOrigin(bytes.vector());
            break;
        case 3:
            one->setTarget(bytes.vector());
            break;
        case 4:
            one->transformMode = bytes.u8() % 5;
            break;
        default:
            one->move(bytes.vector());
    }
}

void scene(Bytes &bytes) {
    switch (bytes.u8() % 9) {
        case 0:
            if (auto *mesh = as<KTMESH>(KT_MESH, bytes)) mesh->setMaterial(material(bytes));
            break;
        case 1:
            if (auto *mesh = as<KTMESH>(KT_MESH, bytes)) mesh->resetBones(node(bytes));
            break;
        case 2:
            if (auto *mesh = as<KTMESH>(KT_MESH, bytes)) mesh->animate(bytes.u8());
            break;
        case 3:
            if (auto *light = as<KTLIGHT>(KT_LIGHT, bytes)) {
                light->setLightType(bytes.u8() % 5);
                light->setCutOff(bytes.real());
                light->setExponent(bytes.real());
                light->setAttenuation(bytes.real(), bytes.real(), bytes.real());
                light->setExclusive(bytes.flag());
            }
            break;
        case 4:
            if (auto *emitter = as<KTEMITTER>(KT_EMITTER, bytes)) {
                emitter->setNumberOfParticles(bytes.i32());
                emitter->setEmitterType(bytes.u8() % 4);
                emitter->setTexture(texture(bytes));
                emitter->setMaximumEnergy(static_cast<unsigned int>(bytes.i32()));
                emitter->setGravity(bytes.vector());
            }
            break;
        case 5:
            if (auto *emitter = as<KTEMITTER>(KT_EMITTER, bytes)) emitter->initialize();
            break;
        case 6:
            KELTRA::recursiveInitBones(node(bytes), node(bytes));
            break;
        case 7:
            if (KTANIM *anim = animation(bytes)) anim->apply(bytes.u8(), node(bytes));
            break;
        default:
            if (KTANIM *anim = animation(bytes)) {
                anim->setNumberOfFrames(bytes.u8());
                anim->setNumberOfBones(bytes.u8());
                anim->setBoneName(bytes.u8(), bytes.text(12).c_str());
                anim->createKeyframes(bytes.u8(), bytes.u8());
            }
    }
}

void resources(Bytes &bytes) {
    KTTEXTURE *one = texture(bytes);
    KTMATERIAL *surface = material(bytes);
    unsigned int channel = bytes.u8();
    switch (bytes.u8() % 12) {
        case 0:
            if (one) one->create(bytes.u8(), bytes.u8(), bytes.u8() % 8);
            break;
        case 1:
            if (one) one->setFilter(bytes.flag(), bytes.flag(), bytes.flag());
            break;
        case 2:
            if (one) one->render(&channel);
            break;
        case 3:
            if (one) one->unload(bytes.flag());
            break;
        case 4:
            if (one) one->reload();
            break;
        case 5:
            KTTEXTURE::garbageCollect(static_cast<unsigned long>(bytes.i32()));
            break;
        case 6:
            if (surface) surface->setTexture(bytes.u8() % 20, one);
            break;
        case 7:
            if (surface) surface->setTransparency(bytes.real());
            break;
        case 8:
            if (surface) surface->setShader(shader(bytes));
            break;
        case 9:
            if (surface) surface->clone(material(bytes));
            break;
        case 10:
            KTTEXTURE::texturingOn(channel);
            break;
        default:
            KTTEXTURE::texturingOff(channel);
    }
}

void widgets(Bytes &bytes) {
    KTBOX *box = as<KTBOX>(KT_BOX, bytes);
    if (!box) return;
    const std::string text = bytes.text(60);
    auto *window = box->isOfClass(KT_WINDOW) ? static_cast<KTWINDOW *>(box) : nullptr;
    auto *button = box->isOfClass(KT_BUTTON) ? static_cast<KTBUTTON *>(box) : nullptr;
    auto *label = box->isOfClass(KT_LABEL) ? static_cast<KTLABEL *>(box) : nullptr;
    switch (bytes.u8() % 12) {
        case 0:
            box->setSizes(bytes.i32(), bytes.i32());
            break;
        case 1:
            box->setColor(bytes.color());
            break;
        case 2:
            box->setTexture(texture(bytes));
            break;
        case 3:
            box->setForemost();
            break;
        case 4:
            box->setLimits(bytes.i32(), bytes.i32(), bytes.i32(), bytes.i32());
            break;
        case 5:
            box->setScissorStatus(bytes.flag());
            box->setLimitStatus(bytes.flag());
            break;
        case 6:
            box->setThickness(bytes.u8());
            break;
        case 7:
            if (window) window->setFont(font(bytes));
            break;
        case 8:
            if (window) window->minmaximize();
            break;
        case 9:
            if (window && window->write("%s", text.c_str())) window->format();
            break;
        case 10:
            if (button) button->setFont(font(bytes)), button->setCaption(text.c_str());
            if (button) button->setEventType(static_cast<KT_BUTTON_EVENT>(bytes.u8() % 4));
            break;
        default:
            if (label) label->setFont(font(bytes)), label->write("%s", text.c_str());
    }
    if (KTFONT *one = font(bytes)) one->setTexture(texture(bytes));
}

void frames(Bytes &bytes) {
    unsigned int activated = 0;
    KTNODE *passed = node(bytes);
    switch (bytes.u8() % 16) {
        case 0:
            KELTRA::clear(bytes.flag(), bytes.flag(), bytes.flag());
            break;
        case 1:
            KELTRA::begin3D(as<KTCAMERA>(KT_CAMERA, bytes));
            break;
        case 2:
            KELTRA::end3D();
            break;
        case 3:
            KELTRA::begin2D();
            break;
        case 4:
            KELTRA::end2D();
            break;
        case 5:
            KELTRA::swap();
            break;
        case 6:
            KELTRA::select(bytes.i32(), bytes.i32());
            break;
        case 7:
            bytes.flag() ? KELTRA::wireframeOn() : KELTRA::wireframeOff();
            break;
        case 8:
            bytes.flag() ? KTMESH::showNormals() : KTMESH::hideNormals();
            break;
        case 9:
            KTELEMENT::sort2D();
            break;
        case 10:
            KTELEMENT::sort3D();
            break;
        case 11:
            bytes.flag() ? KTLIGHT::lightingOn() : KTLIGHT::lightingOff();
            break;
        case 12:
            KTELEMENT::manageGUIEvents(static_cast<char>(bytes.u8()), bytes.u8(), bytes.u8() * 2,
                                       bytes.u8() % 3, bytes.u8(), bytes.flag() ? &activated : nullptr);
            break;
        case 13:
            draw(passed, nullptr);
            break;
        case 14:
            draw(nullptr, passed);
            break;
        default:
            if (passed) passed->pass();
    }
}

}  // namespace

void call(Bytes &bytes) {
    void (*const kinds[])(Bytes &) = {make,  make,      destroy, copies,  linking, linking, placing,
                                      scene, resources, widgets, widgets, frames,  frames};
    kinds[bytes.u8() % (sizeof kinds / sizeof *kinds)](bytes);
}

void checkLists() {
    std::set<const KTNODE *> listed;
    for (KTNODE *one = KTNODE::getFirstNode(); one; one = one->getNextNode()) {
        require(listed.insert(one).second, "a node is listed twice");
        if (KTNODE *next = one->getNextNode()) require(next->getPreviousNode() == one, "links of the list");
    }
    require(listed.size() == KTNODE::getNumberOfNodes(), "the number of nodes");
    std::set<const KTNODE *> children;
    for (const KTNODE *one : listed) {
        for (unsigned int i = 0; i < one->getNumberOfChildren(); ++i) {
            const KTNODE *child = one->getChild(i);
            require(!child || listed.count(child), "a child that no longer exists");
        }
        require(!one->getParent() || listed.count(one->getParent()), "a parent that no longer exists");
        require(!one->getTargetNode() || listed.count(one->getTargetNode()),
                "a target that no longer exists");
    }
}

}  // namespace keltra::fuzz
