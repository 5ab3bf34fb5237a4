// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KTA_WRITER_H
#define KELTRA_FORMATS_KTA_WRITER_H

// Writes KTA animation files, the same bytes on every machine. Does not use the engine's own writer, so that
// tests can compare the two. The structures hold what goes into the file and nothing is checked; the counts
// are the sizes of the lists.

#include "tools/formats/vec.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace keltra::formats {

struct Keyframe {
    Vec3 rotation;  // degrees
    Vec3 position;
    bool set = true;           // given explicitly, not interpolated
    std::uint8_t setByte = 1;  // the byte that marks a set keyframe
};

struct Animation {
    std::vector<std::string> bones;
    std::vector<std::vector<Keyframe>> frames;  // one keyframe per bone in each frame
    std::uint8_t endOfText = 26;
    std::vector<std::uint8_t> rest;  // after the last keyframe; the engine does not read it
};

constexpr std::size_t kKtaBoneCountOffset = 15;
constexpr std::size_t kKtaFrameCountOffset = 17;
constexpr std::size_t kKtaNamesOffset = 19;
constexpr std::size_t kKtaKeyframeSize = 25;

// The bytes of the file.
std::vector<std::uint8_t> writeKta(const Animation &animation);

}  // namespace keltra::formats

#endif
