// SPDX-License-Identifier: Zlib
#include "tools/formats/kta_writer.h"

#include "tools/formats/byte_writer.h"

namespace keltra::formats {
namespace {

constexpr char kMagic[] = "KTA file v1.6a";

void putVector(ByteWriter &out, Vec3 v) {
    out.f32(v.x);
    out.f32(v.y);
    out.f32(v.z);
}

}  // namespace

std::vector<std::uint8_t> writeKta(const Animation &animation) {
    ByteWriter out;
    out.raw(kMagic, sizeof(kMagic) - 1);
    out.u8(animation.endOfText);
    out.u16(static_cast<unsigned>(animation.bones.size() & 0xFFFF));
    out.u16(static_cast<unsigned>(animation.frames.size() & 0xFFFF));
    for (const std::string &bone : animation.bones) out.string(bone);
    for (const std::vector<Keyframe> &frame : animation.frames) {
        for (const Keyframe &keyframe : frame) {
            putVector(out, keyframe.rotation);
            putVector(out, keyframe.position);
            out.u8(keyframe.set ? keyframe.setByte : 0);
        }
    }
    out.raw(animation.rest.data(), animation.rest.size());
    return out.take();
}

}  // namespace keltra::formats
