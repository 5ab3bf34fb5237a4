// SPDX-License-Identifier: Zlib
#include <keltra/anim.h>

#include <keltra/mesh.h>
#include <keltra/node.h>

#include "foundation/argument.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "foundation/registry.h"
#include "foundation/text.h"
#include "scene/tree_walk.h"

#include <algorithm>
#include <cstring>

template <>
struct keltra::ObjectMemory<KTANIM> {
    static const bool isCleared = true;
};
template <>
struct keltra::PublicFields<KTANIM> : keltra::UsualFields<KTANIM, &KTANIM::name, &KTANIM::firstAnim> {};
template class KTREGISTERED<KTANIM>;

const unsigned int KTANIM::maxBones;
const unsigned int KTANIM::maxFrames;
KTANIM *KTANIM::firstAnim = nullptr;
char KTANIM::ktaPath[256];

namespace {

[[gnu::noinline]] KELTRA_COLD bool failKeyframe(keltra::FaultCall call, const KTANIM &anim,
                                                unsigned int frame, unsigned int bone) {
    const unsigned int frames = std::min(anim.getNumberOfFrames(), KTANIM::maxFrames + 0);
    if (frame > frames) return keltra::failRange(call, KT_TEXT("frame"), frame, frames);
    const unsigned int bones = std::min(anim.getNumberOfBones(), KTANIM::maxBones + 0);
    return keltra::failRange(call, KT_TEXT("bone"), bone, long(bones) - 1);
}

// Bones by their names, for one walk of a tree. Names may change between two walks, so it is made anew for
// each: that takes less than to look at the tree for each bone.
class BoneTable {
   public:
    // A later bone of the same name takes the place of an earlier one.
    void add(const char (*names)[256], unsigned int bone) {
        Entry &entry = entries[find(names, names[bone])];
        if (entry.bone < 0) ++left;
        entry = {static_cast<std::int16_t>(bone), false};
    }

    // The bone of that name, once; -1 when there is none, or no more.
    int take(const char (*names)[256], const char *name) {
        Entry &entry = entries[find(names, name)];
        if (entry.bone < 0 || entry.taken) return -1;
        entry.taken = true;
        --left;
        return entry.bone;
    }

    bool isEmpty() const { return left == 0; }

   private:
    struct Entry {
        std::int16_t bone = -1;
        bool taken = false;
    };
    static constexpr unsigned int kEntries = 2 * KTANIM::maxBones;

    // Where the name is, or would be put.
    unsigned int find(const char (*names)[256], const char *name) const {
        unsigned int hash = 0;
        for (const char *at = name; *at; ++at) hash = 33 * hash + static_cast<unsigned char>(*at);
        unsigned int index = (hash ^ hash >> 8) % kEntries;
        while (entries[index].bone >= 0 && std::strcmp(names[entries[index].bone], name) != 0)
            index = (index + 1) % kEntries;
        return index;
    }

    Entry entries[kEntries];
    unsigned int left = 0;
};

}  // namespace

KELTRA_COLD KTANIM::KTANIM()
    : id(0),
      name(),
      translating(false),
      numberOfBones(0),
      numberOfFrames(0),
      boneNames(),
      previous(nullptr),
      next(nullptr) {
    if (!isFromNew()) clearGrid();
    id = enlist();
    keltra::writeName(name, "[anim %d]", id);
}

KELTRA_COLD KTANIM::KTANIM(const KTANIM &other) : KTREGISTERED<KTANIM>(other) { copyFields(other); }

KTANIM &KTANIM::operator=(const KTANIM &other) {
    if (this == &other) return *this;
    copyFields(other);
    fieldsAssigned();
    return *this;
}

KTANIM::~KTANIM() { delist(); }

// Zeros are what the constructors of its parts give.
void KTANIM::clearGrid() { std::memset(static_cast<void *>(keyframes), 0, sizeof keyframes); }

KELTRA_COLD void KTANIM::copyFields(const KTANIM &other) {
    id = other.id;
    std::memcpy(name, other.name, sizeof name);
    translating = other.translating;
    numberOfBones = other.numberOfBones;
    numberOfFrames = other.numberOfFrames;
    std::memcpy(boneNames, other.boneNames, sizeof boneNames);
    std::memcpy(static_cast<void *>(keyframes), other.keyframes, sizeof keyframes);
    previous = other.previous;
    next = other.next;
}

