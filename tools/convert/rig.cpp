// SPDX-License-Identifier: Zlib
#include "tools/convert/rig.h"

#include "tools/convert/options.h"
#include "tools/convert/source_format.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace keltra::convert {
namespace {

constexpr int kMaxDepth = 26;             // of joints: GL has 32 matrices, some for camera and roots
constexpr std::size_t kMaxNodes = 50000;  // the engine has 65535 identifiers
constexpr double kScaleKeysDiffer = 1e-4;

bool changesScale(const aiNodeAnim &channel) {
    for (unsigned i = 1; i < channel.mNumScalingKeys; ++i) {
        const aiVector3D &first = channel.mScalingKeys[0].mValue;
        if (!((channel.mScalingKeys[i].mValue - first).Length() <= kScaleKeysDiffer * first.Length()))
            return true;
    }
    return false;
}

// All nodes in the model's order, each with the node that lists it as child.
std::vector<std::pair<const aiNode *, const aiNode *>> listNodes(const aiNode *root) {
    std::vector<std::pair<const aiNode *, const aiNode *>> listed, open;
    if (root) open.emplace_back(root, nullptr);
    while (!open.empty()) {
        listed.push_back(open.back());
        const aiNode *node = open.back().first;
        open.pop_back();
        if (listed.size() > kMaxNodes)
            throw Refusal("it has more than " + std::to_string(kMaxNodes) + " nodes");
        // Some importers count one child too many.
        for (unsigned i = node->mNumChildren; i-- > 0;)
            if (node->mChildren[i]) open.emplace_back(node->mChildren[i], node);
    }
    return listed;
}

}  // namespace

Rig::Rig(const aiScene &scene, const Matrix &place, Report &report, const std::set<std::string> &moved)
    : scene(scene), place(place), report(report) {
    readNodes();
    readMotion(moved);
    bindSkins();
    spreadBind();
    measure();
    makeJoints();
    for (Skin &skin : skins) makeInfluences(skin);
    placeRigidMeshes();
    markSkeleton();
    markPosed();
    if (names.changed() > 0)
        report.note(std::to_string(names.changed()) + (names.changed() == 1 ? " name was" : " names were") +
                    " changed: empty, taken by another node, too long or not UTF-8");
}

// Some importers list bones side by side and give the hierarchy only by the nodes' parents, so these are
// used. If they form a circle or leave the model, the lists of children are used.
void Rig::readNodes() {
    const auto listed = listNodes(scene.mRootNode);
    std::map<const aiNode *, std::vector<const aiNode *>> children;
    std::set<const aiNode *> known;
    for (const auto &[node, lister] : listed) known.insert(node);
    for (const auto &[node, lister] : listed)
        if (lister) children[known.count(node->mParent) ? node->mParent : lister].push_back(node);
    readBelow(children);
    if (sources.size() != listed.size()) {
        sources.clear();
        children.clear();
        for (const auto &[node, lister] : listed)
            if (lister) children[lister].push_back(node);
        readBelow(children);
    }
    std::map<const aiNode *, int> indices;
    for (std::size_t s = 0; s < sources.size(); ++s) indices.emplace(sources[s].node, static_cast<int>(s));
    // The first node of a name is taken, as in assimp.
    for (const auto &[node, lister] : listed) byName.emplace(node->mName.C_Str(), indices.at(node));
}

void Rig::readBelow(const std::map<const aiNode *, std::vector<const aiNode *>> &children) {
    std::vector<std::pair<const aiNode *, int>> open;
    if (scene.mRootNode) open.emplace_back(scene.mRootNode, kNone);
    while (!open.empty()) {
        const auto [node, parent] = open.back();
        open.pop_back();
        const int index = static_cast<int>(sources.size());
        SourceNode source;
        source.node = node;
        source.parent = parent;
        source.local = widened(node->mTransformation);
        source.world = (parent == kNone ? place : sources[parent].world) * source.local;
        sources.push_back(source);
        const auto below = children.find(node);
        if (below == children.end()) continue;
        for (auto child = below->second.rbegin(); child != below->second.rend(); ++child)
            open.emplace_back(*child, index);
    }
}

