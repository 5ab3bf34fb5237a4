// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/source_pose.h"

#include <assimp/commonMetaData.h>
#include <assimp/postprocess.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <stdexcept>

namespace keltra::test {
namespace {

using Matrix = aiMatrix4x4t<double>;
using Vector = aiVector3t<double>;
using Quaternion = aiQuaterniont<double>;

constexpr double kFlat = 1e-6;          // of a triangle's longest side: what floats make of a straight line
constexpr double kDefaultTicks = 25.0;  // a second, where the model does not say

double ticksPerSecond(const aiAnimation &clip) {
    return clip.mTicksPerSecond > 0.0 ? clip.mTicksPerSecond : kDefaultTicks;
}

Matrix doubled(const aiMatrix4x4 &m) {
    return {m.a1, m.a2, m.a3, m.a4, m.b1, m.b2, m.b3, m.b4, m.c1, m.c2, m.c3, m.c4, m.d1, m.d2, m.d3, m.d4};
}

Vector doubled(const aiVector3D &v) { return {v.x, v.y, v.z}; }
Quaternion doubled(const aiQuaternion &q) { return {q.w, q.x, q.y, q.z}; }

bool isFinite(const aiVector3D &v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

Vector between(const Vector &a, const Vector &b, double t) { return a + (b - a) * t; }

// The shorter way round.
Quaternion between(Quaternion a, Quaternion b, double t) {
    a.Normalize();
    b.Normalize();
    double cosine = a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
    if (cosine < 0.0) {
        cosine = -cosine;
        b = Quaternion(-b.w, -b.x, -b.y, -b.z);
    }
    double fromA = 1.0 - t, fromB = t;
    if (cosine < 1.0 - 1e-12) {
        const double angle = std::acos(cosine);
        fromA = std::sin((1.0 - t) * angle) / std::sin(angle);
        fromB = std::sin(t * angle) / std::sin(angle);
    }
    Quaternion result(fromA * a.w + fromB * b.w, fromA * a.x + fromB * b.x, fromA * a.y + fromB * b.y,
                      fromA * a.z + fromB * b.z);
    result.Normalize();
    return result;
}

// Outside its keys a channel holds the nearest one: no importer of moving models asks for anything else. Keys
// count in the order of their times, whatever their order in the list.
template <class Key>
auto valueAt(const Key *keys, unsigned count, double ticks) {
    const Key *before = nullptr, *after = nullptr;
    for (const Key *key = keys; key != keys + count; ++key) {
        if (key->mTime <= ticks) {
            if (!before || key->mTime >= before->mTime) before = key;
        } else if (!after || key->mTime < after->mTime) {
            after = key;
        }
    }
    if (!before) return doubled(after->mValue);
    if (!after) return doubled(before->mValue);
    const double t = (ticks - before->mTime) / (after->mTime - before->mTime);
    return between(doubled(before->mValue), doubled(after->mValue), t);
}

Matrix localMatrix(const aiNode &node, const aiNodeAnim *channel, double ticks) {
    if (!channel) return doubled(node.mTransformation);
    Vector scaling, position;
    Quaternion rotation;
    doubled(node.mTransformation).Decompose(scaling, rotation, position);
    if (channel->mNumScalingKeys) scaling = valueAt(channel->mScalingKeys, channel->mNumScalingKeys, ticks);
    if (channel->mNumRotationKeys)
        rotation = valueAt(channel->mRotationKeys, channel->mNumRotationKeys, ticks);
    if (channel->mNumPositionKeys)
        position = valueAt(channel->mPositionKeys, channel->mNumPositionKeys, ticks);
    rotation.Normalize();
    // The library's constructor of all three scales last.
    Matrix scaled;
    Matrix::Scaling(scaling, scaled);
    return Matrix(Vector(1.0, 1.0, 1.0), rotation, position) * scaled;
}

Point pointOf(const Vector &v) { return {v.x, v.y, v.z}; }

// Formats whose importer leaves the axes as they are in the file.
bool hasZUp(const aiScene &scene) {
    aiString importer;
    if (!scene.mMetaData || !scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, importer)) return false;
    const std::string name = importer.C_Str();
    std::int32_t axis = 1;
    if (name.find("FBX") != std::string::npos) return scene.mMetaData->Get("UpAxis", axis) && axis == 2;
    const char *const parts[] = {"3mf", "Blender", "HMP", "Quick3D", "TrueSpace", "SMD"};
    return std::any_of(std::begin(parts), std::end(parts),
                       [&name](const char *part) { return name.find(part) != std::string::npos; });
}

}  // namespace

SourcePose::SourcePose(const std::string &path) {
    read = importer.ReadFile(path, aiProcess_Triangulate);
    if (!read || !read->mRootNode) throw std::runtime_error(importer.GetErrorString());
    zIsUp = hasZUp(*read);
    addInstances(*read->mRootNode);
    findSolids();
}

bool SourcePose::isSkinned() const {
    return std::any_of(instances.begin(), instances.end(),
                       [](const Instance &instance) { return !instance.influences.empty(); });
}

double SourcePose::seconds(unsigned clip) const {
    const aiAnimation &animation = *read->mAnimations[clip];
    double ticks = 0.0;
    // The duration that importers give is arbitrary: a clip ends at its last key.
    for (unsigned c = 0; c < animation.mNumChannels; ++c) {
        const aiNodeAnim &channel = *animation.mChannels[c];
        if (!read->mRootNode->FindNode(channel.mNodeName)) continue;
        for (unsigned k = 0; k < channel.mNumPositionKeys; ++k)
            ticks = std::max(ticks, channel.mPositionKeys[k].mTime);
        for (unsigned k = 0; k < channel.mNumRotationKeys; ++k)
            ticks = std::max(ticks, channel.mRotationKeys[k].mTime);
        for (unsigned k = 0; k < channel.mNumScalingKeys; ++k)
            ticks = std::max(ticks, channel.mScalingKeys[k].mTime);
    }
    return std::max(ticks, 0.0) / ticksPerSecond(animation);
}

void SourcePose::addInstances(const aiNode &node) {
    for (unsigned i = 0; i < node.mNumMeshes; ++i)
        instances.push_back(makeInstance(node, *read->mMeshes[node.mMeshes[i]]));
    // An importer may count more children than it makes.
    for (unsigned i = 0; i < node.mNumChildren; ++i)
        if (node.mChildren[i]) addInstances(*node.mChildren[i]);
}

SourcePose::Instance SourcePose::makeInstance(const aiNode &node, const aiMesh &mesh) const {
    Instance instance{&node, &mesh, {}, {}, {}};
    std::map<unsigned, unsigned> places;
    for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
        const aiFace &face = mesh.mFaces[f];
        if (face.mNumIndices != 3) continue;
        if (!std::all_of(face.mIndices, face.mIndices + 3, [&mesh](unsigned v) {
                return v < mesh.mNumVertices && isFinite(mesh.mVertices[v]);
            }))
            continue;
        for (unsigned k = 0; k < 3; ++k) {
            const auto place = places.emplace(face.mIndices[k], static_cast<unsigned>(places.size()));
            if (place.second) instance.vertices.push_back(face.mIndices[k]);
            instance.corners.push_back(place.first->second);
        }
    }
    if (mesh.mNumBones > 0) addInfluences(instance);
    return instance;
}

