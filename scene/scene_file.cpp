#include <keltra/engine.h>
#include <keltra/foundation.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

#include "formats/scene_record.h"
#include "foundation/block.h"
#include "foundation/file_bytes.h"
#include "math/fixed.h"
#include "scene/tree_walk.h"

using keltra::FieldReader;

namespace {

const char kNone[] = "[none]";
const char kNormalMapEnding[] = "_n.tga";
const std::size_t kNormalMapEndingLength = sizeof kNormalMapEnding - 1;

// What the file that `KELTRA::load` is reading is; otherwise records are taken to be of version 1.6a.
bool readingOldVersion = false;

// A record in a caller's buffer has no known end: it is trusted, up to the last address.
FieldReader trustingReader(const char *record) {
    const std::uintptr_t reach = UINTPTR_MAX - reinterpret_cast<std::uintptr_t>(record);
    return FieldReader(record, std::min<std::uintptr_t>(reach, PTRDIFF_MAX));
}

// Reads a record at the cursor with `read` and moves the cursor behind it; false leaves the cursor.
template <class Read>
bool readAt(const char *buffer, long *cursor, Read read) {
    if (!buffer || !cursor || *cursor < 0) return false;
    FieldReader reader = trustingReader(buffer + *cursor);
    if (!read(reader)) return false;
    *cursor += static_cast<long>(reader.position());
    return true;
}

void convertToFixed(const unsigned char *bytes, std::int32_t *fixed, std::size_t count) {
    float values[64];
    while (count > 0) {
        const std::size_t some = std::min<std::size_t>(count, 64);
        std::memcpy(values, bytes, some * sizeof(float));
        keltra::toFixed(values, fixed, some);
        bytes += some * sizeof(float);
        fixed += some;
        count -= some;
    }
}

template <class T>
T *copyToBlock(const unsigned char *bytes, std::size_t count) {
    T *block = static_cast<T *>(keltra::newBlock(count * sizeof(T)));
    if (block) std::memcpy(block, bytes, count * sizeof(T));
    return block;
}

// Offsets of the arrays in a mesh's data block, one behind the other from the vertices on. The face normals
// are floats and start at a multiple of four.
struct MeshLayout {
    std::size_t normals, uvs, faces, faceNormals, end;

    explicit MeshLayout(const keltra::MeshRecord &record) {
        normals = record.vertexCount * keltra::kVectorSize;
        uvs = 2 * normals;
        faces = uvs + record.uvCount * keltra::kUVSize;
        faceNormals = (faces + record.faceCount * keltra::kFaceSize + 3) & ~std::size_t{3};
        end = faceNormals + record.faceCount * keltra::kVectorSize;
    }
};

// The texture of that file; null when it cannot be read.
KTTEXTURE *acquireTexture(const char *name) {
    if (KTTEXTURE *known = KTTEXTURE::findByFilename(name)) return known;
    KTTEXTURE *texture = new (std::nothrow) KTTEXTURE;
    if (!texture || texture->load(name)) return texture;
    delete texture;
    return nullptr;
}

// The normal map's name is the texture's with its last six characters replaced, "stone_d.tga" gives
// "stone_n.tga". Meant as it is: "stone.tga" gives "sto_n.tga".
KTTEXTURE *acquireNormalMap(const char *textureName) {
    char name[keltra::kSceneNameSize];
    const std::size_t length = std::strlen(textureName);
    if (length < kNormalMapEndingLength || length >= sizeof name) return nullptr;
    std::memcpy(name, textureName, length - kNormalMapEndingLength);
    std::memcpy(name + length - kNormalMapEndingLength, kNormalMapEnding, sizeof kNormalMapEnding);
    if (!vnfFileExists(keltra::FilePath(KTTEXTURE::getPath(), name).text)) return nullptr;
    return acquireTexture(name);
}

KTSHADER *acquireShader(const char *name) {
    if (KTSHADER *known = KTSHADER::findByName(name)) return known;
    KTSHADER *shader = new (std::nothrow) KTSHADER;
    if (!shader) return nullptr;
    char vertexProgram[keltra::kSceneNameSize + 8], pixelProgram[sizeof vertexProgram];
    std::snprintf(vertexProgram, sizeof vertexProgram, "%sVS.glsl", name);
    std::snprintf(pixelProgram, sizeof pixelProgram, "%sPS.glsl", name);
    shader->load(vertexProgram, pixelProgram);
    shader->setName(name);
    return shader;
}

// A material that exists keeps its values; the textures and the shader of the record are loaded all the same,
// which applications use to bring in textures ahead of time.
bool buildMaterial(const keltra::MaterialRecord &record) {
    KTTEXTURE *texture = nullptr, *normalMap = nullptr;
    if (std::strcmp(record.texture, kNone) != 0) {
        texture = acquireTexture(record.texture);
        normalMap = acquireNormalMap(record.texture);
    }
    KTSHADER *shader = std::strcmp(record.shader, kNone) != 0 ? acquireShader(record.shader) : nullptr;
    if (KTMATERIAL::findByName(record.name)) return true;
    KTMATERIAL *material = new (std::nothrow) KTMATERIAL;
    if (!material) return false;
    material->setName(record.name);
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

bool buildMaterials(FieldReader &reader, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
        keltra::MaterialRecord record;
        if (!readMaterial(reader, record) || !buildMaterial(record)) return false;
    }
    return true;
}

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
    while (object) {
        T *next = object->getNext();
        if (kept > 0)
            --kept;
        else
            destroy(object);
        object = next;
    }
}

