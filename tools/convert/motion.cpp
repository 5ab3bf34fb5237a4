// SPDX-License-Identifier: Zlib
#include "tools/convert/motion.h"

#include "tools/convert/composed.h"

#include <assimp/anim.h>
#include <assimp/scene.h>
#include <assimp/matrix3x3.inl>
#include <assimp/quaternion.inl>

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

namespace keltra::convert {
namespace {

constexpr double kDefaultTicks = 25.0;  // per second, for animations without a rate
constexpr double kOrderSteps = 16.0, kNoTurn = 1e-4, kAlongAxis = 0.99;
constexpr char kPostRotation[] = "_PostRotation";

bool isFinite(const aiVector3D &v) { return std::isfinite(v.x + v.y + v.z); }
bool isFinite(const aiQuaternion &q) { return std::isfinite(q.w + q.x + q.y + q.z); }

aiVector3D between(const aiVector3D &a, const aiVector3D &b, float t) { return a + (b - a) * t; }

aiQuaternion between(const aiQuaternion &a, const aiQuaternion &b, float t) {
    aiQuaternion result;
    aiQuaternion::Interpolate(result, a, b, t);
    return result.Normalize();
}

// The keys with finite times and values, sorted by time: some importers give them in another order.
template <class Key>
std::vector<Key> sorted(const Key *keys, unsigned count) {
    std::vector<Key> result;
    for (unsigned i = 0; i < count; ++i)
        if (std::isfinite(keys[i].mTime) && isFinite(keys[i].mValue)) result.push_back(keys[i]);
    std::stable_sort(result.begin(), result.end(),
                     [](const Key &a, const Key &b) { return a.mTime < b.mTime; });
    return result;
}

// The value at a time; constant before the first key and after the last one.
template <class Key, class Value>
Value valueAt(const std::vector<Key> &keys, double time, const Value &otherwise) {
    if (keys.empty()) return otherwise;
    const auto next = std::upper_bound(keys.begin(), keys.end(), time,
                                       [](double t, const Key &key) { return t < key.mTime; });
    if (next == keys.begin()) return keys.front().mValue;
    if (next == keys.end()) return keys.back().mValue;
    const Key &last = *(next - 1);
    const float t = static_cast<float>((time - last.mTime) / (next->mTime - last.mTime));
    return between(last.mValue, next->mValue, t);
}

bool scalesDiffer(const std::vector<aiVectorKey> &keys) {
    return std::any_of(keys.begin(), keys.end(), [&keys](const aiVectorKey &key) {
        return (key.mValue - keys[0].mValue).Length() > 1e-5f * keys[0].mValue.Length();
    });
}

template <class Key>
double lastTime(const std::vector<Key> &keys) {
    return keys.empty() ? 0.0 : keys.back().mTime;
}

}  // namespace

Motion::Motion(const std::vector<const aiAnimation *> &animations, const Rig &rig) : rig(rig) {
    for (const aiAnimation *animation : animations) addTracks(*animation);
    findReplaced();
    if (animations.size() > 1) orderTracks();
}

void Motion::addTracks(const aiAnimation &animation) {
    // The duration that importers give is arbitrary: some leave it out, some count other ticks.
    double ticks = 0.0;
    const double rate = animation.mTicksPerSecond;
    const double ticksPerSecond = std::isfinite(rate) && rate > 0.0 ? rate : kDefaultTicks;
    std::set<int> taken;
    for (unsigned c = 0; c < animation.mNumChannels; ++c) {
        const aiNodeAnim &channel = *animation.mChannels[c];
        const int source = rig.findSource(channel.mNodeName.C_Str());
        if (source == kNone || !taken.insert(source).second) continue;
        tracks.push_back({source, sorted(channel.mPositionKeys, channel.mNumPositionKeys),
                          sorted(channel.mRotationKeys, channel.mNumRotationKeys),
                          sorted(channel.mScalingKeys, channel.mNumScalingKeys), ticksPerSecond,
                          aiQuaternion()});
        const Track &track = tracks.back();
        ticks =
            std::max({ticks, lastTime(track.positions), lastTime(track.rotations), lastTime(track.scales)});
    }
    length = std::max(length, ticks / ticksPerSecond);
}

// Collada has one animation for each of a node's transforms, and the importer makes a whole matrix of each,
// with the others at rest. With the rest R = T Z Y X S, where T is the translation, then the rotations and
// the scale, the matrix of all that move is M1 R^-1 M2 R^-1 M3, in this order. What a matrix moves is seen
// from the first key that differs.
void Motion::orderTracks() {
    const auto rank = [this](const Track &track) {
        const Matrix rest = rig.sources[track.source].local;
        Vector turn, turnBelow;
        for (double time = 0.0; time <= length; time += std::max(length / kOrderSteps, 1e-6)) {
            const Matrix m = localOf(track, time);
            const Matrix above = rigidPart(m) * inverse(rigidPart(rest));
            const Matrix below = inverse(rigidPart(rest)) * rigidPart(m);
            turn += Vector(std::abs(above.c2 - above.b3), std::abs(above.a3 - above.c1),
                           std::abs(above.b1 - above.a2));
            turnBelow += Vector(std::abs(below.c2 - below.b3), std::abs(below.a3 - below.c1),
                                std::abs(below.b1 - below.a2));
        }
        if (turn.Length() < kNoTurn) return track.scales.size() > 1 && scalesDiffer(track.scales) ? 4 : 0;
        if (turn.z > kAlongAxis * turn.Length()) return 1;
        return turnBelow.x > kAlongAxis * turnBelow.Length() ? 3 : 2;
    };
    std::vector<std::pair<int, Track>> ranked;
    for (Track &track : tracks) ranked.emplace_back(rank(track), std::move(track));
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    for (std::size_t i = 0; i < ranked.size(); ++i) tracks[i] = std::move(ranked[i].second);
}

std::set<int> Motion::movedSources() const {
    std::set<int> moved;
    for (const Track &track : tracks) {
        moved.insert(track.source);
        const std::string name = rig.sources[track.source].node->mName.C_Str();
        const std::size_t mark = name.find(kPivotMark);
        const int pivoted = mark == std::string::npos ? kNone : rig.findSource(name.substr(0, mark));
        if (pivoted != kNone) moved.insert(pivoted);
    }
    return moved;
}

// For a node with nothing but pre- and post-rotations the FBX importer makes helper nodes of its rest pose,
// and one channel of the node itself that contains what all of them say. With other pivots the channels are
// those of the helper nodes.
//
// The channel has the post-rotation where its inverse belongs (assimp 5.2.5). The helper node has the
// inverse: twice that behind the channel's rotation makes it right.
void Motion::findReplaced() {
    std::set<int> tracked;
    for (const Track &track : tracks) tracked.insert(track.source);
    for (Track &track : tracks) {
        const std::vector<int> helpers = rig.helpersOf(track.source);
        if (std::any_of(helpers.begin(), helpers.end(),
                        [&tracked](int helper) { return tracked.count(helper) != 0; }))
            continue;
        for (const int helper : helpers) {
            replaced.push_back(helper);
            const aiNode &node = *rig.sources[helper].node;
            if (!endsWith(node.mName.C_Str(), kPostRotation)) continue;
            const aiQuaternion inverted(aiMatrix3x3(node.mTransformation));
            track.behind = inverted * inverted;
        }
    }
}

Matrix Motion::localOf(const Track &track, double seconds) const {
    const double time = seconds * track.ticksPerSecond;
    aiVector3D scale(1.0f, 1.0f, 1.0f), position;
    aiQuaternion rotation;
    rig.sources[track.source].node->mTransformation.Decompose(scale, rotation, position);
    position = valueAt(track.positions, time, position);
    if (!track.rotations.empty()) rotation = valueAt(track.rotations, time, rotation) * track.behind;
    scale = valueAt(track.scales, time, scale);
    const aiMatrix4x4 local = composed(scale, rotation, position);
    const Matrix wide(local.a1, local.a2, local.a3, local.a4, local.b1, local.b2, local.b3, local.b4,
                      local.c1, local.c2, local.c3, local.c4, 0, 0, 0, 1);
    return isFinite(wide) ? wide : rig.sources[track.source].local;
}

void Motion::locals(double seconds, std::vector<Matrix> &locals) const {
    locals.resize(rig.sources.size());
    std::vector<bool> moved(locals.size());
    for (std::size_t s = 0; s < locals.size(); ++s) locals[s] = rig.sources[s].local;
    for (const int source : replaced) locals[source] = Matrix();
    for (const Track &track : tracks) {
        const std::size_t s = static_cast<std::size_t>(track.source);
        const Matrix local = localOf(track, seconds);
        locals[s] = moved[s] ? locals[s] * inverse(rig.sources[s].local) * local : local;
        moved[s] = true;
    }
}

}  // namespace keltra::convert
