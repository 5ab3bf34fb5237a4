#ifndef KELTRA_FORMATS_ANIM_RECORD_H
#define KELTRA_FORMATS_ANIM_RECORD_H

// The contents of a KTA animation file. Names and keyframes stay in the file, little-endian and without
// alignment.

#include <keltra/anim.h>

#include <cstddef>

#include "formats/byte_reader.h"
#include "formats/fault.h"

namespace keltra {

constexpr char kAnimMagic[] = "KTA file v1.6a";
constexpr std::size_t kKeyframeSize = 25;

struct AnimRecord {
    unsigned int bones, frames;
    const char *names[KTANIM::maxBones];  // of a file that is refused: null from the first bad one on
    const unsigned char *keyframes;       // frame by frame, in a frame bone by bone
    std::size_t size;                     // bytes up to the end of the last keyframe
};

// True for a whole animation within the limits of KTANIM; what follows the last keyframe is not looked at.
// Otherwise `fault`, which may be null, tells what is wrong.
bool readAnim(const void *bytes, std::size_t size, AnimRecord &record, Fault *fault = nullptr);

inline ByteReader keyframesOf(const AnimRecord &record) {
    return ByteReader(record.keyframes, kKeyframeSize * record.frames * record.bones);
}

inline R3XVECTOR3D readVector(ByteReader &reader) {
    const float x = reader.f32(), y = reader.f32(), z = reader.f32();
    return R3XVECTOR3D(x, y, z);
}

inline void readKeyframe(ByteReader &reader, KTBONEFRAME &keyframe) {
    keyframe.rotation = readVector(reader);
    keyframe.position = readVector(reader);
    keyframe.set = reader.u8() != 0;
}

}  // namespace keltra

#endif
