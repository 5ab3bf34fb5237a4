// SPDX-License-Identifier: Zlib
#include <keltra/anim.h>

#include "formats/anim_record.h"
#include "foundation/cold.h"
#include "foundation/file_bytes.h"
#include "foundation/text.h"
#include "platform/platform.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr unsigned char kEndOfText = 26;  // follows the magic, so that a text viewer stops there; not checked

// Little-endian, on any machine. A file that exists is replaced when the new one is complete: when there is
// no room for it or the power fails, the old one is still there.
class Writer {
   public:
    explicit Writer(const char *path) : path(path) {
        if (keltra::platformCanReplace(path)) makeAside();
        if (!file) file = keltra::platformCreateFile(path, "wb");
        good = file != nullptr;
    }
    ~Writer() { delete[] aside; }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    void bytes(const void *data, std::size_t size) {
        good = good && std::fwrite(data, 1, size, file) == size;
    }
    void u8(unsigned int value) {
        unsigned char byte = static_cast<unsigned char>(value);
        bytes(&byte, 1);
    }
    void u16(unsigned int value) {
        u8(value & 0xff);
        u8(value >> 8 & 0xff);
    }
    void vector(const R3XVECTOR3D &value) {
        const float components[] = {value.x, value.y, value.z};
        for (float component : components) {
            std::uint32_t bits;
            std::memcpy(&bits, &component, sizeof bits);
            u16(bits & 0xffff);
            u16(bits >> 16);
        }
    }
    // False when a write failed.
    bool close() {
        if (!file) return false;
        good = std::fclose(file) == 0 && good;
        if (!aside) return good;
        if (good) return keltra::platformReplaceFile(aside, path);
        std::remove(aside);
        return false;
    }

   private:
    // In the same folder. Where no file can be made there, the existing one is written to.
    void makeAside() {
        const char suffix[] = ".part";
        const std::size_t length = std::strlen(path);
        aside = new (std::nothrow) char[length + sizeof suffix];
        if (!aside) return;
        std::memcpy(aside, path, length);
        std::memcpy(aside + length, suffix, sizeof suffix);
        if (keltra::platformPathKind(aside) == keltra::PathKind::kNothing ||
            keltra::platformCanReplace(aside))
            file = keltra::platformCreateFile(aside, "wb");
        if (file) return;
        delete[] aside;
        aside = nullptr;
    }

    const char *path;
    char *aside = nullptr;
    std::FILE *file = nullptr;
    bool good;
};

// Apart from the load, which is built small.
[[gnu::noinline, gnu::hot]] void readKeyframes(keltra::ByteReader reader, const keltra::AnimRecord &anim,
                                               KTBONEFRAME (*keyframes)[KTANIM::maxBones]) {
    for (unsigned int frame = 0; frame < anim.frames; ++frame)
        for (unsigned int bone = 0; bone < anim.bones; ++bone) {
            keltra::KeyframeRecord record;
            keltra::readKeyframe(reader, record);
            KTBONEFRAME &keyframe = keyframes[frame][bone];
            keyframe.rotation.set(record.rotation);
            keyframe.position.set(record.position);
            keyframe.set = record.set;
        }
}

}  // namespace

static_assert(KTANIM::maxBones == keltra::kMaxAnimBones && KTANIM::maxFrames == keltra::kMaxAnimFrames,
              "a file that is taken fits");

KELTRA_COLD bool KTANIM::load(const char *fileName) {
    const keltra::FilePath path(ktaPath, fileName);
    keltra::FaultScope scope(KT_CALL("KTANIM::load"), path.text);
    if (!fileName) return scope.failNull(KT_TEXT("fileName"));
    if (std::strlen(fileName) >= sizeof name) return scope.fail(KT_FAULT_FILE_NAME);
    const keltra::FileBytes file(path.text, keltra::kLargestFile, &scope);
    if (!file.data()) return false;
    keltra::AnimRecord record;
    keltra::Fault fault;
    if (!keltra::readAnim(file.data(), file.size(), record, &fault)) return keltra::refuse(scope, fault);
    numberOfBones = static_cast<std::uint16_t>(record.bones);
    numberOfFrames = static_cast<std::uint16_t>(record.frames);
    for (unsigned int bone = 0; bone < record.bones; ++bone)
        keltra::copyText(boneNames[bone], record.names[bone]);
    readKeyframes(keltra::keyframesOf(record), record, keyframes);
    keltra::copyText(name, fileName);
    nameChanged();
    return true;
}

KELTRA_COLD bool KTANIM::save(const char *path) {
    if (!path) return keltra::failNull(KT_CALL("KTANIM::save"), KT_TEXT("path"));
    Writer writer(path);
    writer.bytes(keltra::kAnimMagic, std::strlen(keltra::kAnimMagic));
    writer.u8(kEndOfText);
    writer.u16(bones());
    writer.u16(frames());
    for (unsigned int bone = 0; bone < bones(); ++bone) {
        std::size_t length = ::strnlen(boneNames[bone], sizeof boneNames[bone] - 1);
        writer.bytes(boneNames[bone], length);
        writer.u8(0);
    }
    for (unsigned int frame = 0; frame < frames(); ++frame) {
        for (unsigned int bone = 0; bone < bones(); ++bone) {
            const KTBONEFRAME &keyframe = keyframes[frame][bone];
            writer.vector(keyframe.rotation);
            writer.vector(keyframe.position);
            writer.u8(keyframe.set ? 1 : 0);
        }
    }
    if (writer.close()) return true;
    keltra::FaultScope scope(KT_CALL("KTANIM::save"), path);
    return scope.fail(KT_FAULT_FILE_WRITE);
}
