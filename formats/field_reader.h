// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FIELD_READER_H
#define KELTRA_FORMATS_FIELD_READER_H

#include <cstddef>
#include <cstdint>

#include "formats/byte_reader.h"
#include "formats/fault.h"
#include "formats/limits.h"

namespace keltra {

// Reads fields by name, for the reports of faults. After an overrun everything reads as zero.
class FieldReader {
   public:
    FieldReader(const void *bytes, std::size_t size)
        : reader(bytes, size), fieldOffset(0), field(""), found{0, "", nullptr} {}

    std::uint8_t u8(const char *name) { return at(name).u8(); }
    std::uint16_t u16(const char *name) { return at(name).u16(); }
    std::uint32_t u32(const char *name) { return at(name).u32(); }
    float f32(const char *name) { return at(name).f32(); }
    void floats(const char *name, float *values, int count) {
        at(name);
        for (int i = 0; i < count; ++i) values[i] = reader.f32();
    }
    const char *string(const char *name) { return at(name).string(kNameSize); }
    const unsigned char *array(const char *name, std::uint64_t elements, std::size_t elementSize) {
        const std::uint64_t bytes = elements * elementSize;
        return at(name).take(bytes > SIZE_MAX ? SIZE_MAX : static_cast<std::size_t>(bytes));
    }

    std::size_t remaining() const { return reader.remaining(); }
    std::size_t position() const { return reader.position(); }
    // False when a field reached past the end or a name is too long; the fault says which.
    bool isWhole() {
        if (!reader.ok() && !found.reason)
            keltra::refuse(&found, fieldOffset, field, "ends early or is too long");
        return reader.ok();
    }
    // Notes the first fault; always false.
    bool refuse(std::size_t offset, const char *name, const char *reason, long limit = 0) {
        if (!found.reason) keltra::refuse(&found, offset, name, reason, limit);
        return false;
    }
    bool refuseValue(std::size_t offset, const char *name, long value, const char *reason, long limit = 0) {
        if (!found.reason) keltra::refuseValue(&found, offset, name, value, reason, limit);
        return false;
    }
    const Fault &fault() const { return found; }

   private:
    ByteReader &at(const char *name) {
        if (reader.ok()) {
            fieldOffset = reader.position();
            field = faultText(name);
        }
        return reader;
    }

    ByteReader reader;
    std::size_t fieldOffset;
    const char *field;
    Fault found;
};

}  // namespace keltra

#endif
