// SPDX-License-Identifier: Zlib
#include "tools/convert/scene_builder.h"

#include "formats/limits.h"
#include "tools/convert/geometry.h"
#include "tools/convert/node_setup.h"
#include "tools/convert/properties.h"
#include "tools/convert/simplify.h"
#include "tools/convert/two_sided.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <optional>

namespace keltra::convert {
namespace {

constexpr double kNoAngle = 1e-5;    // degrees
constexpr double kNearEnough = 1.1;  // to the number of triangles that is asked for

double largest(const Vector &v) { return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}); }

formats::Node meshNode(const std::string &name, formats::MeshData mesh, const std::string &material) {
    formats::Node node;
    node.kind = formats::NodeKind::kMesh;
    node.name = name;
    node.mesh = std::move(mesh);
    node.mesh.material = material;
    return node;
}

formats::Node lightNode(const std::string &name, const aiLight &light, const Matrix &bake) {
    formats::Node node;
    node.kind = formats::NodeKind::kLight;
    node.name = name;
    const Vector at(light.mPosition.x, light.mPosition.y, light.mPosition.z);
    const Vector to(light.mDirection.x, light.mDirection.y, light.mDirection.z);
    node.position = narrowed(bake * at);
    Vector direction = rotated(bake, to);
    if (!(direction.Length() > 0.0)) direction = Vector(0.0, 0.0, -1.0);
    node.light.direction = narrowed(direction.Normalize());
    node.light.type = light.mType == aiLightSource_SPOT          ? formats::LightType::kSpot
                      : light.mType == aiLightSource_DIRECTIONAL ? formats::LightType::kDirectional
                                                                 : formats::LightType::kPoint;
    // The cone's whole angle, in radians; GL takes half of it, up to 90 degrees.
    if (light.mType == aiLightSource_SPOT)
        node.light.cutOff = static_cast<float>(std::clamp(light.mAngleOuterCone * kDegrees * 0.5, 1.0, 90.0));
    const aiColor3D &color = light.mColorDiffuse;
    const float brightest = std::max({color.r, color.g, color.b});
    const float factor = brightest > 1.0f ? 1.0f / brightest : 1.0f;
    node.light.color = {color.r * factor, color.g * factor, color.b * factor};
    if (!std::isfinite(brightest)) node.light.color = {1.0f, 1.0f, 1.0f};
    return node;
}

// What was done to meshes after they were built.
struct MeshPasses {
    std::uint64_t before = 0, after = 0;  // triangles, of those that were simplified
    double wanted = 0.0;                  // of them
    float deviation = 0.0f;
    std::uint64_t twoSided = 0, closed = 0, oneSided = 0;  // meshes of two-sided materials
    std::uint64_t backs = 0;                               // triangles
    std::uint64_t joined = 0;                              // meshes that became parts of others
};

class Builder {
   public:
    Builder(const aiScene &scene, Rig &rig, const Materials &materials, const Options &options,
            Report &report, const Progress &progress)
        : scene(scene),
          rig(rig),
          materials(materials),
          options(options),
          report(report),
          progress(progress),
          setup(options, report),
          atJoint(rig.joints.size()),
          inPlace(rig.joints.size()),
          isParent(rig.joints.size()) {
        for (const SourceNode &source : rig.sources)
            properties.push_back(nodeProperties(*source.node, report));
        for (const Joint &joint : rig.joints)
            if (joint.parent != kNone) isParent[joint.parent] = true;
        for (const RigidMesh &rigid : rig.rigidMeshes) faces += scene.mMeshes[rigid.mesh]->mNumFaces;
        for (const Skin &skin : rig.skins) faces += scene.mMeshes[skin.mesh]->mNumFaces;
        share = shareToKeep();
    }

    void build(formats::Node &root);