KELTRA_COLD bool KTANIM::cleanUp() { return destroyAll(&KTANIM::release); }

unsigned int KTANIM::getNumberOfAnims() { return count(); }

KTANIM *KTANIM::findByFilename(const char *text) { return findRegistered(text); }

KTANIM *KTANIM::findById(unsigned int wanted) { return findRegistered(wanted); }

KELTRA_COLD void KTANIM::setKTAPath(const char *path) {
    keltra::takeText(ktaPath, path, KT_CALL("KTANIM::setKTAPath"));
}

KELTRA_COLD void KTANIM::setNumberOfFrames(unsigned int count) {
    if (count > maxFrames)
        keltra::warnRange(KT_CALL("KTANIM::setNumberOfFrames"), KT_TEXT("count"), count, maxFrames);
    numberOfFrames = static_cast<std::uint16_t>(std::min(count, maxFrames));
}

KELTRA_COLD void KTANIM::setNumberOfBones(unsigned int count) {
    if (count > maxBones)
        keltra::warnRange(KT_CALL("KTANIM::setNumberOfBones"), KT_TEXT("count"), count, maxBones);
    numberOfBones = static_cast<std::uint16_t>(std::min(count, maxBones));
}

// The counts are public: whatever their values, nothing beyond the grid is accessed.
unsigned int KTANIM::bones() const { return std::min<unsigned int>(numberOfBones, maxBones); }
unsigned int KTANIM::frames() const { return std::min<unsigned int>(numberOfFrames, maxFrames); }

// Deliberate: false even when the name was set; applications ported from earlier versions rely on it.
KELTRA_COLD bool KTANIM::setBoneName(unsigned int index, const char *text) {
    constexpr keltra::FaultCall call = KT_CALL("KTANIM::setBoneName");
    if (!text) return keltra::failNull(call, KT_TEXT("text"));
    if (index >= maxBones) return keltra::failRange(call, KT_TEXT("index"), index, maxBones - 1);
    keltra::takeText(boneNames[index], text, call, KT_TEXT("text"));
    return false;
}

const char *KTANIM::getBoneName(unsigned int index) const {
    return index < maxBones ? boneNames[index] : nullptr;
}

KELTRA_COLD int KTANIM::findBoneByName(const char *text) const {
    if (!text) return -1;
    for (unsigned int i = 0; i < bones(); ++i)
        if (std::strcmp(boneNames[i], text) == 0) return static_cast<int>(i);
    return -1;
}

KTBONEFRAME *KTANIM::getKeyframe(unsigned int frame, unsigned int bone) {
    return frame <= maxFrames && bone < maxBones ? &keyframes[frame][bone] : nullptr;
}

R3XVECTOR3D KTANIM::getFrameRotation(unsigned int frame, unsigned int bone) {
    const KTBONEFRAME *keyframe = getKeyframe(frame, bone);
    return keyframe ? keyframe->rotation : R3XVECTOR3D();
}

KELTRA_COLD bool KTANIM::acquireStructure(KTMESH *mesh) {
    if (!mesh) return keltra::failNull(KT_CALL("KTANIM::acquireStructure"), KT_TEXT("mesh"));
    if (!mesh->numberOfBones || !mesh->bones)
        return keltra::failState(KT_CALL("KTANIM::acquireStructure"), KT_TEXT("the mesh has no bones"));
    const keltra::FaultScope scope(KT_CALL("KTANIM::acquireStructure"));
    setNumberOfBones(mesh->numberOfBones);
    for (unsigned int i = 0; i < bones(); ++i) keltra::copyText(boneNames[i], mesh->bones[i].name);
    return true;
}

// Deliberate: the frame one past the last is accepted; interpolation up to the end uses it as its target.
KELTRA_COLD KTBONEFRAME *KTANIM::settable(unsigned int frame, unsigned int bone) {
    return frame <= frames() && bone < bones() ? &keyframes[frame][bone] : nullptr;
}

KELTRA_COLD bool KTANIM::setFrame(unsigned int frame, unsigned int bone, float x, float y, float z) {
    KTBONEFRAME *keyframe = settable(frame, bone);
    if (!keyframe) return failKeyframe(KT_CALL("KTANIM::setFrame"), *this, frame, bone);
    keyframe->rotation.set(x, y, z);
    return keyframe->set = true;
}

