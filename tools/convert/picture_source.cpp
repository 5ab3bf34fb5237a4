// SPDX-License-Identifier: Zlib
#include "tools/convert/picture_source.h"

#include "tools/convert/names.h"

#include <assimp/scene.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>

namespace keltra::convert {
namespace {

using Parts = std::vector<std::string>;

constexpr std::size_t kMaxFile = std::size_t{256} << 20;
constexpr std::size_t kMaxParts = 64;
constexpr std::size_t kMaxEntries = 65536;  // per folder
constexpr std::size_t kMaxFolders = 4096;   // below one that is searched
constexpr unsigned kGivenDepth = 8;         // levels below a folder that the user gives

// The name that importers write for formats without picture names; the picture mostly has the model's name.
constexpr char kUnnamed[] = "$texture_dummy.bmp";

// Folders, relative to the model, where exporters and artists put pictures.
const Parts kUsualFolders[] = {
    {"textures"},     {"texture"},         {"tex"},           {"maps"},      {"images"},
    {"materials"},    {"..", "textures"},  {"..", "texture"}, {"..", "tex"}, {"..", "maps"},
    {"..", "images"}, {"..", "materials"},
};

std::string lower(std::string text) {
    for (char &c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string extensionOf(const std::string &name) {
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? "" : lower(name.substr(dot + 1));
}

std::string withoutExtension(const std::string &name) { return name.substr(0, name.rfind('.')); }

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string urlDecoded(const std::string &text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escaped =
            text[i] == '%' && i + 2 < text.size() && hexDigit(text[i + 1]) >= 0 && hexDigit(text[i + 2]) >= 0;
        const int code = escaped ? hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]) : 0;
        if (code == 0) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>(code);
        i += 2;
    }
    return plain;
}

// A path in the model, which may come from any system.
struct WrittenPath {
    Parts parts;
    bool absolute = false;  // on this system
    bool foreign = false;   // of another machine: only its last parts can be used
};

WrittenPath written(std::string path) {
    WrittenPath result;
    std::replace(path.begin(), path.end(), '\\', '/');
    if (lower(path.substr(0, 7)) == "file://") {
        path.erase(0, 7);
        if (path.size() > 2 && path[0] == '/' && path[2] == ':') path.erase(0, 1);
    } else if (path.compare(0, 2, "//") == 0) {
        path.erase(0, 2);  // Blender's prefix of a path relative to its file
    }
    if (path.size() > 1 && path[1] == ':') {
        path.erase(0, 2);
        result.foreign = true;
    }
    result.absolute = !result.foreign && !path.empty() && path[0] == '/';
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string part = path.substr(at, end - at);
        if (!part.empty() && part != ".") result.parts.push_back(part);
        at = end + 1;
    }
    const bool named =
        !path.empty() && path.back() != '/' && !result.parts.empty() && result.parts.back() != "..";
    if (!named) result.parts.clear();
    return result;
}

std::string joined(const Parts &parts) {
    std::string path;
    for (const std::string &part : parts) path += (path.empty() ? "" : "/") + part;
    return path;
}

// Opens only regular files: opening a pipe would block, opening a device may have effects.
std::vector<std::uint8_t> readFile(const std::string &path) {
    struct Descriptor {
        int number;
        ~Descriptor() {
            if (number >= 0) close(number);
        }
    } file{open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)};
    struct stat status;
    if (file.number < 0 || fstat(file.number, &status) != 0)
        throw PictureFault(std::string("the file cannot be opened: ") + std::strerror(errno), false);
    if (!S_ISREG(status.st_mode)) throw PictureFault("it is not a regular file", false);
    if (static_cast<std::uint64_t>(status.st_size) > kMaxFile)
        throw PictureFault("its file is larger than 256 MiB", false);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
    std::size_t have = 0;
    while (have < bytes.size()) {
        const ssize_t got = ::read(file.number, bytes.data() + have, bytes.size() - have);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0)
            throw PictureFault(std::string("its file cannot be read: ") + std::strerror(errno), false);
        if (got == 0) break;
        have += static_cast<std::size_t>(got);
    }
    bytes.resize(have);
    return bytes;
}

formats::Image fromTexels(const aiTexture &texture) {
    if (!texture.pcData || texture.mWidth == 0) throw PictureFault("it has no pixels", false);
    if (texture.mWidth > kMaxPictureSide || texture.mHeight > kMaxPictureSide ||
        std::size_t{texture.mWidth} * texture.mHeight > kMaxPicturePixels)
        throw PictureFault("it is too large", false);
    formats::Image image(texture.mWidth, texture.mHeight);
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const aiTexel &texel = texture.pcData[i];
        image.pixels[i] = {texel.r, texel.g, texel.b, texel.a};
    }
    return image;
}

