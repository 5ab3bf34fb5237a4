#ifndef KELTRA_FORMATS_KTE_READER_H
#define KELTRA_FORMATS_KTE_READER_H

// Reads KTE scene files into the writer's structures. Everything in the file is kept, what the engine skips
// too: written again, a file is the same byte for byte.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/formats/kte_writer.h"

namespace keltra::formats {

struct KteFile {
    Scene scene;
    KteVersion version = KteVersion::k16a;
};

// Accepts what the engine accepts. Nothing for other files, and `reason`, when it is not null, says where and
// why.
std::optional<KteFile> readKte(const std::vector<uint8_t> &bytes, std::string *reason = nullptr);

}  // namespace keltra::formats

#endif  // KELTRA_FORMATS_KTE_READER_H
