#ifndef KELTRA_INFO_INSPECT_H
#define KELTRA_INFO_INSPECT_H

// What is in a file of the engine, and what is wrong with it. Every parser is the engine's own, so that a
// file is good here exactly when the engine takes it.

#include <cstddef>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "formats/fault.h"

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

// The word of the kind on the command line and in what is printed.
const char *kindName(FileKind kind);
FileKind kindOfName(const std::string &name);
std::vector<std::string> kindNames();

// The kind of a file by its contents, and by the extension of its name when they say nothing.
FileKind identify(const std::string &fileName, const void *bytes, std::size_t size);

// Where a file is bad. Line and column count from 1, and are 0 for binary files and whole-file faults.
struct Flaw {
    std::size_t offset = 0;
    std::size_t line = 0, column = 0;
    std::string field, reason;
    std::string found;  // empty when there is nothing to show
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
};

// A film is good when the engine's decoder gets a picture out of it: the engine opens any file as a film, and
// shows nothing of one that has none. Names of other files are looked for in `folder`; when it is empty, not
// at all.
Inspection inspect(FileKind kind, const void *bytes, std::size_t size, const std::string &folder = "");

}  // namespace keltra::info

#endif