// A node goes before its children, which then no longer look for it.
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

KTNODE *loadNode(const char *buffer, long *cursor) {
    if (!buffer || !cursor || *cursor < 0) return nullptr;
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
            node = KTMESH::load(buffer, &body, readingOldVersion);
            break;
    }
    if (node) *cursor = body;
    return node;
}

}  // namespace

// --- the engine's loaders

KTNODE *KELTRA::load(const char *fileName) {
    if (!fileName) return nullptr;
    const keltra::FilePath path(ktePath, fileName);
    if (!vnfFileExists(path.text)) return nullptr;
    if (std::strstr(path.text, ".xml") || std::strstr(path.text, ".XML")) return loadXML(path.text);

    const keltra::FileBytes file(path.text);
    keltra::SceneFault fault;
    if (!keltra::checkScene(file.data(), file.size(), fault)) return nullptr;

    const Rollback rollback;
    FieldReader reader(file.data(), file.size());
    keltra::SceneHeader header;
    KTNODE *root = nullptr;
    if (readHeader(reader, header) && buildMaterials(reader, header.materials)) {
        long cursor = static_cast<long>(reader.position());
        readingOldVersion = header.oldVersion;
        root = recursiveLoad(file.data(), &cursor, nullptr);
        readingOldVersion = false;
    }
    if (!root) {
        rollback.run();
        return nullptr;
    }
    recursiveInitBones(root, root);
    return root;
}

// In spite of its name it keeps its path in an array, like every walk: the device's stack is small.
KTNODE *KELTRA::recursiveLoad(const char *buffer, long *cursor, KTNODE *parent) {
    struct Step {
        KTNODE *node;
        unsigned int next, end;
    };
    Step path[keltra::kMaxTreeDepth];
    unsigned int depth = 0;
    KTNODE *root = nullptr;
    for (KTNODE *above = parent;;) {
        KTNODE *node = depth < keltra::kMaxTreeDepth ? loadNode(buffer, cursor) : nullptr;
        if (!root) root = node;
        // The reader stored the number of children only.
        if (!node || !node->allocateChildren(node->numberOfChildren)) {
            destroyNodesFrom(root);
            return nullptr;
        }
        node->parent = above;
        // A caller's parent does not list the root, so it would not tell it when it is destroyed.
        if (depth == 0 && above) node->borrow(nullptr);
        if (depth > 0) {
            Step &step = path[depth - 1];
            node->slot = step.next;
            above->children[step.next++] = node;
        }
        path[depth++] = {node, 0, node->numberOfChildren};
        while (path[depth - 1].next == path[depth - 1].end)
            if (--depth == 0) return root;
        above = path[depth - 1].node;
    }
}

bool KELTRA::recursiveInitBones(KTNODE *root, KTNODE *node) {
    keltra::walkTree(node, [root](KTNODE *visited, unsigned int) {
        if (visited->type == KT_MESH) static_cast<KTMESH *>(visited)->resetBones(root);
        return visited->numberOfChildren;
    });
    return true;
}

// --- the readers of one record

KTNODE *KTNODE::load(const char *buffer, long *cursor) {
    keltra::PlainRecord record;
    if (!readAt(buffer, cursor, [&](FieldReader &reader) { return readPlain(reader, record); }))
        return nullptr;
    KTNODE *node = new (std::nothrow) KTNODE;
    if (!node) return nullptr;
    node->setAuxId(record.auxId);
    node->setName(record.name);
    node->setPosition(R3XVECTOR3D(record.position));
    node->setOrigin(R3XVECTOR3D(record.origin));
    node->numberOfChildren = record.children;
    return node;
}

