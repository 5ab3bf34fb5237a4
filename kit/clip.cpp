// SPDX-License-Identifier: Zlib
#include <keltra/kit/clip.h>

#include <keltra/anim.h>
#include <keltra/foundation.h>

#include "kit/fault.h"

#include <algorithm>
#include <cstring>
#include <new>

const unsigned int KTCLIP::maxEvents;

KTCLIP::KTCLIP()
    : keys(nullptr),
      nameStarts(nullptr),
      names(nullptr),
      bones(0),
      frames(0),
      memory(0),
      rate(24.0f),
      events(),
      numberOfEvents(0) {}

KTCLIP::~KTCLIP() {
    if (keys) vnfFree(keys);
}

bool KTCLIP::load(const char *fileName) {
    KTANIM *const animation = new (std::nothrow) KTANIM;
    if (!animation) return keltra::kit::failMemory("KTCLIP::load");
    const bool good = animation->load(fileName) && take(animation);
    delete animation;
    return good;
}

bool KTCLIP::take(const KTANIM *animation) {
    const char *const call = "KTCLIP::take";
    if (!animation) return keltra::kit::failNull(call, "animation");
    const unsigned int boneCount = std::min(animation->getNumberOfBones(), KTANIM::maxBones),
                       frameCount = std::min(animation->getNumberOfFrames(), KTANIM::maxFrames);
    std::size_t size = boneCount * (frameCount * sizeof(KEY) + sizeof(std::uint32_t));
    for (unsigned int bone = 0; bone < boneCount; ++bone)
        size += std::strlen(animation->getBoneName(bone)) + 1;
    void *const block = vnfMalloc(static_cast<unsigned int>(std::max<std::size_t>(size, 1)));
    if (!block) return keltra::kit::failMemory(call);
    if (keys) vnfFree(keys);
    keys = static_cast<KEY *>(block);
    bones = boneCount;
    frames = frameCount;
    memory = static_cast<unsigned int>(size);
    numberOfEvents = 0;
    copyNames(*animation);
    KEY *at = keys;
    for (unsigned int frame = 0; frame < frames; ++frame) {
        for (unsigned int bone = 0; bone < bones; ++bone) {
            const KTBONEFRAME &from = animation->keyframes[frame][bone];
            *at++ = {{from.rotation.x, from.rotation.y, from.rotation.z},
                     {from.position.x, from.position.y, from.position.z}};
        }
    }
    return true;
}

// Behind the keys.
void KTCLIP::copyNames(const KTANIM &animation) {
    nameStarts = reinterpret_cast<std::uint32_t *>(keys + bones * frames);
    names = reinterpret_cast<char *>(nameStarts + bones);
    std::uint32_t end = 0;
    for (unsigned int bone = 0; bone < bones; ++bone) {
        nameStarts[bone] = end;
        const std::size_t length = std::strlen(animation.getBoneName(bone)) + 1;
        std::memcpy(names + end, animation.getBoneName(bone), length);
        end += static_cast<std::uint32_t>(length);
    }
}

const char *KTCLIP::getBoneName(unsigned int bone) const {
    return bone < bones ? names + nameStarts[bone] : nullptr;
}

int KTCLIP::findBone(const char *name) const {
    for (unsigned int bone = 0; name && bone < bones; ++bone)
        if (std::strcmp(getBoneName(bone), name) == 0) return static_cast<int>(bone);
    return -1;
}

R3XVECTOR3D KTCLIP::getRotation(unsigned int frame, unsigned int bone) const {
    return frame < frames && bone < bones ? R3XVECTOR3D(key(frame, bone).rotation) : R3XVECTOR3D();
}

R3XVECTOR3D KTCLIP::getPosition(unsigned int frame, unsigned int bone) const {
    return frame < frames && bone < bones ? R3XVECTOR3D(key(frame, bone).position) : R3XVECTOR3D();
}

bool KTCLIP::addEvent(unsigned int frame, int code) {
    const char *const call = "KTCLIP::addEvent";
    if (frame >= frames) return keltra::kit::failRange(call, "frame", long(frame), long(frames) - 1);
    if (code == 0) return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "code", "0", "another"});
    if (numberOfEvents == maxEvents)
        return keltra::kit::fail(KT_FAULT_FULL, call, {nullptr, 0, "events", nullptr, "8"});
    events[numberOfEvents++] = {frame, code};
    return true;
}
