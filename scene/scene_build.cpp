// SPDX-License-Identifier: Zlib
#include "scene/scene_build.h"

#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include "core/holders.h"
#include "formats/scene_faults.h"
#include "formats/trusted_record.h"
#include "foundation/file_bytes.h"
#include "foundation/name_index.h"
#include "scene/bone_finder.h"
#include "scene/mesh_build.h"
#include "scene/node_class.h"
#include "scene/tree_walk.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr char kNone[] = "[none]";
constexpr char kNormalMapEnding[] = "_n.tga";
constexpr std::size_t kNormalMapEndingLength = sizeof kNormalMapEnding - 1;

// --- materials

// The resources that records name, those of earlier loads and those of this one.
struct Resources {
    keltra::NameIndex<KTTEXTURE> textures{[](const KTTEXTURE &one) -> const char * { return one.filename; },
                                          KTTEXTURE::findByFilename};
    keltra::NameIndex<KTSHADER> shaders{[](const KTSHADER &one) -> const char * { return one.name; },
                                        KTSHADER::findByName};
    keltra::NameIndex<KTMATERIAL> materials{[](const KTMATERIAL &one) -> const char * { return one.name; },
                                            KTMATERIAL::findByName};
    keltra::NameTable missing;  // textures that could not be read, each reported once
};

// The texture of that file; null, with a warning, when it cannot be read.
KTTEXTURE *acquireTexture(Resources &resources, const char *name) {
    if (KTTEXTURE *known = resources.textures.find(name)) return known;
    KTTEXTURE *texture = new (std::nothrow) KTTEXTURE;
    if (!texture) return keltra::warnMemory(KT_CALL("KELTRA::load")), nullptr;
    const keltra::FaultOptional optional;
    if (!texture->load(name)) {
        delete texture;
        return nullptr;
    }
    resources.textures.add(texture);
    return texture;
}

// The normal map's name is the texture's with its last six characters replaced, "stone_d.tga" gives
// "stone_n.tga". Deliberate: "stone.tga" gives "sto_n.tga"; scenes name their files so.
KTTEXTURE *acquireNormalMap(Resources &resources, const char *textureName) {
    char name[keltra::kNameSize];
    const std::size_t length = std::strlen(textureName);
    if (length < kNormalMapEndingLength || length >= sizeof name) return nullptr;
    std::memcpy(name, textureName, length - kNormalMapEndingLength);
    std::memcpy(name + length - kNormalMapEndingLength, kNormalMapEnding, sizeof kNormalMapEnding);
    if (!vnfFileExists(keltra::FilePath(KTTEXTURE::getPath(), name).text)) return nullptr;
    return acquireTexture(resources, name);
}

KTSHADER *acquireShader(Resources &resources, const char *name) {
    if (KTSHADER *known = resources.shaders.find(name)) return known;
    KTSHADER *shader = new (std::nothrow) KTSHADER;
    if (!shader) return keltra::warnMemory(KT_CALL("KELTRA::load")), nullptr;
    char vertexProgram[keltra::kNameSize + 8], pixelProgram[sizeof vertexProgram];
    std::snprintf(vertexProgram, sizeof vertexProgram, "%sVS.glsl", name);
    std::snprintf(pixelProgram, sizeof pixelProgram, "%sPS.glsl", name);
    shader->load(vertexProgram, pixelProgram);
    shader->setName(name);
    resources.shaders.add(shader);
    return shader;
}

// Deliberate: a material that exists keeps its values, but the textures and the shader of the record are
// loaded; applications load textures in advance this way.
bool buildMaterial(Resources &resources, const keltra::MaterialRecord &record) {
    KTTEXTURE *texture = nullptr, *normalMap = nullptr;
    if (std::strcmp(record.texture, kNone) != 0) {
        if (!resources.missing.find(record.texture)) texture = acquireTexture(resources, record.texture);
        if (!texture) resources.missing.add(record.texture, &resources);
        normalMap = acquireNormalMap(resources, record.texture);
    }
    KTSHADER *shader =
        std::strcmp(record.shader, kNone) != 0 ? acquireShader(resources, record.shader) : nullptr;
    if (resources.materials.find(record.name)) return true;
    KTMATERIAL *material = new (std::nothrow) KTMATERIAL;
    if (!material) return false;
    material->setName(record.name);
    resources.materials.add(material);
    material->setAmbient(R3XVECTOR4D(record.ambient));
    material->setDiffuse(R3XVECTOR4D(record.diffuse));
    material->setSpecular(R3XVECTOR4D(record.specular));
    material->setEmission(R3XVECTOR4D(record.emission));
    material->setTransparency(record.transparency);
    material->setShininess(record.shininess);
    material->setShader(shader);
    material->setTexture(0, texture);
    material->setTexture(1, normalMap);
    return true;
}

