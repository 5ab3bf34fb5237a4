// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_CALL_TEXT_H
#define KELTRA_TESTS_CALL_TEXT_H

// A GL call as a line of text that is the same on every machine: no addresses, but what is at them.

#include <GLES/gl.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "tests/support/call_log.h"

namespace keltra::test {

/// FNV-1a of 64 bits.
constexpr std::uint64_t kEmptyHash = 0xcbf29ce484222325u;
std::uint64_t hashBytes(const void *bytes, std::size_t size, std::uint64_t before = kEmptyHash);
std::string hashText(std::uint64_t hash);

/// Follows the client state, so that a drawing call can be told with its vertices.
class CallText {
   public:
    /// The line of a call, without its end. Bit n of `pointers` says that argument n is an address.
    std::string line(const Call &call, unsigned pointers);

   private:
    static constexpr unsigned kChannels = 16;
    enum Kind { kVertices, kNormals, kColors, kTexCoords, kKinds = kTexCoords + kChannels };
    struct Array {
        bool isOn = false;
        int size = 0, type = 0, stride = 0;
        const std::uint8_t *begin = nullptr;
    };

    void follow(const Call &call);
    void setPointer(unsigned kind, std::int64_t size, const std::int64_t *typeStridePointer);
    unsigned kindOf(std::int64_t clientState) const;
    std::string drawn(const Call &call) const;
    std::uint64_t hashVertices(const Array &array, const std::vector<bool> &used) const;

    std::array<Array, kKinds> arrays;
    unsigned channel = 0;
};

}  // namespace keltra::test

#endif
