#ifndef KELTRA_FORMATS_BYTE_WRITER_H
#define KELTRA_FORMATS_BYTE_WRITER_H

// Appends little-endian values to a growing buffer, whatever the byte order of
// the machine that runs it.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace keltra::formats {

class ByteWriter {
   public:
    void u8(unsigned value) { bytes_.push_back(static_cast<uint8_t>(value)); }

    void u16(unsigned value) {
        u8(value & 0xFF);
        u8((value >> 8) & 0xFF);
    }

    void u32(uint32_t value) {
        u16(value & 0xFFFF);
        u16(value >> 16);
    }

    void f32(float value) {
        uint32_t bits = 0;
        static_assert(sizeof(bits) == sizeof(value), "float must have 32 bits");
        std::memcpy(&bits, &value, sizeof(bits));
        u32(bits);
    }

    // The text and one terminating zero byte. A zero inside `text` is written as
    // it is, so a damaged name can be produced on purpose.
    void string(const std::string &text) {
        raw(text.data(), text.size());
        u8(0);
    }

    void raw(const void *data, size_t size) {
        const uint8_t *first = static_cast<const uint8_t *>(data);
        bytes_.insert(bytes_.end(), first, first + size);
    }

    void zeros(size_t count) { bytes_.insert(bytes_.end(), count, 0); }

    size_t size() const { return bytes_.size(); }
    std::vector<uint8_t> take() { return std::move(bytes_); }

   private:
    std::vector<uint8_t> bytes_;
};

}  // namespace keltra::formats

#endif  // KELTRA_FORMATS_BYTE_WRITER_H