void SourcePose::addInfluences(Instance &instance) const {
    std::vector<std::vector<Influence>> all(instance.mesh->mNumVertices);
    for (unsigned b = 0; b < instance.mesh->mNumBones; ++b) {
        const aiBone &bone = *instance.mesh->mBones[b];
        const aiNode *node = read->mRootNode->FindNode(bone.mName);
        for (unsigned w = 0; w < bone.mNumWeights; ++w) {
            const aiVertexWeight &weight = bone.mWeights[w];
            if (weight.mVertexId < all.size() && weight.mWeight > 0.0f)
                all[weight.mVertexId].push_back({&bone, node, weight.mWeight});
        }
    }
    for (unsigned vertex : instance.vertices) {
        normalise(all[vertex]);
        instance.influences.push_back(all[vertex]);
    }
}

// Weights that do not sum to 1 count by their share.
void SourcePose::normalise(std::vector<Influence> &influences) {
    double sum = 0.0;
    for (const Influence &influence : influences) sum += influence.weight;
    for (Influence &influence : influences) influence.weight /= sum;
}

void SourcePose::keepHeaviest(std::size_t count) {
    for (Instance &instance : instances) {
        for (std::vector<Influence> &influences : instance.influences) {
            std::stable_sort(influences.begin(), influences.end(),
                             [](const Influence &a, const Influence &b) { return a.weight > b.weight; });
            if (influences.size() > count)
                influences.erase(influences.begin() + static_cast<long>(count), influences.end());
            normalise(influences);
        }
    }
}

