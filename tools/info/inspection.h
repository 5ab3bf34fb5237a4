#ifndef KELTRA_INFO_INSPECTION_H
#define KELTRA_INFO_INSPECTION_H

#include <keltra/fault.h>

#include <cstddef>
#include <nlohmann/json.hpp>
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

// Insertion order is what is printed. Texts in it are the file's own bytes, whatever they are; lists of
// objects with a "level" are trees in depth-first order.
using Fields = nlohmann::ordered_json;

struct Inspection {
    FileKind kind = FileKind::kUnknown;
    bool good = false;
    Flaw flaw;                         // of a bad file
    Fields fields = Fields::object();  // of a bad file: what comes before the flaw
    std::vector<std::string> notes;    // what the engine takes and a person might not have meant
    // What makes the file bad, or what the engine goes on without, as the engine tells it; the texts stand in
    // for the file itself where `file` is empty.
    std::vector<KTFAULT> faults;
};

}  // namespace keltra::info

#endif
