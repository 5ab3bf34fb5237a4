// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_FIELD_READER_H
#define KELTRA_FORMATS_FIELD_READER_H

#include "formats/byte_reader.h"
#include "formats/fault.h"
#include "formats/limits.h"

#include <cstddef>
#include <cstdint>

namespace keltra {

// Reads fields by name, for the reports of faults. After an overrun everything reads as zero. What is not
// inline is large where it is used, once or twice in a file.
class FieldReader {
   public:
    FieldReader(const void *bytes, std::size_t size) : reader(bytes, size), fieldOffset(0), field() {}

    std::uint8_t u8(FaultText name) { return at(name).u8(); }
    std::uint16_t u16(FaultText name) { return at(name).u16(); }
    std::uint32_t u32(FaultText name) { return at(name).u32(); }
    float f32(FaultText name) { return at(name).f32(); }
    void floats(FaultText name, float *values, std::size_t count) { at(name).floats(values, count); }
    [[gnu::noinline]] const char *string(FaultText name) { return at(name).string(kNameSize); }
    [[gnu::noinline]] const unsigned char *array(FaultText name, std::uint64_t elements,
                                                 std::size_t elementSize) {
        const std::uint64_t bytes = elements * elementSize;
        return at(name).take(bytes > SIZE_MAX ? SIZE_MAX : static_cast<std::size_t>(bytes));
    }

    std::size_t remaining() const { return reader.remaining(); }
    std::size_t position() const { return reader.position(); }
    // Of what an earlier read returned, not null.
    std::size_t offsetOf(const unsigned char *place) const { return reader.offsetOf(place); }
    // False when a field reached past the end or a name is too long; the fault says which.
    bool isWhole() {
        if (!reader.ok()) refuse(fieldOffset, field, KT_TEXT("ends early or is too long"));
        return reader.ok();
    }
    // Notes the first fault; always false.
    [[gnu::noinline]] bool refuse(std::size_t offset, FaultText name, FaultText reason) {
        if (!found.code) keltra::refuse(&found, offset, name, reason);
        return false;
    }
    [[gnu::noinline]] bool refuseValue(std::size_t offset, FaultText name, long value, FaultText reason,
                                       long limit = 0) {
        if (!found.code) keltra::refuseValue(&found, offset, name, value, reason, limit);
        return false;
    }
    const Fault &fault() const { return found; }

   private:
    ByteReader &at(FaultText name) {
        if (reader.ok()) {
            fieldOffset = reader.position();
            field = name;
        }
        return reader;
    }

    ByteReader reader;
    std::size_t fieldOffset;
    FaultText field;
    Fault found;
};

}  // namespace keltra

#endif