   private:
    double shareToKeep() const;
    MeshBuilder newMesh();
    std::vector<formats::MeshData> finish(MeshBuilder &builder, unsigned mesh, bool alone);
    void simplifyAll(std::vector<formats::MeshData> &meshes, bool alone);
    void addBacks(std::vector<formats::MeshData> &meshes);
    void reportPasses();
    std::vector<std::vector<RigidMesh>> rigidGroups() const;
    void addRigidMeshes();
    bool joins(const Skin &skin, const Skin &first, bool tooMany) const;
    void addSkins();
    void addLights();
    void addLight(const aiLight &light);
    bool canBeLight(unsigned joint, const Matrix &local, const aiLight &light) const;
    void assemble(formats::Node &root);
    Matrix localOf(unsigned joint) const;
    formats::Node jointNode(unsigned joint) const;
    void count(const formats::MeshData &mesh);
    const std::string &materialOf(unsigned mesh) const;
    unsigned uvChannelOf(unsigned mesh) const;
    UvPlace uvPlaceOf(unsigned mesh) const;
    void reportRejects();

    const aiScene &scene;
    Rig &rig;
    const Materials &materials;
    const Options &options;
    Report &report;
    const Progress &progress;
    std::size_t faces = 0, facesDone = 0;
    double share = 1.0;  // of the triangles to keep
    Rejects rejects;
    MeshPasses passes;
    NodeSetup setup;
    std::vector<std::vector<formats::Node>> atJoint;    // meshes and lights of each
    std::vector<std::optional<formats::Node>> inPlace;  // the light that a joint is, instead of holding it
    std::vector<NodeProperties> properties;             // of the model's nodes
    std::vector<bool> isParent;
    std::vector<formats::Node> atRoot, skins;
};

const std::string &Builder::materialOf(unsigned mesh) const {
    static const std::string none;
    const unsigned index = scene.mMeshes[mesh]->mMaterialIndex;
    return index < materials.materials.size() ? materials.materials[materials.same[index]].name : none;
}

unsigned Builder::uvChannelOf(unsigned mesh) const {
    const unsigned index = scene.mMeshes[mesh]->mMaterialIndex;
    return index < materials.uvChannel.size() ? materials.uvChannel[index] : 0;
}

UvPlace Builder::uvPlaceOf(unsigned mesh) const {
    const unsigned index = scene.mMeshes[mesh]->mMaterialIndex;
    return index < materials.uvPlace.size() ? materials.uvPlace[index] : UvPlace();
}

void Builder::count(const formats::MeshData &mesh) {
    ++report.meshes;
    report.vertices += mesh.vertices.size();
    report.triangles += mesh.faces.size();
    report.meshBones = std::max<std::uint64_t>(report.meshBones, mesh.boneNames.size());
}

MeshBuilder Builder::newMesh() {
    return MeshBuilder([this](std::size_t more) {
        facesDone += more;
        if (progress) progress("geometry", double(facesDone) / double(faces));
    });
}

double Builder::shareToKeep() const {
    const std::uint64_t budget = options.budget.triangles;
    if (options.simplify > 0.0 && options.simplify < 1.0) return options.simplify;
    if (options.simplify >= 1.0) return std::min(1.0, options.simplify / double(faces));
    return options.fit && budget > 0 && faces > budget ? double(budget) / double(faces) : 1.0;
}

std::vector<formats::MeshData> Builder::finish(MeshBuilder &builder, unsigned mesh, bool alone) {
    std::vector<formats::MeshData> meshes = builder.finish(rig.joints);
    if (share < 1.0) simplifyAll(meshes, alone && meshes.size() == 1);
    if (mesh < scene.mNumMeshes && scene.mMeshes[mesh]->mMaterialIndex < materials.twoSided.size() &&
        materials.twoSided[scene.mMeshes[mesh]->mMaterialIndex])
        addBacks(meshes);
    return meshes;
}

void Builder::simplifyAll(std::vector<formats::MeshData> &meshes, bool alone) {
    for (formats::MeshData &mesh : meshes) {
        passes.wanted += double(mesh.faces.size()) * share;
        passes.before += mesh.faces.size();
        passes.deviation = std::max(passes.deviation, simplify(mesh, share, !alone));
        passes.after += mesh.faces.size();
        setBounds(mesh);
    }
}

void Builder::addBacks(std::vector<formats::MeshData> &meshes) {
    for (std::size_t m = 0; m < meshes.size(); ++m) {
        if (options.backSides == BackSides::kNone) {
            ++passes.oneSided;
        } else if (options.backSides == BackSides::kOpen && isClosed(meshes[m])) {
            ++passes.closed;
        } else {
            const std::size_t count = meshes.size();
            passes.backs += meshes[m].faces.size();
            ++passes.twoSided;
            addBackSides(meshes, m);
            m += meshes.size() - count;
        }
    }
}

