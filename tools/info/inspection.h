// SPDX-License-Identifier: Zlib
#ifndef KELTRA_INFO_INSPECTION_H
#define KELTRA_INFO_INSPECTION_H

#include <keltra/fault.h>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace keltra::info {

enum class FileKind {
    kScene,
    kAnimation,
    kTexture,
    kKerning,
    kSettings,
    kInterface,
    kEmitter,
    kVideo,
    kUnknown,
};

// Where a file is bad. Line and column count from 1, and are 0 for binary files and whole-file faults.
struct Flaw {
    std::size_t offset = 0;
    std::size_t line = 0, column = 0;
    std::string field, reason;
};

// Printed in insertion order. Texts are the file's own bytes, valid or not; lists of objects with a "level"
// are trees in depth-first order.
using Fields = nlohmann::ordered_json;

struct Inspection {
    FileKind kind = FileKind::kUnknown;
    bool good = false;
    Flaw flaw;                         // of a bad file
    Fields fields = Fields::object();  // of a bad file: what precedes the flaw
    std::vector<std::string> notes;    // accepted by the engine, but possibly a mistake
    // What makes the file bad, or what is missing while it loads, as the engine reports it; an empty `file`
    // is the inspected file itself.
    std::vector<KTFAULT> faults;
};

}  // namespace keltra::info

#endif
