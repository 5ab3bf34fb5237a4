// SPDX-License-Identifier: Zlib
#include "tools/convert/model_files.h"

#include "tools/convert/names.h"

#include <assimp/MemoryIOWrapper.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <system_error>

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxEntries = 65536;  // of a folder

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(c < 0x80 ? std::tolower(c) : c); });
    return text;
}

bool isRegular(const std::string &file) {
    std::error_code error;
    return fs::is_regular_file(file, error);
}

bool isMaterialLibrary(const std::string &file) {
    return lower(fs::path(file).extension().string()) == ".mtl";
}

// A figure of Quake III has a file for head, body and legs each, which the importer puts together.
bool isPartOfModel(const std::string &file) { return lower(fs::path(file).extension().string()) == ".md3"; }

// The entry of the folder that has this name in other letters; empty for none. The first in the order of
// their bytes if there are several.
std::string sameInOtherCase(const fs::path &folder, const std::string &name) {
    std::error_code error;
    std::string best;
    fs::directory_iterator at(folder, error), end;
    for (std::size_t count = 0; !error && at != end && count < kMaxEntries; at.increment(error), ++count) {
        const std::string entry = at->path().filename().string();
        if (lower(entry) == lower(name) && (best.empty() || entry < best)) best = entry;
    }
    return best.empty() ? "" : (folder / best).string();
}

void addOnce(std::vector<std::string> &list, const std::string &file) {
    if (std::find(list.begin(), list.end(), file) == list.end()) list.push_back(file);
}

}  // namespace

ModelFiles::ModelFiles(const std::string &model, const std::vector<std::string> &folders)
    : model(model), reach(model, folders) {}

std::string ModelFiles::found(const std::string &file) const {
    if (file == model || isRegular(file)) return file;
    std::string path = file;
    std::replace(path.begin(), path.end(), '\\', '/');
    const fs::path parent = fs::path(path).parent_path();
    const std::string name = fs::path(path).filename().string();
    const std::string near = sameInOtherCase(parent.empty() ? "." : parent, name);
    if (!near.empty() || !isMaterialLibrary(name)) return near;
    return sameInOtherCase(reach.folder(), name);
}

bool ModelFiles::mayRead(const std::string &file) const {
    return file == model || (isRegular(file) && reach.allows(file));
}

bool ModelFiles::Exists(const char *file) const {
    const std::string path = found(file);
    return !path.empty() && mayRead(path);
}

Assimp::IOStream *ModelFiles::Open(const char *file, const char *mode) {
    const auto inMemory = own.find(fs::path(file).filename().string());
    if (inMemory != own.end())
        return new Assimp::MemoryIOStream(reinterpret_cast<const std::uint8_t *>(inMemory->second.data()),
                                          inMemory->second.size());
    if (mode[0] != 'r' || std::string(mode).find('+') != std::string::npos) return nullptr;
    const std::string path = found(file);
    if (path.empty()) {
        addOnce(missing, file);
        return nullptr;
    }
    if (!mayRead(path)) {
        if (isRegular(path)) addOnce(refused, path);
        return nullptr;
    }
    Assimp::IOStream *stream =
        path == model && !replacement.empty()
            ? new Assimp::MemoryIOStream(reinterpret_cast<const std::uint8_t *>(replacement.data()),
                                         replacement.size())
            : DefaultIOSystem::Open(path.c_str(), mode);
    if (stream) addOnce(read, fs::path(path).lexically_normal().string());
    return stream;
}

// Importers try names that mostly do not exist, so a missing file is told only where the model names it.
void ModelFiles::tell(Report &report) const {
    // Also a model that no importer has read.
    addOnce(report.inputs, fs::path(model).lexically_normal().string());
    std::string parts;
    for (const std::string &file : read) {
        addOnce(report.inputs, file);
        if (isPartOfModel(file) && fs::path(file).filename() != fs::path(model).filename())
            parts += (parts.empty() ? "" : ", ") + fs::path(file).filename().string();
    }
    if (!parts.empty()) report.note(cleanText(parts) + ": the other parts of its figure are joined to it");
    for (const std::string &file : refused)
        report.miss("file " + cleanText(file) +
                    " is not read: it lies outside of the model's folder; --textures can name its folder");
    // In the place of a library that is missing, the importer looks for one of the model's name.
    std::vector<std::string> libraries;
    for (std::string file : missing) {
        std::replace(file.begin(), file.end(), '\\', '/');
        if (isMaterialLibrary(file)) addOnce(libraries, fs::path(file).filename().string());
    }
    const std::string instead = fs::path(model).stem().string() + ".mtl";
    for (const std::string &library : libraries)
        if (library != instead || (libraries.size() == 1 && refused.empty()))
            report.miss("material library " + cleanText(library) + " is missing");
}

}  // namespace keltra::convert