bool buildMaterials(Resources &resources, const keltra::SceneMaterial *material) {
    for (; material; material = material->next)
        if (!buildMaterial(resources, material->record)) return false;
    return true;
}

// --- taking back

void destroy(KTMATERIAL *material) {
    // Destroying a material leaves the uses of its textures counted.
    for (unsigned int level = 0; level < KTMATERIAL::levels; ++level) material->setTexture(level, nullptr);
    delete material;
}
void destroy(KTSHADER *shader) { delete shader; }
void destroy(KTTEXTURE *texture) { delete texture; }

// Destroys what the list holds beyond its first `kept` objects.
template <class T>
void destroyBeyond(unsigned int kept, T *object) {
    for (; object && kept > 0; --kept) object = object->getNext();
    keltra::notifyGoneFrom(object);
    while (object) {
        T *next = object->getNext();
        destroy(object);
        object = next;
    }
}

// Nodes are destroyed before their children, which then need not search the parent.
void destroyNodesFrom(KTNODE *first) {
    while (first) {
        KTNODE *next = first->getNextNode();
        delete first;
        first = next;
    }
}

// How long the lists were before a load: what was appended since is destroyed when it fails.
class Rollback {
   public:
    Rollback()
        : materials(KTMATERIAL::getNumberOfMaterials()),
          shaders(KTSHADER::getNumberOfShaders()),
          textures(KTTEXTURE::getNumberOfTextures()) {}
    void run() const {
        destroyBeyond(materials, KTMATERIAL::getFirst());
        destroyBeyond(shaders, KTSHADER::getFirst());
        destroyBeyond(textures, KTTEXTURE::getFirst());
    }

   private:
    unsigned int materials, shaders, textures;
};

// --- nodes

KTNODE *buildPlain(const keltra::PlainRecord &record) {
    KTNODE *node = new (std::nothrow) KTNODE;
    if (!node) return nullptr;
    node->setAuxId(record.auxId);
    node->setName(record.name);
    node->setPosition(R3XVECTOR3D(record.position));
    node->setOrigin(R3XVECTOR3D(record.origin));
    node->numberOfChildren = record.children;
    return node;
}

KTNODE *buildLight(const keltra::LightRecord &record) {
    KTLIGHT *light = new (std::nothrow) KTLIGHT;
    if (!light) return nullptr;
    const float r = record.color[0], g = record.color[1], b = record.color[2];
    light->setLightType(record.lightType);
    light->setName(record.name);
    light->setPosition(R3XVECTOR3D(record.position));
    light->setDirection(R3XVECTOR3D(record.direction));
    light->setTarget(light->position + light->direction);
    light->setCutOff(record.cutOff);
    // Deliberate: alphas of 0.2 and 0.1, since the factors apply to all four components; scenes have been lit
    // with them.
    light->setAmbient(0.2f * r, 0.2f * g, 0.2f * b, 0.2f);
    light->setDiffuse(r, g, b, 1.0f);
    light->setSpecular(0.1f * r, 0.1f * g, 0.1f * b, 0.1f);
    light->numberOfChildren = record.children;
    return light;
}

KTNODE *buildNode(Resources &resources, const keltra::SceneNode &node) {
    if (node.plain) return buildPlain(*node.plain);
    if (node.light) return buildLight(*node.light);
    return keltra::buildMesh(*node.mesh, resources.materials.find(node.mesh->material));
}

KTNODE *buildTrustedNode(keltra::FaultScope &scope, const char *buffer, long *cursor) {
    if (!keltra::isRecordPlace(scope, buffer, cursor)) return nullptr;
    long body = *cursor + 1;
    KTNODE *node = nullptr;
    switch (static_cast<unsigned char>(buffer[*cursor])) {
        case keltra::kPlainRecord:
            node = KTNODE::load(buffer, &body);
            break;
        case keltra::kLightRecord:
            node = KTLIGHT::load(buffer, &body);
            break;
        case keltra::kMeshRecord:
            node = KTMESH::load(buffer, &body, false);
            break;
        default:
            KTFAULT &fault =
                keltra::newFault(KT_FAULT_DATA, KT_TEXT("type"), {}, KT_TEXT("unknown node type"));
            keltra::setFaultNumber(fault.found, static_cast<unsigned char>(buffer[*cursor]));
            fault.byte = *cursor;
            scope.fail(fault);
    }
    if (node) *cursor = body;
    return node;
}

}  // namespace

