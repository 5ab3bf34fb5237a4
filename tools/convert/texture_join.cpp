// SPDX-License-Identifier: Zlib
// Pictures that share textures.

#include "formats/limits.h"
#include "tools/convert/picture.h"
#include "tools/convert/textures.h"

#include <algorithm>

namespace keltra::convert {
namespace {

constexpr unsigned kSmallSide = 128;           // pixels
constexpr std::size_t kSmallPage = 128 * 128;  // pixels, that an atlas may have however little is in it
constexpr char kMissing[] = "they are missing; what replaces a checkerboard has a file of its own";
constexpr char kNoRoom[] = "no other one fits into a texture of 512 pixels and the budget with them";

}  // namespace

// Largest first. Opaque pictures stay among themselves: the GL may hold them in a format without alpha.
std::vector<std::size_t> Textures::candidates(const Apart &apart, bool all, bool seeThrough) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < images.size(); ++i) {
        const auto known = apart.find(files[i].name);
        if (known == apart.end() || (report.textures[i].bits == 32) != seeThrough) continue;
        if (!all && std::max(images[i].width, images[i].height) > kSmallSide) continue;
        const char *const reason = report.textures[i].missing ? kMissing : known->second;
        if (!reason)
            found.push_back(i);
        else if (all)
            report.keepApart("pictures", 1, reason);
    }
    std::stable_sort(found.begin(), found.end(), [this](std::size_t a, std::size_t b) {
        return images[a].pixels.size() > images[b].pixels.size();
    });
    return found;
}

// Whether an atlas takes no more memory than it may.
bool Textures::isWorthIt(const Atlas &atlas, const std::vector<const formats::Image *> &pictures, bool all,
                         std::uint64_t most) const {
    std::uint64_t before = 0;
    for (const std::size_t i : atlas.taken) before += pictures[i]->pixels.size();
    const std::uint64_t after = atlas.image.pixels.size();
    const bool fits = most == 0 || report.textureMemory + 4 * after <= most + 4 * before;
    return atlas.taken.size() > 1 && fits &&
           after <= std::max<std::uint64_t>(2 * before, all ? kSmallPage : 0);
}

// Of the larger half, and so on, where all of them would take too much memory; nothing in it if any two do.
// Pictures keep their pixels where no fewer of them fit then.
Atlas Textures::packed(const std::vector<std::size_t> &wanted, bool all, std::uint64_t most) const {
    std::vector<const formats::Image *> pictures;
    for (const std::size_t i : wanted) pictures.push_back(&images[i]);
    const unsigned side = all ? kMaxTextureSize : largest;
    for (; pictures.size() > 1; pictures.resize(pictures.size() / 2)) {
        const Atlas tight = packAtlas(pictures, side, Border::kInside);
        if (all) {
            const Atlas whole = packAtlas(pictures, side, Border::kOutside);
            if (whole.taken.size() >= tight.taken.size() && isWorthIt(whole, pictures, all, most))
                return whole;
        }
        if (isWorthIt(tight, pictures, all, most)) return tight;
    }
    return {};
}

void Textures::remove(std::size_t index) {
    const auto at = static_cast<std::ptrdiff_t>(index);
    report.textureMemory -= std::uint64_t{images[index].pixels.size()} * 4;
    report.textures.erase(report.textures.begin() + at);
    files.erase(files.begin() + at);
    images.erase(images.begin() + at);
}

// Replaces the pictures of an atlas by it. `wanted` loses them, and its indices are those of the rest then.
void Textures::replace(std::vector<std::size_t> &wanted, const Atlas &atlas,
                       std::map<std::string, Joined> &joined) {
    const std::string file = names.take(name + "_atlas", name + "_texture", kBaseEnding);
    std::vector<std::size_t> gone, rest;
    for (std::size_t i = 0, next = 0; i < wanted.size(); ++i) {
        if (next == atlas.taken.size() || atlas.taken[next] != i) {
            rest.push_back(wanted[i]);
            continue;
        }
        joined[files[wanted[i]].name] = {file, atlas.places[next++]};
        gone.push_back(wanted[i]);
    }
    std::sort(gone.begin(), gone.end());
    for (std::size_t &index : rest)
        index -= static_cast<std::size_t>(std::lower_bound(gone.begin(), gone.end(), index) - gone.begin());
    for (std::size_t i = gone.size(); i-- > 0;) remove(gone[i]);
    add(file, std::to_string(gone.size()) + " pictures", atlas.image, false,
        targa(atlas.image, hasAlpha(atlas.image)));
    report.change("pictures", gone.size(), "they share the texture " + file);
    wanted = std::move(rest);
}

std::map<std::string, Textures::Joined> Textures::join(const Apart &apart, bool all, std::uint64_t most) {
    std::map<std::string, Joined> joined;
    for (const bool seeThrough : {false, true}) {
        std::vector<std::size_t> wanted = candidates(apart, all, seeThrough);
        for (;;) {
            const Atlas atlas = packed(wanted, all, most);
            if (atlas.taken.empty()) break;
            replace(wanted, atlas, joined);
        }
        if (all) report.keepApart("pictures", wanted.size(), kNoRoom);
    }
    return joined;
}

}  // namespace keltra::convert