KELTRA_COLD bool KTANIM::setFrameRotationX(unsigned int frame, unsigned int bone, float degrees) {
    KTBONEFRAME *keyframe = settable(frame, bone);
    if (!keyframe) return failKeyframe(KT_CALL("KTANIM::setFrameRotationX"), *this, frame, bone);
    keyframe->rotation.x = degrees;
    return keyframe->set = true;
}

KELTRA_COLD bool KTANIM::setFrameRotationY(unsigned int frame, unsigned int bone, float degrees) {
    KTBONEFRAME *keyframe = settable(frame, bone);
    if (!keyframe) return failKeyframe(KT_CALL("KTANIM::setFrameRotationY"), *this, frame, bone);
    keyframe->rotation.y = degrees;
    return keyframe->set = true;
}

KELTRA_COLD bool KTANIM::setFrameRotationZ(unsigned int frame, unsigned int bone, float degrees) {
    KTBONEFRAME *keyframe = settable(frame, bone);
    if (!keyframe) return failKeyframe(KT_CALL("KTANIM::setFrameRotationZ"), *this, frame, bone);
    keyframe->rotation.z = degrees;
    return keyframe->set = true;
}

KELTRA_COLD bool KTANIM::unsetFrame(unsigned int frame, unsigned int bone) {
    KTBONEFRAME *keyframe = settable(frame, bone);
    if (!keyframe) return failKeyframe(KT_CALL("KTANIM::unsetFrame"), *this, frame, bone);
    if (!keyframe->set) return false;
    keyframe->set = false;
    return true;
}

KELTRA_COLD void KTANIM::reset() {
    for (unsigned int frame = 0; frame < frames(); ++frame)
        for (unsigned int bone = 0; bone < bones(); ++bone) keyframes[frame][bone] = KTBONEFRAME();
}

KELTRA_COLD bool KTANIM::createKeyframes(unsigned int first, unsigned int last) {
    constexpr keltra::FaultCall call = KT_CALL("KTANIM::createKeyframes");
    if (last > frames()) return keltra::failRange(call, KT_TEXT("last"), last, frames());
    // With `last` in range, `first` is too.
    if (first >= last) return keltra::failRange(call, KT_TEXT("first"), first, long(last) - 1);
    for (unsigned int bone = 0; bone < bones(); ++bone) {
        unsigned int from = first;
        while (from < last) {
            unsigned int to = from + 1;
            while (to < last && !keyframes[to][bone].set) ++to;
            interpolate(bone, from, to);
            from = to;
        }
    }
    return true;
}

// The running value advances at unset frames only, and a set one keeps its rotation.
void KTANIM::interpolate(unsigned int bone, unsigned int from, unsigned int to) {
    R3XVECTOR3D value = keyframes[from][bone].rotation;
    float frameCount = static_cast<float>(to - from);
    R3XVECTOR3D span = keyframes[to][bone].rotation - value;
    R3XVECTOR3D step(span.x / frameCount, span.y / frameCount, span.z / frameCount);
    for (unsigned int frame = from; frame < to; ++frame) {
        KTBONEFRAME &keyframe = keyframes[frame][bone];
        if (keyframe.set) continue;
        value += step;
        keyframe.rotation = value;
    }
}

// One walk of the tree for all bones: the first node of a name counts, and of several bones of one name the
// last.
bool KTANIM::apply(unsigned int frame, KTNODE *root) {
    if (!root) return keltra::failNull(KT_CALL("KTANIM::apply"), KT_TEXT("root"));
    if (frame >= frames())
        return keltra::failRange(KT_CALL("KTANIM::apply"), KT_TEXT("frame"), frame, long(frames()) - 1);
    BoneTable table;
    for (unsigned int bone = 0; bone < bones(); ++bone) table.add(boneNames, bone);
    keltra::walkTree(root, [&](KTNODE *node, unsigned int) {
        const int bone = table.take(boneNames, node->name);
        if (bone >= 0) {
            node->rotation = keyframes[frame][bone].rotation;
            if (translating) node->position = keyframes[frame][bone].position;
        }
        return table.isEmpty() ? keltra::kStopWalk : node->numberOfChildren;
    });
    return true;
}
