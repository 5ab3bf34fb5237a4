// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_ANIM_RECORD_H
#define KELTRA_FORMATS_ANIM_RECORD_H

// The contents of a KTA animation file. Names and keyframes stay in the file, little-endian and without
// alignment.

#include "formats/byte_reader.h"
#include "formats/fault.h"
#include "formats/limits.h"

#include <cstddef>

namespace keltra {

constexpr char kAnimMagic[] = "KTA file v1.6a";
constexpr std::size_t kKeyframeSize = 25;

struct AnimRecord {
    unsigned int bones, frames;
    const char *names[kMaxAnimBones];  // of a file that is refused: null from the first bad one on
    const unsigned char *keyframes;    // frame by frame, in a frame bone by bone
    std::size_t size;                  // bytes up to the end of the last keyframe
};

// True for a whole animation within the limits; bytes after the last keyframe are ignored. Otherwise `fault`,
// which may be null, receives what is wrong.
bool readAnim(const void *bytes, std::size_t size, AnimRecord &record, Fault *fault = nullptr);

inline ByteReader keyframesOf(const AnimRecord &record) {
    return ByteReader(record.keyframes, kKeyframeSize * record.frames * record.bones);
}

struct KeyframeRecord {
    float rotation[3], position[3];
    bool set;
};

inline void readKeyframe(ByteReader &reader, KeyframeRecord &keyframe) {
    for (float &angle : keyframe.rotation) angle = reader.f32();
    for (float &coordinate : keyframe.position) coordinate = reader.f32();
    keyframe.set = reader.u8() != 0;
}

}  // namespace keltra

#endif
