#include "tools/formats/kta_writer.h"

#include "tools/formats/byte_writer.h"

namespace keltra {
namespace formats {
namespace {

constexpr char kMagic[] = "KTA file v1.6a";
constexpr unsigned kEndOfText = 26;

void putVector(ByteWriter *out, Vec3 v) {
    out->f32(v.x);
    out->f32(v.y);
    out->f32(v.z);
}

}  // namespace

std::vector<uint8_t> writeKta(const Animation &animation) {
    ByteWriter out;
    out.raw(kMagic, sizeof(kMagic) - 1);
    out.u8(kEndOfText);
    out.u16(static_cast<unsigned>(animation.bones.size() & 0xFFFF));
    out.u16(static_cast<unsigned>(animation.frames.size() & 0xFFFF));
    for (const std::string &bone : animation.bones) {
        out.string(bone);
    }
    for (const std::vector<Keyframe> &frame : animation.frames) {
        for (const Keyframe &keyframe : frame) {
            putVector(&out, keyframe.rotation);
            putVector(&out, keyframe.position);
            out.u8(keyframe.set ? 1 : 0);
        }
    }
    return out.take();
}

}  // namespace formats
}  // namespace keltra
