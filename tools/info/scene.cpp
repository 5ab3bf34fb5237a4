// SPDX-License-Identifier: Zlib
#include "formats/limits.h"
#include "formats/scene_faults.h"
#include "formats/scene_record.h"
#include "tools/info/kinds.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string_view>

namespace keltra::info {

namespace {

// More nodes than the engine has identifiers for are not listed.
constexpr std::size_t kMostListed = kLargestId;
constexpr char kNone[] = "[none]";

std::string lightKind(unsigned int type) {
    switch (type) {
        case kPointLight:
            return "point";
        case kDirectionalLight:
            return "directional";
        case kSpotLight:
            return "spot";
        default:
            return std::to_string(type);
    }
}

// Collects the records that the engine's parser visits.
class Description : public SceneVisitor {
   public:
    Description(const Source &source, Inspection &result) : source(source), result(result) {}

    void header(const SceneHeader &header) override {
        result.fields["version"] = header.oldVersion ? "1.5a" : "1.6a";
        expected = header.materials;
        hasHeader = true;
    }

    void material(const MaterialRecord &record) override {
        ++materialCount;
        if (!materials.insert(record.name).second)
            note(result, "there is more than one material " + quoted(record.name) + "; the first counts");
        if (*record.name == '\0')
            note(result, "material[" + std::to_string(materialCount - 1) + "] has no name");
        if (std::strcmp(record.texture, kNone) != 0 && textures.insert(record.texture).second)
            addMissing(result, source, record.texture);
        if (materialList.size() >= kMostListed) return;
        materialList.push_back({{"name", record.name},
                                {"texture", record.texture},
                                {"shader", record.shader},
                                {"ambient", numbers(record.ambient)},
                                {"diffuse", numbers(record.diffuse)},
                                {"specular", numbers(record.specular)},
                                {"emission", numbers(record.emission)},
                                {"transparency", number(record.transparency)},
                                {"shininess", number(record.shininess)}});
    }

    void plain(const PlainRecord &record, unsigned int level) override {
        Fields node = begin("node", record.name, record.children, level);
        node["position"] = numbers(record.position);
        node["origin"] = numbers(record.origin);
        node["auxId"] = record.auxId;
        list(std::move(node));
        others.insert(record.name);
    }

    void light(const LightRecord &record, unsigned int level) override {
        Fields node = begin("light", record.name, record.children, level);
        node["position"] = numbers(record.position);
        node["light"] = lightKind(record.lightType);
        node["colour"] = numbers(record.color);
        node["direction"] = numbers(record.direction);
        node["cutOff"] = number(record.cutOff);
        list(std::move(node));
        others.insert(record.name);
        ++lights;
    }

    void mesh(const MeshRecord &record, unsigned int level) override {
        Fields node = begin("mesh", record.name, record.children, level);
        node["position"] = numbers(record.position);
        node["rotation"] = numbers(record.rotation);
        node["origin"] = numbers(record.origin);
        node["vertices"] = record.vertexCount;
        node["textureCoordinates"] = record.uvCount;
        node["triangles"] = record.faceCount;
        node["influences"] = record.influenceCount;
        node["bones"] = record.boneCount;
        node["material"] = record.material;
        node["hidden"] = record.hidden;
        node["radius"] = number(record.radius);
        node["minimum"] = numbers(record.minimum);
        node["maximum"] = numbers(record.maximum);
        if (record.boneCount) node["boneNames"] = boneNames(record);
        list(std::move(node));
        meshNames.insert(record.name);
        count(record);
        if (*record.material && !materials.count(record.material) &&
            unknownMaterials.insert(record.material).second)
            addUnknownMaterial(record);
    }

    void end(std::size_t offset) override {
        if (offset < source.size)
            note(result, counted(source.size - offset, "byte") + " after the tree, not read");
        noteBones();
        if (unnamed) note(result, counted(unnamed, "node") + " without a name");
        if (skins > kMaxSkins)
            note(result, std::to_string(skins) + " skinned meshes; a frame draws " +
                             std::to_string(unsigned{kMaxSkins}));
    }

    void finish() {
        if (!hasHeader) return;
        result.fields["totals"] = {{"materials", materialCount}, {"nodes", nodes},         {"meshes", meshes},
                                   {"lights", lights},           {"skins", skins},         {"bones", bones},
                                   {"vertices", vertices},       {"triangles", triangles}, {"depth", depth},
                                   {"bytes", source.size}};
        result.fields["materials"] = std::move(materialList);
        result.fields["nodes"] = std::move(nodeList);
        if (nodes > kMostListed)
            note(result, "only the first " + std::to_string(kMostListed) +
                             " nodes are listed, and there are no identifiers for more");
    }

    // The next record, which is the one with the fault.
    std::string next() const {
        if (!hasHeader) return "";
        if (materialCount < expected) return "material[" + std::to_string(materialCount) + "].";
        return "node[" + std::to_string(nodes) + "].";
    }

   private:
    Fields begin(const char *type, const char *name, unsigned int children, unsigned int level) {
        ++nodes;
        depth = std::max(depth, level + 1);
        unnamed += *name == '\0';
        return {{"level", level}, {"name", name}, {"type", type}, {"children", children}};
    }

    void addUnknownMaterial(const MeshRecord &record) {
        NearestName nearest(record.material);
        // As many as the engine compares: a file may have any number of wrong names and of right ones.
        constexpr std::size_t kMostCompared = 64;
        if (unknownMaterials.size() <= kMostCompared)
            for (std::string_view known : materials) nearest.offer(known.data());
        addFault(result, unknownMaterial(record.name, nearest));
    }

    void list(Fields &&node) {
        if (nodeList.size() < kMostListed) nodeList.push_back(std::move(node));
    }

    void count(const MeshRecord &record) {
        ++meshes;
        skins += record.influenceCount != 0;
        bones += record.boneCount;
        vertices += record.vertexCount;
        triangles += record.faceCount;
    }

    Fields boneNames(const MeshRecord &record) {
        Fields names = Fields::array();
        const char *name = record.boneNames;
        for (unsigned int i = 0; i < record.boneCount; ++i, name += std::strlen(name) + 1) {
            names.push_back(name);
            wanted.emplace(name, record.name);
        }
        return names;
    }

    void noteBones() {
        for (const auto &[bone, mesh] : wanted) {
            if (meshNames.count(bone)) continue;
            if (others.count(bone))
                note(result, "the bone " + quoted(std::string(bone)) + " is no mesh and moves nothing");
            else
                addFault(result, unknownBone(mesh, bone.data()));
        }
    }

    const Source &source;
    Inspection &result;
    bool hasHeader = false;
    unsigned int expected = 0, materialCount = 0, depth = 0;
    std::size_t nodes = 0, meshes = 0, lights = 0, skins = 0, bones = 0, vertices = 0, triangles = 0,
                unnamed = 0;
    Fields materialList = Fields::array(), nodeList = Fields::array();
    // Names in the file's own bytes.
    std::set<std::string_view> materials, textures, unknownMaterials, meshNames, others;
    std::map<std::string_view, const char *> wanted;  // bones, each with a mesh
};

}  // namespace

void inspectScene(const Source &source, Inspection &result) {
    Description description(source, result);
    Fault fault;
    result.good = checkScene(source.bytes, source.size, fault, &description);
    if (!result.good) setFlaw(result, fault, description.next());
    description.finish();
}

}  // namespace keltra::info
