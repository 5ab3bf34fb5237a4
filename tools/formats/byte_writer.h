// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_BYTE_WRITER_H
#define KELTRA_FORMATS_BYTE_WRITER_H

// Appends little-endian values to a growing buffer, on machines of any byte order.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace keltra::formats {

class ByteWriter {
   public:
    void u8(unsigned value) { bytes.push_back(static_cast<std::uint8_t>(value)); }

    void u16(unsigned value) {
        u8(value & 0xFF);
        u8((value >> 8) & 0xFF);
    }

    void u32(std::uint32_t value) {
        u16(value & 0xFFFF);
        u16(value >> 16);
    }

    void f32(float value) {
        std::uint32_t bits = 0;
        static_assert(sizeof(bits) == sizeof(value), "float must have 32 bits");
        std::memcpy(&bits, &value, sizeof(bits));
        u32(bits);
    }

    // The text and one terminating zero byte. Zeros inside `text` are written too: tests need damaged names.
    void string(const std::string &text) {
        raw(text.data(), text.size());
        u8(0);
    }

    void raw(const void *data, std::size_t size) {
        const std::uint8_t *first = static_cast<const std::uint8_t *>(data);
        bytes.insert(bytes.end(), first, first + size);
    }

    void zeros(std::size_t count) { bytes.insert(bytes.end(), count, 0); }

    std::size_t size() const { return bytes.size(); }
    std::vector<std::uint8_t> take() { return std::move(bytes); }

   private:
    std::vector<std::uint8_t> bytes;
};

}  // namespace keltra::formats

#endif