namespace keltra {

class TreeBuilder {
   public:
    // Makes a tree of the nodes that `next` returns, depth first, each with its number of children and
    // without them. Null, with everything destroyed again, when `next` returns null, the tree nests too deep
    // or memory runs out. The path is kept in an array: the device's stack is small.
    template <class Next>
    static KTNODE *build(KTNODE *parent, bool &isTooDeep, Next next) {
        struct Step {
            KTNODE *node;
            unsigned int next;
        };
        Step path[kMaxTreeDepth];
        unsigned int depth = 0;
        KTNODE *root = nullptr;
        for (KTNODE *above = parent;;) {
            isTooDeep = depth == kMaxTreeDepth;
            KTNODE *node = isTooDeep ? nullptr : next();
            if (!root) root = node;
            if (!node || !node->allocateChildren(node->numberOfChildren)) {
                destroyNodesFrom(root);
                return nullptr;
            }
            node->parent = above;
            // The caller's parent does not list the root, and could not clear this pointer when it is
            // destroyed.
            if (depth == 0 && above) node->borrow(nullptr);
            if (depth > 0) {
                Step &step = path[depth - 1];
                node->slot = step.next;
                above->children[step.next++] = node;
            }
            path[depth++] = {node, 0};
            while (path[depth - 1].next == path[depth - 1].node->numberOfChildren)
                if (--depth == 0) return root;
            above = path[depth - 1].node;
        }
    }
};

KTNODE *buildScene(const SceneContents &contents) {
    const Rollback rollback;
    Resources resources;
    const SceneNode *record = contents.firstNode();
    KTNODE *root = nullptr;
    bool isTooDeep;  // it is not: the file was checked
    if (buildMaterials(resources, contents.firstMaterial())) {
        root = TreeBuilder::build(nullptr, isTooDeep, [&record, &resources] {
            const SceneNode &read = *record;
            record = read.next;
            return buildNode(resources, read);
        });
    }
    if (!root) rollback.run();
    return root;
}

KTNODE *buildTrustedTree(const char *buffer, long *cursor, KTNODE *parent) {
    FaultScope scope(KT_CALL("KELTRA::recursiveLoad"));
    bool isTooDeep;
    KTNODE *root =
        TreeBuilder::build(parent, isTooDeep, [&] { return buildTrustedNode(scope, buffer, cursor); });
    if (!root) scope.fail(isTooDeep ? treeTooDeep() : newFault(KT_FAULT_OUT_OF_MEMORY));
    return root;
}

void bindSkins(KTNODE *root, KTNODE *node) {
    if (!root) return;
    BoneFinder finder(root);
    walkTree(node, [&finder](KTNODE *visited, unsigned int) {
        if (KTMESH *mesh = asTyped<KTMESH>(visited)) finder.bind(*mesh);
        return visited->numberOfChildren;
    });
}

}  // namespace keltra

KTNODE *KTNODE::load(const char *buffer, long *cursor) {
    keltra::FaultScope scope(KT_CALL("KTNODE::load"));
    keltra::PlainRecord record;
    const auto read = [&record](keltra::FieldReader &reader) { return readPlain(reader, record); };
    if (!keltra::readTrusted(scope, buffer, cursor, read)) return nullptr;
    KTNODE *node = buildPlain(record);
    if (!node) scope.fail(KT_FAULT_OUT_OF_MEMORY);
    return node;
}

KTNODE *KTLIGHT::load(const char *buffer, long *cursor) {
    keltra::FaultScope scope(KT_CALL("KTLIGHT::load"));
    keltra::LightRecord record;
    const auto read = [&record](keltra::FieldReader &reader) { return readLight(reader, record); };
    if (!keltra::readTrusted(scope, buffer, cursor, read)) return nullptr;
    KTNODE *light = buildLight(record);
    if (!light) scope.fail(KT_FAULT_OUT_OF_MEMORY);
    return light;
}
