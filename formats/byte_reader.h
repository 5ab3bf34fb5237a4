// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_BYTE_READER_H
#define KELTRA_FORMATS_BYTE_READER_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace keltra {

// Reads little-endian values from bytes of any alignment. A read past the end makes the reader bad
// permanently: that read and all later ones return 0 or null. The caller reads a whole record and checks ok()
// once. The bytes are not copied.
class ByteReader {
   public:
    ByteReader(const void *bytes, std::size_t size)
        : begin(bytes ? static_cast<const unsigned char *>(bytes) : kNoBytes),
          cursor(begin),
          left(bytes ? size : 0) {}

    std::uint8_t u8() {
        const unsigned char *bytes = take(1);
        return bytes ? bytes[0] : std::uint8_t(0);
    }
    std::uint16_t u16() {
        const unsigned char *bytes = take(2);
        return bytes ? std::uint16_t(bytes[0] | bytes[1] << 8) : std::uint16_t(0);
    }
    std::uint32_t u32() {
        const unsigned char *bytes = take(4);
        if (!bytes) return 0;
        return std::uint32_t(bytes[0]) | std::uint32_t(bytes[1]) << 8 | std::uint32_t(bytes[2]) << 16 |
               std::uint32_t(bytes[3]) << 24;
    }
    float f32() {
        std::uint32_t bits = u32();
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    // As the processor has floats too. All of them are 0 on overrun.
    void floats(float *values, std::size_t count) {
        const std::size_t size = count * sizeof(float);
        if (const unsigned char *bytes = take(size))
            std::memcpy(values, bytes, size);
        else
            std::memset(values, 0, size);
    }

    // The next bytes, in place; null on overrun.
    const unsigned char *take(std::size_t bytes) {
        if (bytes > left) {
            turnBad();
            return nullptr;
        }
        if (bad) return nullptr;
        const unsigned char *taken = cursor;
        cursor += bytes;
        left -= bytes;
        return taken;
    }

    // A zero-terminated string, in place. Null, and bad, without a zero among the next `limit` bytes.
    const char *string(std::size_t limit) {
        std::size_t reach = limit < left ? limit : left;
        const void *zero = reach ? std::memchr(cursor, 0, reach) : nullptr;
        if (!zero) {
            turnBad();
            return nullptr;
        }
        std::size_t length = std::size_t(static_cast<const unsigned char *>(zero) - cursor);
        return reinterpret_cast<const char *>(take(length + 1));
    }

    bool skip(std::size_t bytes) { return take(bytes) != nullptr; }

    std::size_t remaining() const { return left; }
    std::size_t position() const { return offsetOf(cursor); }
    std::size_t offsetOf(const unsigned char *place) const { return std::size_t(place - begin); }
    bool ok() const { return !bad; }

   private:
    void turnBad() {
        bad = true;
        left = 0;
    }

    static constexpr unsigned char kNoBytes[1] = {0};

    const unsigned char *begin, *cursor;
    std::size_t left;
    bool bad = false;
};

}  // namespace keltra

#endif
