// SPDX-License-Identifier: Zlib
// The skins of a rig: their bind poses and the influences of their vertices.

#include "tools/convert/rig.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <set>

namespace keltra::convert {
namespace {

constexpr double kRigidEnough = 0.01;

bool isUsable(const aiVertexWeight &weight, const aiMesh &mesh) {
    return weight.mVertexId < mesh.mNumVertices && std::isfinite(weight.mWeight) && weight.mWeight > 0.0f;
}

double totalWeight(const aiBone &bone, const aiMesh &mesh) {
    double total = 0.0;
    for (unsigned i = 0; i < bone.mNumWeights; ++i)
        if (isUsable(bone.mWeights[i], mesh)) total += bone.mWeights[i].mWeight;
    return total;
}

double sizeOf(const aiMesh &mesh) {
    double most = 0.0;
    for (unsigned i = 0; i < mesh.mNumVertices; ++i) {
        const double length = mesh.mVertices[i].Length();
        if (std::isfinite(length)) most = std::max(most, length);
    }
    return most;
}

using Weights = std::vector<std::pair<unsigned, double>>;  // joint, weight

// The largest four, made multiples of 1/65536 that sum to 1, as the engine truncates weights to these.
//
// Instead of aiProcess_LimitBoneWeights, which gives the same poses and vertices but not the number of
// dropped influences: 3,783 in one model of the package, which its poses show.
VertexSkin finish(Weights &weights, std::uint64_t *dropped) {
    std::stable_sort(weights.begin(), weights.end(),
                     [](const auto &a, const auto &b) { return a.second > b.second; });
    const std::size_t kept = std::min<std::size_t>(weights.size(), kMaxInfluences);
    *dropped += weights.size() - kept;
    double sum = 0.0;
    for (std::size_t i = 0; i < kept; ++i) sum += weights[i].second;
    VertexSkin skin;
    double left = 65536.0;
    for (std::size_t i = kept; i-- > 0;) {
        const double steps = i == 0 ? left : std::floor(weights[i].second / sum * 65536.0 + 0.5);
        left -= steps;
        skin.joints[i] = weights[i].first;
        skin.weights[i] = static_cast<float>(steps / 65536.0);
    }
    return skin;
}

void add(Weights &weights, unsigned joint, double weight) {
    for (auto &known : weights) {
        if (known.first == joint) {
            known.second += weight;
            return;
        }
    }
    weights.emplace_back(joint, weight);
}

}  // namespace

bool isSkinned(const aiMesh &mesh) {
    for (unsigned b = 0; b < mesh.mNumBones; ++b)
        if (totalWeight(*mesh.mBones[b], mesh) > 0.0) return true;
    return false;
}

void Rig::bindSkins() {
    std::set<unsigned> done;
    for (std::size_t s = 0; s < sources.size(); ++s) {
        const aiNode &node = *sources[s].node;
        for (unsigned i = 0; i < node.mNumMeshes; ++i) {
            const unsigned mesh = node.mMeshes[i];
            if (mesh >= scene.mNumMeshes || !isSkinned(*scene.mMeshes[mesh])) continue;
            // Bones alone place a skin: a second node with the same skin would draw it in the same place.
            if (!done.insert(mesh).second) continue;
            skins.push_back({mesh, static_cast<int>(s), node.mName.C_Str(), Matrix(), {}});
            bindSkin(skins.back());
        }
    }
}

void Rig::bindSkin(Skin &skin) {
    skin.bake = chooseBake(skin);
    const aiMesh &mesh = *scene.mMeshes[skin.mesh];
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
        const aiBone &bone = *mesh.mBones[b];
        const int source = findSource(bone.mName.C_Str());
        if (source == kNone || sources[source].isBone || totalWeight(bone, mesh) <= 0.0) continue;
        sources[source].isBone = true;
        sources[source].bind = skin.bake * inverse(widened(bone.mOffsetMatrix));
    }
}

