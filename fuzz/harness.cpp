// SPDX-License-Identifier: Zlib
#include "fuzz/harness.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <limits>

#include "tests/tools/info/probe.h"

namespace keltra::fuzz {
namespace {

std::clock_t begun;
unsigned int ownShaders = 0;  // that the engine made when it started

KTNODE *nodeBelow(KTNODE *root, unsigned number) {
    KTNODE *node = root;
    for (; node->getNumberOfChildren() && number; number /= 2) {
        KTNODE *child = node->getChild(number % node->getNumberOfChildren());
        if (!child) break;
        node = child;
    }
    return node;
}

void changeWidget(KTNODE &node, Bytes &bytes) {
    if (node.isOfClass(KT_BOX)) {
        KTBOX &box = static_cast<KTBOX &>(node);
        box.setColor(bytes.color());
        box.setForemost();
        box.setClickedStatus(bytes.flag());
    }
    if (node.getType() == KT_WINDOW) {
        KTWINDOW &window = static_cast<KTWINDOW &>(node);
        window.setSizes(bytes.i32(), bytes.i32());
        window.format();
        window.minmaximize();
        window.updateScroll();
    }
    if (node.getType() == KT_HSCROLLBAR) static_cast<KTHSCROLLBAR &>(node).setValue(bytes.real());
    if (node.getType() == KT_VSCROLLBAR) static_cast<KTVSCROLLBAR &>(node).setValue(bytes.real());
    unsigned int activated = 0;
    for (int pressed : {1, 1, 0})
        KTELEMENT::manageGUIEvents(static_cast<char>(bytes.u8()), bytes.u8(), bytes.u8() * 2, pressed, 0,
                                   &activated);
}

void copyNode(const KTNODE &node) {
    if (node.getType() == KT_MESH && node.isOfClass(KT_MESH)) {
        KTMESH copy(static_cast<const KTMESH &>(node));
        copy = static_cast<const KTMESH &>(node);
        draw(&copy, nullptr);
    } else {
        KTNODE copy(node);
        copy = node;
        draw(&copy, nullptr);
    }
}

}  // namespace

std::int32_t Bytes::i32() {
    const std::int32_t some[] = {0,
                                 1,
                                 -1,
                                 16,
                                 255,
                                 4096,
                                 std::numeric_limits<std::int32_t>::max(),
                                 std::numeric_limits<std::int32_t>::min()};
    const std::uint8_t first = u8();
    return first < 8 ? some[first] : static_cast<std::int8_t>(first) * (1 + u8() % 8);
}

float Bytes::real() {
    const float some[] = {0.0f, 1.0f, -1.0f, 1e30f, -1e30f, 1e-30f, INFINITY, NAN};
    const std::uint8_t first = u8();
    return first < 8 ? some[first] : static_cast<float>(static_cast<std::int8_t>(first)) * 0.125f;
}

R3XVECTOR3D Bytes::vector() {
    const float x = real(), y = real(), z = real();
    return R3XVECTOR3D(x, y, z);
}

R3XVECTOR4D Bytes::color() {
    const R3XVECTOR3D rgb = vector();
    return R3XVECTOR4D(rgb.x, rgb.y, rgb.z, real());
}

std::string Bytes::text(std::size_t most) {
    const std::size_t wanted = std::min<std::size_t>(most, u8());
    const std::size_t size = std::min(wanted, left());
    std::string result(reinterpret_cast<const char *>(cursor), size);
    cursor += size;
    return result.c_str();
}

void beginTime() {
    begun = std::clock();
    setExecuting(true);
}

void begin() {
    beginTime();
    if (KELTRA::isActive()) return;
    KTSETTINGS settings;
    require(KELTRA::init(&settings), "KELTRA::init");
    ownShaders = KTSHADER::getNumberOfShaders();
}

bool isChosen(unsigned oneOf, const std::uint8_t *data, std::size_t size) {
#ifdef KELTRA_FUZZERS
    if (isPlain()) return true;
    constexpr std::size_t kMost = 64;  // bytes of the begin and of the end
    std::uint32_t hash = static_cast<std::uint32_t>(size);
    for (std::size_t i = 0; i < size; ++i) {
        if (i == kMost && size > 2 * kMost) i = size - kMost;
        hash = (hash ^ data[i]) * 0x01000193u;
    }
    return (hash ^ hash >> 15) % oneOf == 0;
#else
    static_cast<void>(oneOf), static_cast<void>(data), static_cast<void>(size);
    return true;
#endif
}

void finish(std::size_t size) {
    for (KTVIDEO *film = KTVIDEO::getFirst(); film; film = film->getNext()) film->load(nullptr);
    KELTRA::setSkybox(nullptr);
    KELTRA::wireframeOff();
    KTMESH::hideNormals();
    for (auto cleanUp : {KTFONT::cleanUp, KTNODE::cleanUp, KTFBO::cleanUp, KTMATERIAL::cleanUp,
                         KTTEXTURE::cleanUp, KTANIM::cleanUp, KTVIDEO::cleanUp})
        cleanUp();
    KTSHADER *shader = KTSHADER::getFirst();
    for (unsigned int i = 0; shader; ++i) {
        KTSHADER *next = shader->getNext();
        if (i >= ownShaders) delete shader;
        shader = next;
    }
    require(KTNODE::getNumberOfNodes() == 0 && KTTEXTURE::getNumberOfTextures() == 0 &&
                KTMATERIAL::getNumberOfMaterials() == 0 && KTFONT::getNumberOfFonts() == 0,
            "objects are left");
    require(texturesInGL() == 0, "textures are left in the GL");
    finishTime(size);
}

void finishTime(std::size_t size) {
    setExecuting(false);
    // A millisecond for each KB; some twenty times as much under the checkers.
    const double seconds = static_cast<double>(std::clock() - begun) / CLOCKS_PER_SEC;
    require(seconds < 1.0 + 0.02 * static_cast<double>(size) / 1024.0, "work takes too long");
}

void restart() {
    require(KELTRA::free(), "KELTRA::free");
    begin();
}

void compareVerdict(const char *kind, const std::uint8_t *data, std::size_t size, bool accepted) {
    if (!isChosen(4, data, size)) return;
    ProbedVerdict verdict = {};
    keltra_probe(kind, data, size, isChosen(64, data, size), &verdict);
    if (verdict.isGood != accepted)
        std::fprintf(stderr, "fuzz: %s: the engine says %d, keltra-info %s %s\n", kind, accepted,
                     verdict.field, verdict.reason);
    require(verdict.isGood == accepted, "keltra-info and the engine say the same");
    require(verdict.isPrintable, "what keltra-info prints is text");
}

void draw(KTNODE *scene, KTNODE *interface) {
    const int depths = matrixDepths();
    KELTRA::clear(true, true, false);
    KELTRA::begin3D(nullptr);
    if (scene) scene->pass();
    KELTRA::end3D();
    KELTRA::select(120, 160);
    KELTRA::begin2D();
    if (interface) interface->pass();
    KELTRA::end2D();
    KELTRA::swap();
    require(matrixDepths() == depths, "a matrix stack does not end as it began");
}

void useTree(KTNODE *root, Bytes &bytes, bool isInterface) {
    KTNODE *scene = isInterface ? nullptr : root, *interface = isInterface ? root : nullptr;
    draw(scene, interface);
    KTNODE *node = nodeBelow(root, bytes.u8());
    node->setPosition(bytes.vector());
    node->setRotation(bytes.vector());
    changeWidget(*node, bytes);
    if (bytes.flag()) KELTRA::wireframeOn();
    if (bytes.flag()) KTMESH::showNormals();
    draw(scene, interface);
    copyNode(*node);
    KTNODE *other = nodeBelow(root, bytes.u8());
    if (other != root) {
        other->unlink();
        if (bytes.flag()) other->link(nodeBelow(root, bytes.u8()));
        delete other;
    }
    draw(scene, interface);
}

}  // namespace keltra::fuzz
