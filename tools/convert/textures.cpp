// SPDX-License-Identifier: Zlib
#include "tools/convert/textures.h"

#include "formats/limits.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace keltra::convert {
namespace {

using formats::Image;
using formats::Rgba;

constexpr std::size_t kLongestTextureName = 160;  // leaves room for a path before it
constexpr std::size_t kSmallestShrunk = 64;       // pixels
constexpr char kNoFileName[] = "it is no name of a file, and the material has its colour only";

// Alpha 0 everywhere means no alpha: some exporters write it so.
bool isBlank(const Image &image) {
    return std::all_of(image.pixels.begin(), image.pixels.end(), [](Rgba pixel) { return pixel.a == 0; });
}

void makeOpaque(Image &image) {
    for (Rgba &pixel : image.pixels) pixel.a = 255;
}

// Sets the alpha of an opacity map to the opacity: its alpha if it has any, otherwise its brightness.
void keepOpacity(Image &image, bool inverted) {
    const bool byAlpha = hasAlpha(image) && !isBlank(image);
    for (Rgba &pixel : image.pixels) {
        const unsigned grey = (pixel.r * 77u + pixel.g * 151u + pixel.b * 28u + 128u) / 256u;
        const unsigned opacity = byAlpha ? pixel.a : grey;
        pixel.a = static_cast<std::uint8_t>(inverted ? 255 - opacity : opacity);
    }
}

// Names of materials and shaders stand in some formats where those of pictures should: they have no
// extension, or a number in its place.
bool isFileName(const std::string &path) {
    if (path[0] == '*' || path[0] == '$') return true;
    const std::string name = path.substr(path.find_last_of("/\\") + 1);
    const std::size_t dot = name.rfind('.');
    return dot != std::string::npos &&
           std::any_of(name.begin() + static_cast<std::ptrdiff_t>(dot), name.end(),
                       [](unsigned char c) { return std::isalpha(c) != 0; });
}

std::string keyOf(const TextureRequest &request) {
    const std::string cut = request.alpha == AlphaUse::kCut ? std::to_string(request.cutOff) : "";
    return request.base + '\n' + std::to_string(static_cast<int>(request.alpha)) + cut + '\n' +
           request.opacity + '\n' + (request.opacityInverted ? "-" : "+") +
           (request.normalsMayBeHeights ? "h" : "n") + request.normals;
}

std::string quoted(const std::string &path) { return "texture " + cleanText(path); }

}  // namespace

unsigned largestSide(unsigned size) {
    unsigned power = 1;
    while (power * 2 <= std::min(size, kMaxTextureSize)) power *= 2;
    return power;
}

// Rows from the bottom up, which the engine loads without reordering. Unpacking takes the device twice the
// instructions of a picture that is read as it is, so packing has to save more than a sixteenth.
std::vector<std::uint8_t> targa(const Image &image, bool withAlpha) {
    const unsigned bits = withAlpha ? 32 : 24;
    std::vector<std::uint8_t> raw = formats::writeTga(image, {false, bits, false});
    std::vector<std::uint8_t> packed = formats::writeTga(image, {true, bits, false});
    return packed.size() < raw.size() - raw.size() / 16 ? packed : raw;
}

Textures::Textures(const aiScene &scene, const Options &options, Report &report)
    : name(options.name),
      largest(largestSide(options.maxTexture)),
      report(report),
      source(scene, options.model, options.folders),
      scripts(options.folders),
      names(kLongestTextureName, false) {}

// A picture of that name, or what a material script names for it, or a picture of the model's own name.
PicturePlace Textures::find(const std::string &path, bool ownName, const ScriptedMaterial *&scripted) {
    try {
        return source.find(path);
    } catch (const PictureFault &fault) {
        if (!ownName || !fault.missing) throw;
    }
    scripted = scripts.find(path);
    try {
        if (scripted) return source.find(scripted->picture);
    } catch (const PictureFault &) {
    }
    scripted = nullptr;
    return source.find(path, true);
}

void Textures::tellScript(const std::string &path, const ScriptedMaterial &scripted) {
    const std::string script = std::filesystem::path(scripted.script).lexically_normal().string();
    if (reported.insert(script + "\ninput").second) report.inputs.push_back(script);
    if (!reported.insert(path + "\nscript").second) return;
    report.note(quoted(path) + " is " + cleanText(scripted.picture) + ", as " +
                cleanText(std::filesystem::path(script).filename().string()) + " says");
    report.drop("additive blending", scripted.additive ? 1 : 0, "the engine blends by alpha only");
    report.drop("reflections", scripted.reflection ? 1 : 0, "texture coordinates are those of the vertices");
}