// The mesh's transform in the bind pose. A bone that another mesh has bound defines it, so that the meshes of
// a skeleton agree. Bones whose rest pose is their bind pose define it next. Otherwise the mesh's node does,
// unless it has a scale that the bones do not have.
Matrix Rig::chooseBake(const Skin &skin) const {
    const aiMesh &mesh = *scene.mMeshes[skin.mesh];
    double most = 0.0, mostBound = 0.0;
    Matrix rest, bound;
    std::vector<Matrix> rests;
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
        const aiBone &bone = *mesh.mBones[b];
        const int source = findSource(bone.mName.C_Str());
        const double weight = totalWeight(bone, mesh);
        if (source == kNone || weight <= 0.0) continue;
        const Matrix offset = widened(bone.mOffsetMatrix);
        rests.push_back(sources[source].world * offset);
        if (weight > most) most = weight, rest = rests.back();
        if (sources[source].isBone && weight > mostBound)
            mostBound = weight, bound = sources[source].bind * offset;
    }
    const Matrix &node = sources[skin.source].world;
    if (mostBound > 0.0) return bound;
    if (rests.empty()) return node;
    const double reach = translationOf(rest).Length() + magnitude(rest) * sizeOf(mesh);
    if (std::all_of(rests.begin(), rests.end(),
                    [&](const Matrix &other) { return areAlike(other, rest, reach); }))
        return rest;
    const Matrix moved = rest * inverse(node);
    return linearDifference(moved, rigidPart(moved)) < kRigidEnough ? node : rest;
}

// The joint for a bone with this bind pose. If meshes bind a bone in different poses, each pose gets a joint,
// the further ones below the first.
unsigned Rig::boneJoint(int source, const Matrix &bind) {
    std::vector<unsigned> &known = bonesOf[source];
    for (unsigned joint : known)
        if (areAlike(joints[joint].frame * joints[joint].bake, bind, size)) return joint;
    const int first = sources[source].joint;
    known.push_back(addJoint(source, first, bind, joints[first].name));
    joints[known.back()].isBone = true;
    return known.back();
}

// The joint for vertices without weights: that of the node that holds the skin.
unsigned Rig::holderOf(const Skin &skin) {
    int joint = sources[skin.source].joint;
    if (joint == kNone) {
        if (still == kNone) still = static_cast<int>(addJoint(kNone, kNone, Matrix(), "still"));
        joint = still;
    }
    joints[joint].isBone = true;
    return static_cast<unsigned>(joint);
}

void Rig::makeInfluences(Skin &skin) {
    const aiMesh &mesh = *scene.mMeshes[skin.mesh];
    std::vector<Weights> weights(mesh.mNumVertices);
    std::uint64_t lost = 0, dropped = 0, loose = 0;
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
        const aiBone &bone = *mesh.mBones[b];
        if (totalWeight(bone, mesh) <= 0.0) continue;
        const int source = findSource(bone.mName.C_Str());
        if (source == kNone) ++lost;
        const unsigned joint = source == kNone
                                   ? holderOf(skin)
                                   : boneJoint(source, skin.bake * inverse(widened(bone.mOffsetMatrix)));
        for (unsigned i = 0; i < bone.mNumWeights; ++i)
            if (isUsable(bone.mWeights[i], mesh))
                add(weights[bone.mWeights[i].mVertexId], joint, bone.mWeights[i].mWeight);
    }
    skin.vertices.reserve(weights.size());
    for (Weights &of : weights) {
        if (of.empty()) {
            ++loose;
            of.emplace_back(holderOf(skin), 1.0);
        }
        skin.vertices.push_back(finish(of, &dropped));
    }
    report.drop("bones", lost, "the model has no node of their name; their vertices do not move");
    report.drop("influences", dropped, "a vertex follows the four bones of the largest weights");
    if (loose > 0)
        report.note(std::to_string(loose) + " vertices of " + cleanText(skin.name) +
                    " have no weight and follow the node that holds them");
}

}  // namespace keltra::convert