void Builder::reportPasses() {
    report.change("two-sided meshes", passes.twoSided,
                  std::to_string(passes.backs) + " triangles were added for their back sides");
    report.change("two-sided meshes", passes.closed,
                  "they are closed: their back sides are left out, without --two-sided all");
    report.drop("back sides of meshes", passes.oneSided, "--two-sided none");
    report.change("meshes", passes.joined, "they became parts of others of their node and material");
    if (passes.before == 0) return;
    char text[160];
    std::snprintf(text, sizeof text, "now %llu of %llu; a surface moved by up to %.2g %% of its mesh's size",
                  static_cast<unsigned long long>(passes.after),
                  static_cast<unsigned long long>(passes.before), 100.0 * double(passes.deviation));
    report.change("triangles", passes.before - passes.after, text);
    if (double(passes.after) > passes.wanted * kNearEnough + 1.0)
        report.warn("its shapes allow no fewer than " + std::to_string(passes.after) +
                    " triangles without tearing");
}

// Each alone or, with an atlas, those of a node that have the same material.
std::vector<std::vector<RigidMesh>> Builder::rigidGroups() const {
    std::vector<std::vector<RigidMesh>> groups;
    std::map<std::pair<unsigned, std::string>, std::size_t> known;
    for (const RigidMesh &rigid : rig.rigidMeshes) {
        const auto found = options.atlas ? known.find({rigid.joint, materialOf(rigid.mesh)}) : known.end();
        if (found != known.end()) {
            groups[found->second].push_back(rigid);
            continue;
        }
        if (options.atlas) known[{rigid.joint, materialOf(rigid.mesh)}] = groups.size();
        groups.push_back({rigid});
    }
    return groups;
}

void Builder::addRigidMeshes() {
    for (const std::vector<RigidMesh> &group : rigidGroups()) {
        const unsigned joint = group[0].joint, first = group[0].mesh;
        MeshBuilder builder = newMesh();
        for (const RigidMesh &rigid : group)
            builder.add(*scene.mMeshes[rigid.mesh], rigid.bake, nullptr, uvChannelOf(rigid.mesh), rejects,
                        uvPlaceOf(rigid.mesh));
        passes.joined += group.size() - 1;
        const NodeProperties &own = properties[rig.joints[joint].source];
        const bool alone = rig.sources[rig.joints[joint].source].node->mNumMeshes == group.size();
        for (formats::MeshData &mesh : finish(builder, first, alone)) {
            if (own.helper.has_value()) {
                setup.addHelperMesh(joint, mesh);
                continue;
            }
            count(mesh);
            own.applyTo(mesh);
            atJoint[joint].push_back(meshNode("", std::move(mesh), materialOf(first)));
        }
    }
}

// Whether a skin becomes a part of another one's mesh.
bool Builder::joins(const Skin &skin, const Skin &first, bool tooMany) const {
    if (materialOf(skin.mesh) != materialOf(first.mesh)) return false;
    return tooMany || (options.atlas && skin.source == first.source);
}

// The engine draws a limited number of skins per frame: if the model has more, skins of the same material are
// joined.
void Builder::addSkins() {
    const bool joined = rig.skins.size() > kMaxSkins;
    std::vector<bool> done(rig.skins.size());
    for (std::size_t s = 0; s < rig.skins.size(); ++s) {
        if (done[s]) continue;
        const Skin &first = rig.skins[s];
        MeshBuilder builder = newMesh();
        std::size_t parts = 0;
        for (std::size_t other = s; other < rig.skins.size(); ++other) {
            const Skin &skin = rig.skins[other];
            if (done[other] || (other != s && !joins(skin, first, joined))) continue;
            builder.add(*scene.mMeshes[skin.mesh], skin.bake, &skin, uvChannelOf(skin.mesh), rejects,
                        uvPlaceOf(skin.mesh));
            done[other] = true;
            ++parts;
        }
        if (!joined) passes.joined += parts - 1;
        const bool alone = !joined && rig.sources[first.source].node->mNumMeshes == parts;
        for (formats::MeshData &mesh : finish(builder, first.mesh, alone)) {
            count(mesh);
            properties[first.source].applyTo(mesh);
            skins.push_back(
                meshNode(rig.names.take(first.name, "skin"), std::move(mesh), materialOf(first.mesh)));
            setup.applySkin(properties[first.source], skins.back().name);
        }
    }
    report.skins = static_cast<unsigned>(skins.size());
    if (joined)
        report.note(std::to_string(rig.skins.size()) + " skins were joined by material into " +
                    std::to_string(skins.size()));
    if (skins.size() > kMaxSkins)
        report.warn("it has " + std::to_string(skins.size()) + " skins; the engine draws only " +
                    std::to_string(kMaxSkins) + " per frame");
}

