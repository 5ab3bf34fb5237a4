// SPDX-License-Identifier: Zlib
#include "tools/view/model.h"

#include "tools/view/failure.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace keltra::view {
namespace {

constexpr char kSkyName[] = "sky";
constexpr float kOne = 65536.0f;  // of 16.16

KTNODE *nextOf(KTNODE *node) { return node->getNextNode(); }
template <class T>
T *nextOf(T *object) {
    return object->getNext();
}

// The objects of a list without its first ones.
template <class T>
std::vector<T *> beyond(unsigned kept, T *object) {
    std::vector<T *> added;
    for (; object; object = nextOf(object)) {
        if (kept > 0)
            --kept;
        else
            added.push_back(object);
    }
    return added;
}

template <class T>
void destroy(std::vector<T *> &objects) {
    for (T *object : objects) delete object;
    objects.clear();
}

// Prefixes the name so that a later state of the same model does not find it. Truncated if too long.
template <std::size_t size>
void rename(char (&name)[size], const std::string &key) {
    const std::string own = key + "/" + name;
    std::snprintf(name, size, "%s", own.c_str());
}

void addVertices(const std::int32_t *vertices, unsigned count, const R3XMATRIX &world,
                 std::vector<R3XVECTOR3D> &points) {
    for (const std::int32_t *end = vertices + 3 * count; vertices != end; vertices += 3) {
        const R3XVECTOR4D point = world.transform(R3XVECTOR3D(static_cast<float>(vertices[0]) / kOne,
                                                              static_cast<float>(vertices[1]) / kOne,
                                                              static_cast<float>(vertices[2]) / kOne));
        points.emplace_back(point.x, point.y, point.z);
    }
}

}  // namespace

Model::Model(const Source &source, const LinkFolder &links, const std::string &file)
    : links(links), key(source.key) {
    const unsigned oldNodes = KTNODE::getNumberOfNodes(), oldMaterials = KTMATERIAL::getNumberOfMaterials(),
                   oldShaders = KTSHADER::getNumberOfShaders(),
                   oldTextures = KTTEXTURE::getNumberOfTextures();
    KTTEXTURE::setPath(links.path(key + "/").c_str());
    root = KELTRA::load(source.scene.c_str());
    KTTEXTURE::setPath(links.prefix().c_str());
    if (!root) {
        const std::string reason = engineReason();
        links.clear(key);
        throw failure(file, reason);
    }
    nodes = beyond(oldNodes, KTNODE::getFirstNode());
    materials = beyond(oldMaterials, KTMATERIAL::getFirst());
    shaders = beyond(oldShaders, KTSHADER::getFirst());
    textures = beyond(oldTextures, KTTEXTURE::getFirst());
    for (KTMATERIAL *material : materials) rename(material->name, key);
    for (KTSHADER *shader : shaders) shader->setName((key + "/" + std::to_string(shader->getId())).c_str());
    for (KTTEXTURE *texture : textures) {
        // An evicted texture is read again by this name, from the links.
        rename(texture->filename, key);
        texture->incReferences();
        texture->setFilter(true, true, false);
    }
    takeSky();
}

Model::~Model() {
    // A node is destroyed before its children, which then do not unlink themselves from it.
    destroy(nodes);
    destroy(materials);
    destroy(shaders);
    destroy(textures);
    links.clear(key);
}

// In the scenes of the engine's examples, the sky is a plain node of this name with a mesh below it.
void Model::takeSky() {
    KTNODE *found = root->findByNameInHierarchy(kSkyName);
    if (!found || found == root || found->getType() != KT_NODE) return;
    const KTNODE *dome = found->getChild(0);
    if (!dome || dome->getType() != KT_MESH || !found->unlink()) return;
    sky = found;
    KELTRA::setSkybox(sky);
}

bool Model::hasLights() const {
    return std::any_of(nodes.begin(), nodes.end(),
                       [](const KTNODE *node) { return node->getType() == KT_LIGHT; });
}

float Model::skyRadius() const {
    if (!sky) return 0.0f;
    const KTMESH *dome = static_cast<const KTMESH *>(sky->getChild(0));
    std::vector<R3XVECTOR3D> points;
    addVertices(dome->vertices, dome->numberOfVertices, R3XMATRIX(), points);
    float radius = 0.0f;
    for (const R3XVECTOR3D &point : points) radius = std::max(radius, std::hypot(point.x, point.y, point.z));
    return radius;
}

// Without a camera the engine's model-view matrices are the world matrices.
void Model::measure(std::vector<R3XVECTOR3D> &points) const {
    KELTRA::begin3D(nullptr);
    root->pass();
    for (unsigned i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
        KTELEMENT &element = KTELEMENT::element[i];
        if (element.getNode()->getType() != KT_MESH) continue;
        KTMESH *mesh = static_cast<KTMESH *>(element.getNode());
        const std::int32_t *vertices = mesh->vertices;
        if (mesh->isSkinned() && mesh->animate(element.getParam1()) && mesh->skinnedVertices)
            vertices = mesh->skinnedVertices;
        if (vertices) addVertices(vertices, mesh->numberOfVertices, *element.getMatrix(), points);
    }
}

}  // namespace keltra::view
