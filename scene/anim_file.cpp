#include <keltra/anim.h>

#include <cstdio>
#include <cstring>

#include "foundation/byte_reader.h"
#include "foundation/file_bytes.h"
#include "foundation/text.h"

namespace {

const char kMagic[] = "KTA file v1.6a";
const std::size_t kMagicSize = sizeof kMagic - 1;
const unsigned char kEndOfText = 26;  // follows the magic, so that a text viewer stops there; not checked
const std::size_t kKeyframeSize = 25;
const std::size_t kNameSize = 256;

using keltra::ByteReader;

// A whole animation, checked; names and keyframes stay in the file's bytes.
struct AnimRecord {
    unsigned int bones, frames;
    const char *names[KTANIM::maxBones];
    const unsigned char *keyframes;
};

bool readAnim(ByteReader &reader, AnimRecord &record) {
    const unsigned char *magic = reader.take(kMagicSize);
    if (!magic || std::memcmp(magic, kMagic, kMagicSize) != 0) return false;
    reader.skip(1);
    record.bones = reader.u16();
    record.frames = reader.u16();
    if (record.bones > KTANIM::maxBones || record.frames > KTANIM::maxFrames) return false;
    for (unsigned int bone = 0; bone < record.bones; ++bone) record.names[bone] = reader.string(kNameSize);
    record.keyframes = reader.take(kKeyframeSize * record.frames * record.bones);
    return reader.ok();
}

R3XVECTOR3D readVector(ByteReader &reader) {
    float x = reader.f32(), y = reader.f32(), z = reader.f32();
    return R3XVECTOR3D(x, y, z);
}

// Little-endian, on any machine.
class Writer {
   public:
    explicit Writer(const char *path) : file(std::fopen(path, "wb")), good(file != nullptr) {}

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
    // False when anything was not written.
    bool close() { return file && std::fclose(file) == 0 && good; }

   private:
    std::FILE *file;
    bool good;
};

}  // namespace

bool KTANIM::load(const char *fileName) {
    if (!fileName || std::strlen(fileName) >= sizeof name) return false;
    keltra::FileBytes file(keltra::FilePath(ktaPath, fileName).text);
    ByteReader reader(file.data(), file.size());
    AnimRecord record;
    if (!readAnim(reader, record)) return false;
    numberOfBones = static_cast<std::uint16_t>(record.bones);
    numberOfFrames = static_cast<std::uint16_t>(record.frames);
    for (unsigned int bone = 0; bone < record.bones; ++bone)
        keltra::copyText(boneNames[bone], record.names[bone]);
    ByteReader keyframeReader(record.keyframes, kKeyframeSize * record.frames * record.bones);
    for (unsigned int frame = 0; frame < record.frames; ++frame) {
        for (unsigned int bone = 0; bone < record.bones; ++bone) {
            KTBONEFRAME &keyframe = keyframes[frame][bone];
            keyframe.rotation = readVector(keyframeReader);
            keyframe.position = readVector(keyframeReader);
            keyframe.set = keyframeReader.u8() != 0;
        }
    }
    keltra::copyText(name, fileName);
    return true;
}

bool KTANIM::save(const char *path) {
    if (!path) return false;
    Writer writer(path);
    writer.bytes(kMagic, kMagicSize);
    writer.u8(kEndOfText);
    writer.u16(bones());
    writer.u16(frames());
    for (unsigned int bone = 0; bone < bones(); ++bone) {
        std::size_t length = ::strnlen(boneNames[bone], kNameSize - 1);
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
    return writer.close();
}