bool Textures::read(const std::string &path, const std::string &consequence, Image &image, bool ownName,
                    bool *seeThrough) {
    try {
        const ScriptedMaterial *scripted = nullptr;
        const PicturePlace place = find(path, ownName, scripted);
        std::string remark;
        const std::string file = std::filesystem::path(place.file).lexically_normal().string();
        if (!place.embedded && reported.insert(file + "\ninput").second) report.inputs.push_back(file);
        image = source.read(place, remark);
        const bool first = reported.insert(path).second;
        if (scripted) tellScript(path, *scripted);
        if (scripted && seeThrough) *seeThrough = scripted->seeThrough;
        if (first && !scripted && !place.instead.empty())
            report.note(quoted(path) + " is read from " + cleanText(place.instead));
        reportSize(path, image);
        if (first && !remark.empty())
            report.warn(quoted(path) + " is damaged and was read in part: " + remark);
        return true;
    } catch (const PictureFault &fault) {
        const std::string what =
            fault.missing ? " is missing" : std::string(" cannot be read: ") + fault.what();
        const std::string text = quoted(path) + what + "; " + consequence;
        if (reported.insert(text).second) report.miss(text);
        return false;
    }
}

void Textures::reportSize(const std::string &path, const Image &image) {
    const bool fits = image.width == nearestPower(image.width, largest) &&
                      image.height == nearestPower(image.height, largest);
    if (!fits && reported.insert(path + "\nsize").second) report.change("pictures", 1, kNewSize);
}

void Textures::fit(Image &image, bool alphaCounts) const {
    image =
        resized(image, nearestPower(image.width, largest), nearestPower(image.height, largest), alphaCounts);
}

void Textures::loadBase(const TextureRequest &request, Pictures &pictures) {
    Image &base = pictures.base;
    if (request.base.empty()) {
        base = Image(1, 1);
        base.pixels[0] = {255, 255, 255, 255};
        return;
    }
    const bool named = isFileName(request.base);
    bool scripted = false;
    if (!read(request.base, named ? "a checkerboard replaces it" : kNoFileName, base, true, &scripted)) {
        if (!named) {
            pictures.plain = true;
            return;
        }
        base = checker();
        fit(base, false);
        pictures.missing = true;
        return;
    }
    if (hasAlpha(base)) {
        if (isBlank(base)) makeOpaque(base);
        if (request.alpha == AlphaUse::kDrop && !scripted) {
            makeOpaque(base);
            if (request.opacity.empty() && reported.insert(request.base + "\nalpha").second)
                report.note("the alpha of " + quoted(request.base) +
                            " is dropped: the material does not use it");
        }
        if (request.alpha == AlphaUse::kCut)
            for (Rgba &pixel : base.pixels)
                pixel.a = static_cast<float>(pixel.a) < request.cutOff * 255.0f ? 0 : 255;
    }
}

void Textures::mergeOpacity(const TextureRequest &request, Pictures &pictures) {
    if (request.opacity.empty()) return;
    if (pictures.missing) {
        report.drop("opacity maps", 1, "the texture that they belong to is missing");
        return;
    }
    Image opacity;
    if (!read(request.opacity, "the opacity map is ignored", opacity)) return;
    // Exporters name the base picture as opacity map to refer to its alpha. Without alpha it is ignored.
    if (request.opacity == request.base && !(hasAlpha(opacity) && !isBlank(opacity))) return;
    keepOpacity(opacity, request.opacityInverted);
    Image &base = pictures.base;
    const unsigned width = nearestPower(std::max(base.width, opacity.width), largest);
    const unsigned height = nearestPower(std::max(base.height, opacity.height), largest);
    // The opacity weights the base's colours, but not its own.
    for (Rgba &pixel : opacity.pixels) pixel.r = pixel.g = pixel.b = pixel.a;
    opacity = resized(opacity, width, height, false);
    base = resized(base, width, height, request.alpha != AlphaUse::kDrop);
    for (std::size_t i = 0; i < base.pixels.size(); ++i)
        base.pixels[i].a = static_cast<std::uint8_t>((base.pixels[i].a * opacity.pixels[i].r + 127u) / 255u);
}

