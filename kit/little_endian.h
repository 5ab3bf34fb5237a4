// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_LITTLE_ENDIAN_H
#define KELTRA_KIT_LITTLE_ENDIAN_H

#include <cstdint>

namespace keltra {
namespace kit {

// Four bytes, the lowest first.
inline void put32(unsigned char *at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<unsigned char>(value >> 8 * i & 0xff);
}

inline std::uint32_t get32(const unsigned char *at) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value |= std::uint32_t(at[i]) << 8 * i;
    return value;
}

}  // namespace kit
}  // namespace keltra

#endif
