// SPDX-License-Identifier: Zlib
#include "tools/formats/kta_reader.h"

#include "formats/anim_record.h"
#include "tools/formats/fault_text.h"

namespace keltra::formats {
namespace {

constexpr std::size_t kEndOfTextOffset = 14;

Vec3 vectorFrom(ByteReader &reader) {
    Vec3 v;
    v.x = reader.f32();
    v.y = reader.f32();
    v.z = reader.f32();
    return v;
}

Keyframe keyframeFrom(ByteReader &reader) {
    Keyframe keyframe;
    keyframe.rotation = vectorFrom(reader);
    keyframe.position = vectorFrom(reader);
    const std::uint8_t mark = reader.u8();
    keyframe.set = mark != 0;
    if (keyframe.set) keyframe.setByte = mark;
    return keyframe;
}

}  // namespace

std::optional<Animation> readKta(const std::vector<std::uint8_t> &bytes, std::string *reason) {
    AnimRecord record = {};
    Fault fault = {};
    if (!readAnim(bytes.data(), bytes.size(), record, &fault)) {
        if (reason) *reason = textOf(fault);
        return std::nullopt;
    }
    Animation animation;
    animation.endOfText = bytes[kEndOfTextOffset];
    animation.bones.assign(record.names, record.names + record.bones);
    animation.frames.resize(record.frames);
    ByteReader reader = keyframesOf(record);
    for (std::vector<Keyframe> &frame : animation.frames) {
        frame.reserve(record.bones);
        for (unsigned bone = 0; bone < record.bones; ++bone) frame.push_back(keyframeFrom(reader));
    }
    animation.rest.assign(bytes.begin() + static_cast<std::ptrdiff_t>(record.size), bytes.end());
    return animation;
}

}  // namespace keltra::formats