// A record of a light has a place but no turn: the joints below must not need one, nor stand off the light.
bool Builder::canBeLight(unsigned index, const Matrix &local, const aiLight &light) const {
    const Joint &joint = rig.joints[index];
    if (!atJoint[index].empty() || joint.isBone || joint.isPosed) return false;
    const aiVector3D &at = light.mPosition;
    return !isParent[index] ||
           (largest(eulerAngles(local)) <= kNoAngle && at.x == 0.0f && at.y == 0.0f && at.z == 0.0f);
}

// In the place of its node where that holds nothing else, so that it keeps the node's name.
void Builder::addLight(const aiLight &light) {
    const std::string name = light.mName.C_Str();
    const int source = rig.findSource(name);
    const int joint = source == kNone ? kNone : rig.sources[source].joint;
    const NodeProperties *own = source == kNone ? nullptr : &properties[source];
    if (joint == kNone) {
        const Matrix place = source == kNone ? Matrix() : rig.sources[source].bind;
        atRoot.push_back(lightNode(rig.names.take(name, "light"), light, place));
        setup.applyLight(light, own, atRoot.back().name);
        return;
    }
    const Matrix bake = inverse(rig.joints[joint].frame) * rig.sources[source].bind;
    const Matrix local = localOf(joint);
    const int above = rig.joints[joint].parent;
    std::vector<formats::Node> &beside =
        inPlace[joint] ? (above == kNone ? atRoot : atJoint[above]) : atJoint[joint];
    if (!inPlace[joint] && rig.joints[joint].source == source &&
        canBeLight(static_cast<unsigned>(joint), local, light)) {
        inPlace[joint] = lightNode(rig.joints[joint].name, light, local * bake);
        setup.applyLight(light, own, rig.joints[joint].name);
        return;
    }
    beside.push_back(lightNode(rig.names.take(name, "light"), light, inPlace[joint] ? local * bake : bake));
    setup.applyLight(light, own, beside.back().name);
}

void Builder::addLights() {
    std::uint64_t other = 0;
    for (unsigned i = 0; i < scene.mNumLights; ++i) {
        const aiLight &light = *scene.mLights[i];
        const bool known = light.mType == aiLightSource_POINT || light.mType == aiLightSource_SPOT ||
                           light.mType == aiLightSource_DIRECTIONAL;
        if (!known) {
            ++other;
            continue;
        }
        ++report.lights;
        addLight(light);
    }
    report.drop("lights", other, "GL has point, spot and directional lights only");
}

// A joint's place and turn above its parent.
Matrix Builder::localOf(unsigned index) const {
    const Joint &joint = rig.joints[index];
    return joint.parent == kNone ? joint.frame : inverse(rig.joints[joint.parent].frame) * joint.frame;
}

// The joint's node, without meshes and children.
formats::Node Builder::jointNode(unsigned index) const {
    if (inPlace[index]) return *inPlace[index];
    const Joint &joint = rig.joints[index];
    const Matrix local = localOf(index);
    const Vector angles = eulerAngles(local);
    const bool turns = largest(angles) > kNoAngle;
    formats::Node node;
    node.name = joint.name;
    node.position = narrowed(translationOf(local));
    // Only mesh records have rotations, and only meshes can be bones.
    if (!turns && !joint.isBone && !joint.isPosed) return node;
    node.kind = formats::NodeKind::kMesh;
    node.mesh.rotation = narrowed(angles);
    node.mesh.hidden = true;
    return node;
}

