#ifndef KELTRA_FORMATS_KTA_WRITER_H
#define KELTRA_FORMATS_KTA_WRITER_H

// Writes KTA animation files, byte for byte the same on every machine, without the engine's own writer: each
// checks the other. The structures hold what goes into the file and nothing is checked; the counts are the
// sizes of the lists.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/formats/vec.h"

namespace keltra::formats {

struct Keyframe {
    Vec3 rotation;  // degrees
    Vec3 position;
    bool set = true;      // given explicitly, not interpolated
    uint8_t setByte = 1;  // what a set keyframe is marked with
};

struct Animation {
    std::vector<std::string> bones;
    std::vector<std::vector<Keyframe>> frames;  // in each frame one keyframe a bone
    uint8_t endOfText = 26;
    std::vector<uint8_t> rest;  // behind the last keyframe, where nothing reads
};

constexpr size_t kKtaBoneCountOffset = 15;
constexpr size_t kKtaFrameCountOffset = 17;
constexpr size_t kKtaNamesOffset = 19;
constexpr size_t kKtaKeyframeSize = 25;

// The bytes of the file.
std::vector<uint8_t> writeKta(const Animation &animation);

}  // namespace keltra::formats

#endif  // KELTRA_FORMATS_KTA_WRITER_H