std::string hintOf(const aiTexture &texture) {
    const char *hint = texture.achFormatHint;
    return lower(std::string(hint, strnlen(hint, sizeof texture.achFormatHint)));
}

}  // namespace

PictureSource::PictureSource(const aiScene &scene, const std::string &model,
                             const std::vector<std::string> &folders)
    : scene(scene), reach(model, folders), folder(reach.folder()) {
    const std::size_t slash = model.rfind('/');
    modelStem = withoutExtension(slash == std::string::npos ? model : model.substr(slash + 1));
    for (const std::string &given : folders) givenFolders.push_back(given + "/");
}

const std::vector<PictureSource::Entry> &PictureSource::entriesOf(const std::string &path) {
    const auto known = listed.find(path);
    if (known != listed.end()) return known->second;
    std::vector<Entry> &entries = listed[path];
    std::error_code error;
    std::filesystem::directory_iterator at(path, error), end;
    for (; !error && at != end && entries.size() < kMaxEntries; at.increment(error)) {
        const std::string name = at->path().filename().string();
        entries.push_back({name, lower(name)});
    }
    // The order of a folder's entries is undefined, and the choice must not depend on it.
    std::sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) { return a.name < b.name; });
    return entries;
}

void PictureSource::listFolders(const std::string &root, const Parts &at, unsigned depth,
                                std::vector<Parts> &list) {
    for (const Entry &entry : entriesOf(root + joined(at))) {
        if (list.size() >= kMaxFolders) return;
        Parts below = at;
        below.push_back(entry.name);
        std::error_code error;
        if (entry.name[0] == '.' ||
            !std::filesystem::is_directory(std::filesystem::symlink_status(root + joined(below), error)))
            continue;
        list.push_back(below);
        if (depth > 1) listFolders(root, below, depth - 1, list);
    }
}

const std::vector<Parts> &PictureSource::foldersBelow(const std::string &root, unsigned depth) {
    const auto known = listedFolders.find(root);
    if (known != listedFolders.end()) return known->second;
    std::vector<Parts> &list = listedFolders[root];
    listFolders(root, {}, depth, list);
    return list;
}

// The likeliest first: as written, below the folders that the user gives, near the model, and by the name
// alone anywhere in the given folders.
std::vector<PictureSource::Candidate> PictureSource::candidatesFor(const std::string &text) {
    const WrittenPath path = written(text);
    std::vector<Candidate> candidates;
    const std::size_t count = path.parts.size();
    if (count == 0) return candidates;
    const auto add = [&](const std::string &root, const Parts &in, const Parts &name, bool beside) {
        Parts parts = in;
        parts.insert(parts.end(), name.begin(), name.end());
        candidates.push_back({root, parts, false, beside});
    };
    if (path.absolute) candidates.push_back({"/", path.parts, true, false});
    if (!path.absolute && !path.foreign) candidates.push_back({folder, path.parts, true, false});
    // The last parts often match although the path comes from another machine.
    std::vector<Parts> ends;
    for (std::size_t from = count > kMaxParts ? count - kMaxParts : 0; from < count; ++from)
        if (path.parts[from] != "..")
            ends.emplace_back(path.parts.begin() + static_cast<std::ptrdiff_t>(from), path.parts.end());
    const Parts name = {path.parts.back()};
    for (const std::string &given : givenFolders)
        for (const Parts &end : ends) add(given, {}, end, false);
    for (const Parts &end : ends) add(folder, {}, end, false);
    for (const Parts &usual : kUsualFolders) add(folder, usual, name, usual[0] == "..");
    for (const Parts &below : foldersBelow(folder, 1)) add(folder, below, name, false);
    add(folder, {".."}, name, true);
    for (const Parts &beside : foldersBelow(folder + "../", 1)) {
        std::error_code error;
        // A link in the model's own folder must not lead out of it.
        if (!std::filesystem::equivalent(folder + "../" + beside[0], folder, error))
            add(folder, {"..", beside[0]}, name, true);
    }
    // Last, since packages hold many pictures called skin.
    for (const std::string &given : givenFolders)
        for (const Parts &below : foldersBelow(given, kGivenDepth)) add(given, below, name, false);
    return candidates;
}

