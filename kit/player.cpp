// SPDX-License-Identifier: Zlib
// What plays: binding, starting and stopping of clips.
#include <keltra/kit/clip.h>

#include <keltra/anim.h>
#include <keltra/foundation.h>
#include <keltra/node.h>

#include "kit/fault.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

const unsigned int KTPLAYER::layers;
const unsigned int KTPLAYER::maxWaiting;

namespace {

constexpr std::uint8_t kNoBone = 255;

// Takes `count` objects off the front of a block.
template <class T>
T *carve(char *&block, unsigned int count) {
    T *const objects = reinterpret_cast<T *>(block);
    block += count * sizeof(T);
    for (unsigned int i = 0; i < count; ++i) new (objects + i) T();
    return objects;
}

float notNegative(float value) { return value > 0.0f ? value : 0.0f; }

}  // namespace

KTPLAYER::KTPLAYER()
    : root(nullptr),
      room(0),
      block(nullptr),
      base(),
      former(),
      above(),
      faded(nullptr),
      spare(nullptr),
      fadedBone(nullptr),
      fadeLength(0.0f),
      fadeLeft(0.0f),
      translating(false),
      smooth(false),
      waiting(),
      numberOfWaiting(0),
      rootName() {
    base.rate = 1.0f;
    for (LAYER &layer : above) layer.weight = 1.0f;
}

KTPLAYER::~KTPLAYER() { unbind(); }

bool KTPLAYER::bind(KTNODE *character, unsigned int bones) {
    const char *const call = "KTPLAYER::bind";
    unbind();
    if (!character) return keltra::kit::failNull(call, "root");
    if (bones < 1 || bones > KTANIM::maxBones)
        return keltra::kit::failRange(call, "bones", long(bones), KTANIM::maxBones);
    // The largest alignment comes first.
    const std::size_t tracks = 2 + layers, poses = 2 + layers;
    const std::size_t each =
        tracks * sizeof(KTNODE *) + poses * sizeof(POSE) + sizeof *fadedBone + layers * sizeof(bool);
    block = vnfMalloc(static_cast<unsigned int>(bones * each));
    if (!block) return keltra::kit::failMemory(call);
    char *at = static_cast<char *>(block);
    base.nodes = carve<KTNODE *>(at, bones);
    former.nodes = carve<KTNODE *>(at, bones);
    for (LAYER &layer : above) layer.track.nodes = carve<KTNODE *>(at, bones);
    faded = carve<POSE>(at, bones);
    spare = carve<POSE>(at, bones);
    for (LAYER &layer : above) layer.rest = carve<POSE>(at, bones);
    fadedBone = carve<std::uint8_t>(at, bones);
    for (LAYER &layer : above) layer.isResting = carve<bool>(at, bones);
    root = character;
    room = bones;
    return true;
}

void KTPLAYER::unbind() {
    stop();
    if (block) vnfFree(block);
    block = nullptr;
    root = nullptr;
    room = 0;
}

void KTPLAYER::stop() {
    base.clip = former.clip = nullptr;
    base.ended = false;
    for (LAYER &layer : above) layer.track.clip = nullptr;
    fadeLeft = 0.0f;
    numberOfWaiting = 0;
    step.reset();
}

bool KTPLAYER::accept(const char *call, const KTCLIP *clip, unsigned int first, unsigned int last) const {
    if (!clip) return keltra::kit::failNull(call, "clip");
    if (!root)
        return keltra::kit::fail(KT_FAULT_STATE, call,
                                 {nullptr, 0, nullptr, "it is bound to no character", nullptr});
    if (clip->bones > room) return keltra::kit::failRange(call, "bones", long(clip->bones), long(room));
    if (last >= clip->frames) return keltra::kit::failRange(call, "last", last, long(clip->frames) - 1);
    return first <= last || keltra::kit::failRange(call, "first", first, last);
}

int KTPLAYER::boneOf(const TRACK &track, const KTNODE *node) {
    const unsigned int count = track.clip && node ? track.clip->bones : 0;
    for (unsigned int bone = 0; bone < count; ++bone)
        if (track.nodes[bone] == node) return static_cast<int>(bone);
    return -1;
}

// As `KTANIM::apply` finds them: the first node of a name counts, and of several bones of one name the last.
void KTPLAYER::startTrack(TRACK *track, const KTCLIP *clip, KTNODE *from, bool loop) {
    track->clip = clip;
    track->time = 0.0f;
    track->loop = loop;
    track->ended = false;
    for (unsigned int bone = clip->bones; bone-- > 0;) {
        KTNODE *node = from->findByNameInHierarchy(clip->getBoneName(bone));
        for (unsigned int later = bone + 1; node && later < clip->bones; ++later)
            if (track->nodes[later] == node) node = nullptr;
        track->nodes[bone] = node;
    }
    track->rootBone = *rootName ? clip->findBone(rootName) : -1;
}

bool KTPLAYER::play(const KTCLIP *clip, bool loop, float fade) {
    return playRange(clip, 0, clip && clip->frames ? clip->frames - 1 : 0, loop, fade);
}

