#ifndef KELTRA_FORMATS_KTA_READER_H
#define KELTRA_FORMATS_KTA_READER_H

// Reads KTA animation files into the writer's structures. Everything in the file is kept: written again, a
// file is the same byte for byte.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/formats/kta_writer.h"

namespace keltra::formats {

// Accepts what the engine accepts. Nothing for other files, and `reason`, when it is not null, says where and
// why.
std::optional<Animation> readKta(const std::vector<uint8_t> &bytes, std::string *reason = nullptr);

}  // namespace keltra::formats

#endif  // KELTRA_FORMATS_KTA_READER_H