int Rig::findSource(const std::string &name) const {
    const auto found = byName.find(name);
    return found == byName.end() ? kNone : found->second;
}

std::vector<int> Rig::helpersOf(int source) const {
    std::vector<int> helpers;
    if (importerOf(scene) != kFbxImporter) return helpers;
    const std::string start = sources[source].node->mName.C_Str() + std::string(kPivotMark);
    for (int above = sources[source].parent; above != kNone; above = sources[above].parent) {
        if (std::string(sources[above].node->mName.C_Str()).compare(0, start.size(), start) != 0) break;
        helpers.push_back(above);
    }
    return helpers;
}

void Rig::readMotion(const std::set<std::string> &moved) {
    for (const std::string &name : moved) {
        const int source = findSource(name);
        if (source != kNone && sources[source].parent != kNone) sources[source].moves = true;
    }
    for (unsigned a = 0; a < scene.mNumAnimations; ++a) {
        for (unsigned c = 0; c < scene.mAnimations[a]->mNumChannels; ++c) {
            const aiNodeAnim &channel = *scene.mAnimations[a]->mChannels[c];
            const int source = findSource(channel.mNodeName.C_Str());
            if (source == kNone) continue;
            sources[source].moves = true;
            sources[source].scales = sources[source].scales || changesScale(channel);
        }
    }
}

// --- the bind pose

void Rig::spreadBind() {
    for (SourceNode &source : sources) {
        if (source.isBone) continue;
        source.bind = source.parent == kNone ? source.world : sources[source.parent].bind * source.local;
    }
}

// The largest distance of bones and of the vertices bound to them from the origin.
void Rig::measure() {
    for (const SourceNode &source : sources) size = std::max(size, translationOf(source.bind).Length());
    for (const Skin &skin : skins) {
        const aiMesh &mesh = *scene.mMeshes[skin.mesh];
        for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
            const aiVector3D &v = mesh.mVertices[i];
            const double length = (skin.bake * Vector(v.x, v.y, v.z)).Length();
            if (std::isfinite(length)) size = std::max(size, length);
        }
    }
}

// --- joints

bool Rig::isKept(int index) const {
    const SourceNode &source = sources[index];
    const aiNode &node = *source.node;
    bool hasMesh = false, hasSkin = false;
    for (unsigned i = 0; i < node.mNumMeshes; ++i) {
        if (node.mMeshes[i] >= scene.mNumMeshes) continue;
        (isSkinned(*scene.mMeshes[node.mMeshes[i]]) ? hasSkin : hasMesh) = true;
    }
    if (source.isBone || hasMesh) return true;
    if (std::string(node.mName.C_Str()).find(kPivotMark) != std::string::npos) return false;
    if (source.parent == kNone) return source.moves;  // the scene's root replaces it
    // A node that only holds a skin is left out; the skin takes its name.
    return !(hasSkin && node.mNumChildren == 0 && !source.moves);
}

void Rig::makeJoints() {
    bonesOf.resize(sources.size());
    if (!skins.empty()) names.take(kSkeletonRoot, kSkeletonRoot);
    for (std::size_t s = 0; s < sources.size(); ++s) {
        SourceNode &source = sources[s];
        const int above = source.parent == kNone ? kNone : sources[source.parent].joint;
        source.joint = above;
        if (!isKept(static_cast<int>(s))) continue;
        source.joint =
            static_cast<int>(addJoint(static_cast<int>(s), above, source.bind, source.node->mName.C_Str()));
        joints[source.joint].isBone = source.isBone;
        if (source.isBone) bonesOf[s].push_back(source.joint);
    }
}

