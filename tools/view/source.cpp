// SPDX-License-Identifier: Zlib
#include "tools/view/source.h"

#include "tools/convert/isolated.h"
#include "tools/convert/names.h"
#include "tools/view/failure.h"

#include <sys/stat.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace keltra::view {
namespace {

namespace fs = std::filesystem;

constexpr char kMagic[] = "KTE file v1.";
constexpr char kSceneEnding[] = ".kte", kClipEnding[] = ".kta";

std::string lowerCase(std::string text) {
    for (char &c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

bool hasEnding(const std::string &file, const char *ending) {
    return lowerCase(fs::path(file).extension().string()) == ending;
}

// Only regular files are opened: opening a pipe can block forever.
void requireFile(const std::string &file) {
    struct stat status;
    if (::stat(file.c_str(), &status) != 0) throw failure(file, std::strerror(errno));
    if (S_ISDIR(status.st_mode)) throw failure(file, "is a folder");
    if (!S_ISREG(status.st_mode)) throw failure(file, "is not a regular file");
    errno = 0;
    if (!std::ifstream(file, std::ios::binary)) throw failure(file, std::strerror(errno ? errno : EIO));
}

std::string folderOf(const std::string &file) {
    const fs::path folder = fs::path(file).parent_path();
    return folder.empty() ? "." : folder.string();
}

void addClip(Source &source, const std::string &title, const std::string &path, bool wanted,
             const LinkFolder &links) {
    const std::string name = source.key + "-" + std::to_string(source.clips.size()) + kClipEnding;
    links.link(path, name);
    source.clips.push_back({title, path, name, wanted});
}

void openScene(Source &source, const std::string &file, const LinkFolder &links) {
    links.link(folderOf(file), source.key);
    links.link(file, source.scene);
    const std::size_t stem = fs::path(file).stem().string().size() + 1;
    for (const std::string &clip : clipsBeside(file))
        addClip(source, fs::path(clip).stem().string().substr(stem), clip, false, links);
}

void convertModel(Source &source, const std::string &file, const LinkFolder &links) {
    links.makeFolder(source.key);
    const std::string folder = links.path(source.key);
    convert::Options options;
    options.model = file;
    options.name = convert::fileStem(file);
    const convert::Outcome outcome = convert::convertIsolated(options, folder, [](const char *, double) {});
    if (!outcome.converted) throw failure(file, outcome.reason);
    links.link(folder + "/" + outcome.report.sceneFile, source.scene);
    for (const convert::ClipReport &clip : outcome.report.clips) {
        const std::string title = clip.name.empty() ? fs::path(clip.file).stem().string() : clip.name;
        addClip(source, title, folder + "/" + clip.file, false, links);
    }
}

}  // namespace

bool isSceneFile(const std::string &file) {
    requireFile(file);
    if (hasEnding(file, kSceneEnding)) return true;
    char start[sizeof kMagic - 1] = {};
    std::ifstream(file, std::ios::binary).read(start, sizeof start);
    return std::memcmp(start, kMagic, sizeof start) == 0;
}

std::vector<std::string> clipsBeside(const std::string &sceneFile) {
    const std::string beginning = fs::path(sceneFile).stem().string() + "_";
    std::vector<std::string> clips;
    std::error_code error, unknown;
    for (fs::directory_iterator entry(folderOf(sceneFile), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.compare(0, beginning.size(), beginning) == 0 && hasEnding(name, kClipEnding) &&
            entry->is_regular_file(unknown))
            clips.push_back(entry->path().string());
    }
    std::sort(clips.begin(), clips.end());
    return clips;
}

Source openSource(const std::string &file, const std::vector<std::string> &clips, const LinkFolder &links,
                  unsigned generation) {
    Source source;
    source.key = "m" + std::to_string(generation);
    source.scene = source.key + "-scene.kte";
    try {
        if (isSceneFile(file))
            openScene(source, file, links);
        else
            convertModel(source, file, links);
        for (const std::string &clip : clips) {
            requireFile(clip);
            addClip(source, fs::path(clip).stem().string(), clip, true, links);
        }
    } catch (...) {
        links.clear(source.key);
        throw;
    }
    return source;
}

}  // namespace keltra::view