KTNODE *KTLIGHT::load(const char *buffer, long *cursor) {
    keltra::LightRecord record;
    if (!readAt(buffer, cursor, [&](FieldReader &reader) { return readLight(reader, record); }))
        return nullptr;
    KTLIGHT *light = new (std::nothrow) KTLIGHT;
    if (!light) return nullptr;
    const float r = record.color[0], g = record.color[1], b = record.color[2];
    light->setLightType(record.lightType);
    light->setName(record.name);
    light->setPosition(R3XVECTOR3D(record.position));
    light->setDirection(R3XVECTOR3D(record.direction));
    light->setTarget(light->position + light->direction);
    light->setCutOff(record.cutOff);
    // The alphas of 0.2 and 0.1 are meant: the shares count for all four components.
    light->setAmbient(0.2f * r, 0.2f * g, 0.2f * b, 0.2f);
    light->setDiffuse(r, g, b, 1.0f);
    light->setSpecular(0.1f * r, 0.1f * g, 0.1f * b, 0.1f);
    light->numberOfChildren = record.children;
    return light;
}

KTNODE *KTMESH::load(const char *buffer, long *cursor, bool oldVersion) {
    keltra::MeshRecord record;
    if (!readAt(buffer, cursor, [&](FieldReader &reader) { return readMesh(reader, oldVersion, record); }))
        return nullptr;
    KTMESH *mesh = new (std::nothrow) KTMESH;
    if (!mesh) return nullptr;
    if (!mesh->build(record)) {
        delete mesh;
        return nullptr;
    }
    return mesh;
}

bool KTMESH::build(const keltra::MeshRecord &record) {
    setName(record.name);
    setPosition(R3XVECTOR3D(record.position));
    setRotation(R3XVECTOR3D(record.rotation));
    setOrigin(R3XVECTOR3D(record.origin));
    setMaterial(KTMATERIAL::findByName(record.material));
    radius = record.radius;
    minimum.set(record.minimum);
    maximum.set(record.maximum);
    hidden = record.hidden;
    if (!buildGeometry(record) || !buildSkin(record)) return false;
    numberOfChildren = record.children;
    if (isSkinned() && material) material->setSkinning(true);
    return true;
}

bool KTMESH::buildGeometry(const keltra::MeshRecord &record) {
    const MeshLayout layout(record);
    if (layout.end == 0) return true;
    char *block = static_cast<char *>(keltra::newBlock(layout.end));
    if (!block) return false;
    dataBlock = block;
    numberOfVertices = static_cast<std::uint16_t>(record.vertexCount);
    numberOfUVs = static_cast<std::uint16_t>(record.uvCount);
    numberOfFaces = static_cast<std::uint16_t>(record.faceCount);
    if (numberOfVertices) {
        vertices = reinterpret_cast<std::int32_t *>(block);
        vertexNormals = reinterpret_cast<std::int32_t *>(block + layout.normals);
        convertToFixed(record.vertices, vertices, record.vertexCount * 3);
        convertToFixed(record.normals, vertexNormals, record.vertexCount * 3);
    }
    if (numberOfUVs) {
        // Only one pair for each vertex is converted: meant, no face reaches the pairs beyond, which stay as
        // they were.
        uvs = reinterpret_cast<std::int32_t *>(block + layout.uvs);
        std::memcpy(uvs, record.uvs, record.uvCount * keltra::kUVSize);
        convertToFixed(record.uvs, uvs, record.vertexCount * 2);
    }
    if (numberOfFaces) {
        faces = reinterpret_cast<std::uint16_t *>(block + layout.faces);
        faceNormals = reinterpret_cast<float *>(block + layout.faceNormals);
        std::memcpy(faces, record.faces, record.faceCount * keltra::kFaceSize);
        std::memcpy(faceNormals, record.faceNormals, record.faceCount * keltra::kVectorSize);
    }
    return true;
}

bool KTMESH::buildSkin(const keltra::MeshRecord &record) {
    if (record.influenceCount == 0) return true;
    const std::size_t influences = std::size_t(record.vertexCount) * record.influenceCount;
    void *boneBlock = keltra::newBlock(record.boneCount * sizeof(KTBONE));
    if (!boneBlock) return false;
    bones = static_cast<KTBONE *>(boneBlock);
    influenceBones = copyToBlock<std::uint8_t>(record.influenceBones, influences);
    influenceWeights = copyToBlock<float>(record.influenceWeights, influences);
    influenceBonesFloat = static_cast<float *>(keltra::newBlock(influences * sizeof(float)));
    if (!influenceBones || !influenceWeights || !influenceBonesFloat) return false;
    std::copy_n(influenceBones, influences, influenceBonesFloat);
    const char *name = record.boneNames;
    for (unsigned int b = 0; b < record.boneCount; ++b) {
        KTBONE *bone = new (bones + b) KTBONE;
        bone->node = nullptr;
        const std::size_t size = std::strlen(name) + 1;
        std::memcpy(bone->name, name, size);
        name += size;
    }
    numberOfInfluences = static_cast<std::uint16_t>(record.influenceCount);
    numberOfBones = static_cast<std::uint16_t>(record.boneCount);
    return KTSHADER::useSkinning() || makeSkinnedArrays();
}
