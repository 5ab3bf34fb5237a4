// SPDX-License-Identifier: Zlib
#include "formats/anim_record.h"

#include "formats/field_reader.h"

#include <cstring>

namespace keltra {

namespace {

constexpr std::size_t kMagicSize = sizeof kAnimMagic - 1;
constexpr std::size_t kCountsOffset = kMagicSize + 1;  // behind the end of text

bool readCounts(FieldReader &reader, AnimRecord &record) {
    const unsigned char *magic = reader.array(KT_TEXT("magic"), kMagicSize, 1);
    if (!reader.isWhole()) return false;
    if (std::memcmp(magic, kAnimMagic, kMagicSize) != 0)
        return reader.refuse(0, KT_TEXT("magic"), KT_TEXT("not an animation file of version 1.6a"));
    reader.u8(KT_TEXT("end of text"));
    record.bones = reader.u16(KT_TEXT("bone count"));
    record.frames = reader.u16(KT_TEXT("frame count"));
    if (!reader.isWhole()) return false;
    if (record.bones > kMaxAnimBones)
        return reader.refuseValue(kCountsOffset, KT_TEXT("bone count"), record.bones,
                                  KT_TEXT("more than %ld"), kMaxAnimBones);
    if (record.frames > kMaxAnimFrames)
        return reader.refuseValue(kCountsOffset + 2, KT_TEXT("frame count"), record.frames,
                                  KT_TEXT("more than %ld"), kMaxAnimFrames);
    return true;
}

bool readContents(FieldReader &reader, AnimRecord &record) {
    if (!readCounts(reader, record)) {
        record.bones = record.frames = 0;
        return false;
    }
    for (unsigned int bone = 0; bone < record.bones; ++bone)
        record.names[bone] = reader.string(KT_TEXT("name"));
    record.keyframes =
        reader.array(KT_TEXT("keyframes"), std::uint64_t{record.frames} * record.bones, kKeyframeSize);
    record.size = reader.position();
    return reader.isWhole();
}

}  // namespace

bool readAnim(const void *bytes, std::size_t size, AnimRecord &record, Fault *fault) {
    FieldReader reader(bytes, size);
    const bool good = readContents(reader, record);
    if (!good && fault) *fault = reader.fault();
    return good;
}

}  // namespace keltra