// Nodes own their children, so the tree is built from the leaves.
void Builder::assemble(formats::Node &root) {
    formats::Node skeleton;
    skeleton.name = kSkeletonRoot;
    std::vector<std::vector<formats::Node>> below(rig.joints.size());
    std::vector<formats::Node> outside;
    for (std::size_t j = rig.joints.size(); j-- > 0;) {
        const Joint &joint = rig.joints[j];
        formats::Node node = jointNode(static_cast<unsigned>(j));
        std::vector<formats::Node> &attached = atJoint[j];
        std::size_t taken = 0;
        if (!attached.empty() && attached[0].kind == formats::NodeKind::kMesh) {
            const formats::Vec3 rotation = node.mesh.rotation;
            node.kind = formats::NodeKind::kMesh;
            node.mesh = std::move(attached[0].mesh);
            node.mesh.rotation = rotation;
            taken = 1;
        }
        if (joint.source != kNone) setup.apply(static_cast<unsigned>(j), properties[joint.source], node);
        for (std::size_t i = taken; i < attached.size(); ++i) {
            if (attached[i].name.empty()) attached[i].name = rig.names.take(joint.name, "mesh");
            node.children.push_back(std::move(attached[i]));
        }
        std::move(below[j].rbegin(), below[j].rend(), std::back_inserter(node.children));
        if (node.children.size() > kMaxCount)
            throw Refusal("a node has more than " + std::to_string(kMaxCount) + " children");
        std::vector<formats::Node> &above =
            joint.parent != kNone ? below[joint.parent] : (joint.underRoot ? skeleton.children : outside);
        above.push_back(std::move(node));
    }
    std::reverse(skeleton.children.begin(), skeleton.children.end());
    std::move(skins.begin(), skins.end(), std::back_inserter(skeleton.children));
    if (!skeleton.children.empty()) root.children.push_back(std::move(skeleton));
    std::move(outside.rbegin(), outside.rend(), std::back_inserter(root.children));
    std::move(atRoot.begin(), atRoot.end(), std::back_inserter(root.children));
    if (root.children.size() > kMaxCount)
        throw Refusal("its root has more than " + std::to_string(kMaxCount) + " children");
}

void Builder::reportRejects() {
    report.drop("triangles", rejects.degenerate, "they have no area");
    report.drop("triangles", rejects.notFinite, "a coordinate is not a finite number");
    report.drop("triangles", rejects.badIndex, "they refer to vertices that do not exist");
    if (rejects.insideOut > 0)
        report.note("the normals of " + std::to_string(rejects.insideOut) +
                    (rejects.insideOut == 1 ? " mesh" : " meshes") +
                    " pointed away from the triangles' front sides; one of the two was flipped");
    report.change("texture coordinates", rejects.badUV, "they were not finite, or beyond 16384");
    report.drop("lines and points", rejects.linesAndPoints, "the engine draws triangles");
}

void Builder::build(formats::Node &root) {
    addRigidMeshes();
    addSkins();
    addLights();
    assemble(root);
    setup.finish();
    reportRejects();
    reportPasses();
    if (report.meshes + report.lights > kMaxElements)
        report.warn("it has " + std::to_string(report.meshes + report.lights) +
                    " meshes and lights; the engine draws " + std::to_string(kMaxElements) + " per frame");
}

std::uint64_t countNodes(const formats::Node &node) {
    std::uint64_t count = 1;
    for (const formats::Node &child : node.children) count += countNodes(child);
    return count;
}

}  // namespace

formats::Scene buildScene(const aiScene &scene, Rig &rig, const Materials &materials, const Options &options,
                          Report &report, const Progress &progress) {
    formats::Scene built;
    for (unsigned m = 0; m < materials.materials.size(); ++m)
        if (materials.same[m] == m) built.materials.push_back(materials.materials[m]);
    if (built.materials.size() > kMaxCount)
        throw Refusal("it has more than " + std::to_string(kMaxCount) + " materials");
    Builder(scene, rig, materials, options, report, progress).build(built.root);
    // Last, so that the model's own names are kept: animations find nodes by them.
    built.root.name = rig.names.take(options.name, "model");
    report.materials = static_cast<unsigned>(built.materials.size());
    report.nodes = static_cast<unsigned>(countNodes(built.root));
    report.bones = static_cast<unsigned>(
        std::count_if(rig.joints.begin(), rig.joints.end(), [](const Joint &j) { return j.isBone; }));
    return built;
}

}  // namespace keltra::convert