std::string PictureSource::spelled(const std::string &from, const Parts &parts) {
    std::string path = from;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const bool last = i + 1 == parts.size();
        struct stat status;
        std::string next = path + parts[i];
        if (stat(next.c_str(), &status) != 0) {
            const std::vector<Entry> &entries = entriesOf(path);
            const std::string wanted = lower(parts[i]);
            const auto found = std::find_if(entries.begin(), entries.end(),
                                            [&](const Entry &entry) { return entry.folded == wanted; });
            if (found == entries.end()) return "";
            next = path + found->name;
        }
        path = last ? next : next + "/";
    }
    return path;
}

std::string PictureSource::otherExtension(const std::string &from, const Parts &parts) {
    std::string path = from;
    if (parts.size() > 1) {
        path = spelled(from, Parts(parts.begin(), parts.end() - 1));
        if (path.empty()) return "";
        path += "/";
    }
    const std::string stem = lower(withoutExtension(parts.back()));
    const Entry *best = nullptr;
    unsigned bestRank = 0;
    for (const Entry &entry : entriesOf(path)) {
        unsigned rank = 0;
        if (withoutExtension(entry.folded) != stem || !isPictureExtension(extensionOf(entry.folded), &rank))
            continue;
        if (best && rank >= bestRank) continue;
        best = &entry;
        bestRank = rank;
    }
    return best ? path + best->name : "";
}

bool PictureSource::accept(const std::string &file, bool beside, PicturePlace &place) {
    struct stat status;
    if (file.empty() || stat(file.c_str(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) {
        sawOther = true;
        return false;
    }
    if (!(beside ? reach.allowsBeside(file) : reach.allows(file))) {
        sawOutside = true;
        return false;
    }
    place.file = file;
    return true;
}

PicturePlace PictureSource::find(const std::string &path, bool ownName) {
    PicturePlace place;
    place.embedded = scene.GetEmbeddedTexture(path.c_str());
    if (place.embedded) return place;
    const auto relative = [&](const std::string &file) {
        return file.compare(0, folder.size(), folder) == 0 ? file.substr(folder.size()) : file;
    };
    const auto byOwnName = [&] {
        const bool found = accept(otherExtension(folder, {modelStem + ".bmp"}), false, place);
        if (found) place.instead = relative(place.file);
        return found;
    };
    if (path == kUnnamed && byOwnName()) return place;
    if (path.compare(0, 1, "*") == 0) throw PictureFault("the model has no such picture", true);
    sawOther = sawOutside = false;
    std::vector<Candidate> candidates = candidatesFor(path);
    if (path.find('%') != std::string::npos)
        for (Candidate &candidate : candidatesFor(urlDecoded(path))) candidates.push_back(candidate);
    for (const Candidate &candidate : candidates) {
        if (!accept(spelled(candidate.root, candidate.parts), candidate.beside, place)) continue;
        if (!candidate.asWritten) place.instead = relative(candidate.root + joined(candidate.parts));
        return place;
    }
    for (const Candidate &candidate : candidates) {
        if (!accept(otherExtension(candidate.root, candidate.parts), candidate.beside, place)) continue;
        place.instead = relative(place.file);
        return place;
    }
    if (ownName && byOwnName()) return place;
    if (sawOther) throw PictureFault("it is not a regular file", false);
    if (sawOutside)
        throw PictureFault("it lies outside of the model's folder; --textures can name its folder", false);
    throw PictureFault("there is no such file", true);
}

formats::Image PictureSource::read(const PicturePlace &place, std::string &remark) const {
    remark.clear();
    if (!place.embedded) return readPictureFile(place.file, remark);
    const aiTexture &texture = *place.embedded;
    if (texture.mHeight > 0) return fromTexels(texture);
    if (!texture.pcData || texture.mWidth == 0) throw PictureFault("it is empty", false);
    if (texture.mWidth > kMaxFile) throw PictureFault("it is larger than 256 MiB", false);
    std::string extension = hintOf(texture);
    if (extension.empty()) extension = extensionOf(texture.mFilename.C_Str());
    return readPicture(texture.pcData, texture.mWidth, extension, remark);
}

formats::Image readPictureFile(const std::string &path, std::string &remark) {
    const std::vector<std::uint8_t> bytes = readFile(path);
    return readPicture(bytes.data(), bytes.size(), extensionOf(path), remark);
}

std::string PictureSource::stem(const std::string &path) const {
    const auto embedded = scene.GetEmbeddedTextureAndIndex(path.c_str());
    if (!embedded.first) return fileStem(urlDecoded(path));
    const std::string own = embedded.first->mFilename.C_Str();
    return own.empty() ? "texture" + std::to_string(embedded.second) : fileStem(own);
}

}  // namespace keltra::convert