void SourcePose::findSolids() {
    const Shape rest = at(-1, 0.0);
    const double size = extent({rest.corners});
    std::size_t base = 0;
    cornerIsSolid.assign(rest.corners.size(), false);
    for (const Instance &instance : instances) {
        for (std::size_t c = 0; c < instance.corners.size(); c += 3) {
            std::size_t corner[3];
            for (int k = 0; k < 3; ++k) corner[k] = base + instance.corners[c + k];
            const Point a = rest.corners[corner[0]];
            const Point ab = rest.corners[corner[1]] - a, ac = rest.corners[corner[2]] - a;
            const double longest = std::max({dot(ab, ab), dot(ac, ac), dot(ac - ab, ac - ab)});
            const double doubleArea = length(cross(ab, ac));
            const bool solid = doubleArea > kFlat * longest && doubleArea > 1e-10 * size * size;
            middleIsSolid.push_back(solid);
            for (int k = 0; solid && k < 3; ++k) cornerIsSolid[corner[k]] = true;
        }
        base += instance.vertices.size();
    }
}

namespace {

/// The nodes' world matrices at one moment, worked out when they are asked for.
class Globals {
   public:
    Globals(const aiScene &scene, const aiAnimation *clip, double ticks) : ticks(ticks) {
        // A channel belongs to the first node of its name.
        for (unsigned c = 0; clip && c < clip->mNumChannels; ++c)
            if (const aiNode *node = scene.mRootNode->FindNode(clip->mChannels[c]->mNodeName))
                channels.emplace(node, clip->mChannels[c]);
    }

    // Up by the parents, which count where a model lists its nodes elsewhere.
    const Matrix &of(const aiNode *node) {
        const auto found = known.find(node);
        if (found != known.end()) return found->second;
        const auto channel = channels.find(node);
        Matrix global = localMatrix(*node, channel == channels.end() ? nullptr : channel->second, ticks);
        if (node->mParent) global = of(node->mParent) * global;
        return known.emplace(node, global).first->second;
    }

   private:
    double ticks;
    std::map<const aiNode *, const aiNodeAnim *> channels;
    std::map<const aiNode *, Matrix> known;
};

}  // namespace

Point SourcePose::upright(const Point &p) const { return zIsUp ? Point{p.x, p.z, -p.y} : p; }

Shape SourcePose::at(int clip, double seconds) const {
    const aiAnimation *animation = clip < 0 ? nullptr : read->mAnimations[clip];
    Globals globals(*read, animation, animation ? seconds * ticksPerSecond(*animation) : 0.0);
    Shape shape;
    for (const Instance &instance : instances) {
        const std::size_t base = shape.corners.size();
        const Matrix place = globals.of(instance.node);
        std::map<const aiBone *, Matrix> skins;
        for (std::size_t v = 0; v < instance.vertices.size(); ++v) {
            const Vector vertex = doubled(instance.mesh->mVertices[instance.vertices[v]]);
            if (instance.influences.empty() || instance.influences[v].empty()) {
                shape.corners.push_back(upright(pointOf(place * vertex)));
                continue;
            }
            Vector sum;
            for (const Influence &influence : instance.influences[v]) {
                Matrix skin = place;
                if (influence.node) {
                    const auto entry = skins.emplace(influence.bone, Matrix());
                    if (entry.second)
                        entry.first->second =
                            globals.of(influence.node) * doubled(influence.bone->mOffsetMatrix);
                    skin = entry.first->second;
                }
                sum += (skin * vertex) * influence.weight;
            }
            shape.corners.push_back(upright(pointOf(sum)));
        }
        for (std::size_t c = 0; c < instance.corners.size(); c += 3) {
            const Point sum = shape.corners[base + instance.corners[c]] +
                              shape.corners[base + instance.corners[c + 1]] +
                              shape.corners[base + instance.corners[c + 2]];
            shape.middles.push_back(sum * (1.0 / 3.0));
        }
    }
    return shape;
}

}  // namespace keltra::test
