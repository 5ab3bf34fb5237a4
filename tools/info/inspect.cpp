// SPDX-License-Identifier: Zlib
#include "tools/info/inspect.h"

#include "tools/info/kinds.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <new>

namespace keltra::info {

namespace {

constexpr char kLeftOut[] = "more faults are left out";
constexpr std::size_t kMostNotes = 100;  // and faults

void inspectKind(FileKind kind, const Source &source, Inspection &result) {
    switch (kind) {
        case FileKind::kScene:
            return inspectScene(source, result);
        case FileKind::kAnimation:
            return inspectAnimation(source, result);
        case FileKind::kTexture:
            return inspectTexture(source, result);
        case FileKind::kKerning:
            return inspectKerning(source, result);
        case FileKind::kSettings:
            return inspectSettings(source, result);
        case FileKind::kInterface:
            return inspectInterface(source, result);
        case FileKind::kEmitter:
            return inspectEmitter(source, result);
        case FileKind::kVideo:
            return inspectVideo(source, result);
        case FileKind::kUnknown:
            return setFlaw(result, "kind", source.size ? "not a file of the engine" : "an empty file");
    }
}

}  // namespace

Fields number(float value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
    // Converted through its shortest text, since 0.1f as a double is 0.10000000149.
    char text[32];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
    double result = 0.0;
    std::from_chars(text, end.ptr, result);
    return result;
}

void note(Inspection &result, const std::string &text) {
    if (result.notes.size() < kMostNotes)
        result.notes.push_back(text);
    else if (result.notes.size() == kMostNotes)
        result.notes.push_back("more notes are left out");
}

std::string counted(std::size_t count, const std::string &noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string quoted(const std::string &name) {
    constexpr std::size_t kLongest = 100;
    if (name.size() <= kLongest) return '"' + name + '"';
    // Bytes 10xxxxxx continue a character, three of them at most.
    std::size_t length = kLongest;
    while (length > kLongest - 3 && (name[length] & 0xC0) == 0x80) --length;
    return '"' + name.substr(0, length) + "...\"";
}

void addFault(Inspection &result, const KTFAULT &fault) {
    if (result.faults.size() < kMostNotes)
        result.faults.push_back(fault);
    else if (result.notes.empty() || result.notes.back() != kLeftOut)
        note(result, kLeftOut);
}

void addMissing(Inspection &result, const Source &source, const std::string &name, unsigned int line) {
    if (source.folder.empty()) return;
    const std::string path = source.folder + (source.folder.back() == '/' ? "" : "/") + name;
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error)) return;
    KTFAULT fault =
        newFault(std::filesystem::exists(path, error) ? KT_FAULT_FILE_KIND : KT_FAULT_FILE_MISSING);
    fault.severity = KT_FAULT_WARNING;
    setFaultPath(fault.file, path.c_str());
    fault.neededByLine = line;
    addFault(result, fault);
}

Faults::Faults(Inspection &result) {
    const auto add = [](const KTFAULT *fault, void *user) {
        addFault(*static_cast<Inspection *>(user), *fault);
    };
    KTFAULTS::setHandler(add, &result);
}
Faults::~Faults() { KTFAULTS::setHandler(nullptr, nullptr); }

namespace {

void setFlaw(Inspection &result, KTFAULT &fault, const std::string &field) {
    result.good = false;
    result.flaw = {static_cast<std::size_t>(fault.byte), 0, 0, field, fault.expected};
    setFaultText(fault.field, field.c_str());
    addFault(result, fault);
}

}  // namespace

void setFlaw(Inspection &result, const Fault &fault, const std::string &prefix) {
    KTFAULT &stored = toPublic(fault);
    setFlaw(result, stored, prefix + stored.field);
}

void setFlaw(Inspection &result, const std::string &field, const std::string &reason, std::size_t offset) {
    KTFAULT &stored = newFault(KT_FAULT_DATA);
    stored.byte = static_cast<long>(offset);
    setFaultText(stored.expected, reason.c_str());
    setFlaw(result, stored, field);
}

void setTextFlaw(Inspection &result, const Source &source, const Fault &fault) {
    setFlaw(result, fault);
    setFlawPlace(result, source);
}

void setFlawPlace(Inspection &result, const Source &source) {
    Flaw &flaw = result.flaw;
    result.faults.back().byte = -1;
    result.faults.back().line = lineAt(source.bytes, source.size, flaw.offset);
    flaw.line = flaw.column = 1;
    for (std::size_t i = 0; i < flaw.offset && i < source.size; ++i) {
        const bool ends = source.bytes[i] == '\n' ||
                          (source.bytes[i] == '\r' && (i + 1 >= source.size || source.bytes[i + 1] != '\n'));
        flaw.line += ends;
        flaw.column = ends ? 1 : flaw.column + 1;
    }
}

namespace {

// The engine checks the size before it searches for missing parts.
void tellEmpty(std::size_t size, Inspection &result) {
    if (size != 0) return;
    KTFAULT fault = newFault(KT_FAULT_FILE_EMPTY);
    if (result.good) fault.severity = KT_FAULT_WARNING;
    result.faults.assign(1, fault);
}

}  // namespace

Inspection inspect(FileKind kind, const void *bytes, std::size_t size, const std::string &folder) {
    Inspection result;
    result.kind = kind;
    try {
        inspectKind(kind, {bytes ? static_cast<const char *>(bytes) : "", bytes ? size : 0, folder}, result);
    } catch (const std::bad_alloc &) {
        result = Inspection();
        result.kind = kind;
        setFlaw(result, "file", "out of memory");
    }
    tellEmpty(size, result);
    return result;
}

}  // namespace keltra::info