bool KTPLAYER::playRange(const KTCLIP *clip, unsigned int first, unsigned int last, bool loop, float fade) {
    if (!accept("KTPLAYER::play", clip, first, last)) return false;
    if (base.clip == clip && base.loop && loop && base.first == first && base.last == last) return true;
    const bool wasFading = isFading() && base.clip;
    if (wasFading)
        for (unsigned int bone = 0; bone < base.clip->bones; ++bone) spare[bone] = basePose(bone);
    std::swap(base, former);
    base.rate = former.rate;
    base.first = first;
    base.last = last;
    startTrack(&base, clip, root, loop);
    fadeLength = fadeLeft = notNegative(fade);
    // Not null: `accept` refuses that. NOLINTNEXTLINE(clang-analyzer-core.NullDereference)
    for (unsigned int bone = 0; bone < clip->bones; ++bone) {
        const int earlier = boneOf(former, base.nodes[bone]);
        fadedBone[bone] = earlier >= 0 && !wasFading ? static_cast<std::uint8_t>(earlier) : kNoBone;
        if (!base.nodes[bone] || fadedBone[bone] != kNoBone) continue;
        const KTNODE &node = *base.nodes[bone];
        faded[bone] = earlier >= 0 ? spare[earlier] : POSE{node.rotation, node.position};
    }
    if (wasFading || fadeLeft <= 0.0f) former.clip = nullptr;
    for (LAYER &layer : above) markResting(&layer);
    step.reset();
    return true;
}

void KTPLAYER::setTime(float seconds) {
    if (!base.clip) return;
    const float length = lengthOf(base);
    float time = std::fmod(seconds, length);
    if (!base.loop) time = std::min(notNegative(seconds), length);
    base.time = time < 0.0f ? time + length : notNegative(time);
    base.ended = !base.loop && base.time >= length;
}

unsigned int KTPLAYER::getFrame() const { return base.clip ? frameOf(base) : 0; }

// Bones that the base clip does not write keep their place below a layer.
void KTPLAYER::markResting(LAYER *layer) {
    const unsigned int count = layer->track.clip ? layer->track.clip->bones : 0;
    for (unsigned int bone = 0; bone < count; ++bone) {
        const KTNODE *const node = layer->track.nodes[bone];
        const bool rests = node && boneOf(base, node) < 0;
        if (rests && !layer->isResting[bone]) layer->rest[bone] = {node->rotation, node->position};
        layer->isResting[bone] = rests;
    }
}

void KTPLAYER::resetResting(const LAYER &layer) {
    const unsigned int count = layer.track.clip ? layer.track.clip->bones : 0;
    for (unsigned int bone = 0; bone < count; ++bone) {
        if (!layer.isResting[bone]) continue;
        layer.track.nodes[bone]->rotation = layer.rest[bone].rotation;
        layer.track.nodes[bone]->position = layer.rest[bone].position;
    }
}

bool KTPLAYER::playLayer(unsigned int index, const KTCLIP *clip, KT_LAYER kind, const char *bone, bool loop,
                         float fade) {
    const char *const call = "KTPLAYER::playLayer";
    if (index >= layers) return keltra::kit::failRange(call, "layer", long(index), layers - 1);
    if (!accept(call, clip, 0, clip && clip->frames ? clip->frames - 1 : 0)) return false;
    KTNODE *const from = bone ? root->findByNameInHierarchy(bone) : root;
    if (!from) return keltra::kit::fail(KT_FAULT_UNKNOWN, call, {nullptr, 0, "bone", bone, ""});
    LAYER &layer = above[index];
    resetResting(layer);
    std::memset(layer.isResting, 0, room * sizeof *layer.isResting);
    layer.track.first = 0;
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): `accept` refuses null
    layer.track.last = clip->frames - 1;
    layer.track.rate = 1.0f;
    startTrack(&layer.track, clip, from, loop);
    markResting(&layer);
    layer.kind = kind;
    layer.fade = notNegative(fade);
    layer.level = layer.fade > 0.0f ? 0.0f : 1.0f;
    layer.speed = layer.fade > 0.0f ? 1.0f / layer.fade : 0.0f;
    return true;
}

void KTPLAYER::stopLayer(unsigned int index, float fade) {
    if (index >= layers || !above[index].track.clip) return;
    LAYER &layer = above[index];
    layer.speed = fade > 0.0f ? -1.0f / fade : 0.0f;
    if (fade > 0.0f) return;
    resetResting(layer);
    layer.track.clip = nullptr;
}

void KTPLAYER::setLayerWeight(unsigned int index, float weight) {
    if (index < layers) above[index].weight = std::min(notNegative(weight), 1.0f);
}

void KTPLAYER::setRootBone(const char *name) {
    rootName[0] = '\0';
    if (name) std::strncat(rootName, name, sizeof rootName - 1);
}

int KTPLAYER::takeEvent() {
    if (numberOfWaiting == 0) return 0;
    const int code = waiting[0];
    std::memmove(waiting, waiting + 1, --numberOfWaiting * sizeof *waiting);
    return code;
}

bool KTPLAYER::attach(KTNODE *node, const char *bone) {
    const char *const call = "KTPLAYER::attach";
    if (!node || !bone) return keltra::kit::failNull(call, node ? "bone" : "node");
    KTNODE *const parent = root ? root->findByNameInHierarchy(bone) : nullptr;
    if (!parent || parent == node)
        return keltra::kit::fail(KT_FAULT_UNKNOWN, call, {nullptr, 0, "bone", bone, ""});
    if (!node->isRoot()) node->unlink();
    return node->link(parent);
}
