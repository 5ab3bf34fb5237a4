// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_KTE_READER_H
#define KELTRA_FORMATS_KTE_READER_H

// Reads KTE scene files into the writer's structures. Everything in the file is kept, also what the engine
// skips: writing it again gives the same bytes.

#include "tools/formats/kte_writer.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace keltra::formats {

struct KteFile {
    Scene scene;
    KteVersion version = KteVersion::k16a;
};

// Accepts what the engine accepts. Returns nothing for other files; `reason`, unless null, then says where
// and why.
std::optional<KteFile> readKte(const std::vector<std::uint8_t> &bytes, std::string *reason = nullptr);

}  // namespace keltra::formats

#endif