void Textures::loadNormals(const TextureRequest &request, Pictures &pictures) {
    if (request.normals.empty()) return;
    Image normals;
    if (!read(request.normals, "it is left out", normals)) return;
    if (request.normalsMayBeHeights && !looksLikeNormals(normals)) {
        report.drop("bump maps", 1, "the engine does not use heights");
        return;
    }
    fit(normals, false);
    pictures.normals = std::move(normals);
}

TextureMade Textures::make(const TextureRequest &request) {
    const std::string key = keyOf(request);
    const auto before = madeBefore.find(key);
    if (before != madeBefore.end()) return before->second;
    Pictures pictures;
    loadBase(request, pictures);
    if (pictures.plain) return madeBefore[key] = TextureMade();
    mergeOpacity(request, pictures);
    fit(pictures.base, hasAlpha(pictures.base));
    pictures.seeThrough = hasAlpha(pictures.base);
    if (pictures.seeThrough) spreadColours(pictures.base);
    TextureMade made;
    // Opaque white needs no texture.
    if (!request.base.empty() || pictures.seeThrough) {
        loadNormals(request, pictures);
        made = write(request, pictures);
    }
    madeBefore[key] = made;
    return made;
}

TextureMade Textures::write(const TextureRequest &request, const Pictures &pictures) {
    const std::string &from = request.base.empty() ? request.opacity : request.base;
    std::vector<std::uint8_t> base = targa(pictures.base, pictures.seeThrough), normals;
    if (!pictures.normals.pixels.empty()) normals = targa(pictures.normals, false);
    std::vector<std::uint8_t> content = base;
    content.insert(content.end(), normals.begin(), normals.end());
    // Every missing texture has a file of its own, which the user can replace.
    if (!pictures.missing) {
        const auto before = writtenBefore.find(content);
        if (before != writtenBefore.end()) return before->second;
    }
    TextureMade made;
    made.file = names.take(name + "_" + source.stem(from), name + "_texture", kBaseEnding);
    made.seeThrough = pictures.seeThrough;
    if (!pictures.missing) writtenBefore[std::move(content)] = made;
    add(made.file, from, pictures.base, pictures.missing, std::move(base));
    if (!normals.empty()) {
        // The engine looks for a file of this name. No base texture can have it, because theirs end in _d.
        const std::string stem = made.file.substr(0, made.file.size() - (sizeof kBaseEnding - 1));
        add(stem + "_n.tga", request.normals, pictures.normals, false, std::move(normals));
    }
    return made;
}

void Textures::add(const std::string &file, const std::string &from, const Image &image, bool missing,
                   std::vector<std::uint8_t> bytes) {
    TextureReport line;
    line.file = file;
    line.source = cleanText(from);
    line.width = image.width;
    line.height = image.height;
    line.bits = bytes[16];
    line.missing = missing;
    report.textures.push_back(line);
    report.textureMemory += std::uint64_t{image.width} * image.height * 4;
    files.push_back({file, std::move(bytes)});
    images.push_back(image);
}

void Textures::shrinkTo(std::uint64_t bytes) {
    std::set<std::size_t> shrunk;
    while (report.textureMemory > bytes) {
        const auto largest = std::max_element(
            images.begin(), images.end(),
            [](const Image &a, const Image &b) { return a.pixels.size() < b.pixels.size(); });
        if (largest == images.end() || largest->pixels.size() <= kSmallestShrunk) break;
        const std::size_t i = static_cast<std::size_t>(largest - images.begin());
        TextureReport &line = report.textures[i];
        const std::size_t before = largest->pixels.size();
        *largest = resized(*largest, std::max(largest->width / 2, 1u), std::max(largest->height / 2, 1u),
                           line.bits == 32);
        line.width = largest->width;
        line.height = largest->height;
        report.textureMemory -= std::uint64_t{before - largest->pixels.size()} * 4;
        shrunk.insert(i);
    }
    for (const std::size_t i : shrunk) files[i].bytes = targa(images[i], report.textures[i].bits == 32);
    report.change("pictures", shrunk.size(), "they were halved to fit the budget");
}

std::vector<OutputFile> Textures::take() { return std::move(files); }

}  // namespace keltra::convert
