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

// The paths to try, relative to the model's folder, the likeliest first.
std::vector<Parts> candidatesFor(const WrittenPath &path) {
    std::vector<Parts> candidates;
    const std::size_t count = path.parts.size();
    if (count == 0) return candidates;
    if (!path.absolute && !path.foreign) candidates.push_back(path.parts);
    // The last parts often match although the path comes from another machine.
    for (std::size_t from = count > kMaxParts ? count - kMaxParts : 0; from < count; ++from) {
        if (path.parts[from] == "..") continue;
        candidates.emplace_back(path.parts.begin() + static_cast<std::ptrdiff_t>(from), path.parts.end());
    }
    for (Parts usual : kUsualFolders) {
        usual.push_back(path.parts.back());
        candidates.push_back(usual);
    }
    return candidates;
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

PictureSource::PictureSource(const aiScene &scene, const std::string &model) : scene(scene) {
    const std::size_t slash = model.rfind('/');
    folder = slash == std::string::npos ? "./" : model.substr(0, slash + 1);
    modelStem = withoutExtension(slash == std::string::npos ? model : model.substr(slash + 1));
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

bool PictureSource::accept(const std::string &file, PicturePlace &place) {
    struct stat status;
    if (file.empty() || stat(file.c_str(), &status) != 0) return false;
    if (!S_ISREG(status.st_mode)) {
        sawOther = true;
        return false;
    }
    place.file = file;
    return true;
}

PicturePlace PictureSource::find(const std::string &path) {
    PicturePlace place;
    place.embedded = scene.GetEmbeddedTexture(path.c_str());
    if (place.embedded) return place;
    if (path == kUnnamed && accept(otherExtension(folder, {modelStem + ".bmp"}), place)) {
        place.instead = place.file.substr(folder.size());
        return place;
    }
    if (path.compare(0, 1, "*") == 0) throw PictureFault("the model has no such picture", true);
    sawOther = false;
    std::vector<WrittenPath> forms = {written(path)};
    if (path.find('%') != std::string::npos) forms.push_back(written(urlDecoded(path)));
    for (const WrittenPath &form : forms)
        if (form.absolute && !form.parts.empty() && accept("/" + joined(form.parts), place)) return place;
    for (const WrittenPath &form : forms) {
        for (const Parts &candidate : candidatesFor(form)) {
            if (!accept(spelled(folder, candidate), place)) continue;
            const bool asWritten = !form.absolute && !form.foreign && candidate == form.parts;
            if (!asWritten) place.instead = joined(candidate);
            return place;
        }
    }
    for (const WrittenPath &form : forms) {
        for (const Parts &candidate : candidatesFor(form)) {
            if (!accept(otherExtension(folder, candidate), place)) continue;
            place.instead = place.file.substr(folder.size());
            return place;
        }
    }
    if (sawOther) throw PictureFault("it is not a regular file", false);
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