unsigned Rig::addJoint(int source, int parent, const Matrix &bind, const std::string &wanted) {
    int depth = 0;
    for (int above = parent; above != kNone; above = joints[above].parent) ++depth;
    for (; depth >= kMaxDepth; --depth) parent = joints[parent].parent;
    Joint joint;
    joint.name = names.take(wanted, "node");
    joint.source = source;
    joint.parent = parent;
    joint.frame = rigidPart(bind);
    joint.bake = inverse(joint.frame) * bind;
    joints.push_back(joint);
    return static_cast<unsigned>(joints.size() - 1);
}

void Rig::placeRigidMeshes() {
    for (std::size_t s = 0; s < sources.size(); ++s) {
        const aiNode &node = *sources[s].node;
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            const unsigned mesh = node.mMeshes[i];
            if (mesh >= scene.mNumMeshes || isSkinned(*scene.mMeshes[mesh])) continue;
            const unsigned joint = static_cast<unsigned>(sources[s].joint);
            rigidMeshes.push_back({mesh, joint, joints[joint].bake});
        }
    }
}

// The engine searches a skin's bones below HumanoidRoot in every frame, so trees without bones stay outside.
void Rig::markSkeleton() {
    std::vector<std::size_t> top(joints.size());
    std::vector<bool> holdsBones(joints.size());
    for (std::size_t j = 0; j < joints.size(); ++j) {
        top[j] = joints[j].parent == kNone ? j : top[joints[j].parent];
        if (joints[j].isBone) holdsBones[top[j]] = true;
    }
    for (std::size_t j = 0; j < joints.size(); ++j) joints[j].underRoot = holdsBones[top[j]];
}

// --- motion

void Rig::pose(const std::vector<Matrix> &locals, std::vector<Matrix> &worlds) const {
    worlds.resize(sources.size());
    for (std::size_t s = 0; s < sources.size(); ++s)
        worlds[s] = (sources[s].parent == kNone ? place : worlds[sources[s].parent]) * locals[s];
}

Matrix Rig::localFrame(unsigned joint, const std::vector<Matrix> &frames) const {
    const int parent = joints[joint].parent;
    return parent == kNone ? frames[joint] : inverse(frames[parent]) * frames[joint];
}

// A joint needs keyframes if a node between it and the joint above moves, if a scale above changes its
// distance, or if its rest pose differs from its bind pose.
void Rig::markPosed() {
    std::vector<bool> stretched(sources.size());
    for (std::size_t s = 0; s < sources.size(); ++s)
        stretched[s] = sources[s].scales || (sources[s].parent != kNone && stretched[sources[s].parent]);
    std::vector<Matrix> rest, bound;
    for (const Joint &joint : joints) {
        bound.push_back(joint.frame);
        rest.push_back(joint.source == kNone
                           ? joint.frame
                           : rigidPart(sources[joint.source].world * inverse(joint.bake), joint.frame));
    }
    const bool hasClips =
        scene.mNumAnimations > 0 ||
        std::any_of(sources.begin(), sources.end(), [](const SourceNode &s) { return s.moves; });
    bool restsElsewhere = false;
    for (std::size_t j = 0; j < joints.size(); ++j) {
        Joint &joint = joints[j];
        if (joint.source == kNone) continue;
        const int above = joint.parent == kNone ? kNone : joints[joint.parent].source;
        bool posed = stretched[joint.source];
        for (int s = joint.source; s != kNone && s != above; s = sources[s].parent)
            posed = posed || sources[s].moves;
        const unsigned index = static_cast<unsigned>(j);
        const bool differs = !areAlike(localFrame(index, bound), localFrame(index, rest), size);
        restsElsewhere = restsElsewhere || differs;
        joint.isPosed = hasClips && (posed || differs);
    }
    if (restsElsewhere)
        report.note("the rest pose of its bones is not their bind pose; the scene shows the bind pose");
}

}  // namespace keltra::convert
