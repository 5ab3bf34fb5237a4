// SPDX-License-Identifier: Zlib
#include "tools/convert/key_frames.h"

#include "tools/convert/names.h"

#include <cstdint>
#include <cstring>
#include <fstream>
#include <vector>

namespace keltra::convert {
namespace {

constexpr std::size_t kHeaderSize = 108, kNameSize = 16, kListed = 60;
constexpr std::uint32_t kMostFrames = 65536;

// Where a format keeps its frames, and in each the name. Without a place for a frame's size it is fixed.
struct Layout {
    const char *magic;
    std::size_t countAt, offsetAt, sizeAt, size, nameAt;
};
constexpr Layout kLayouts[] = {{"IDP2", 40, 56, 16, 0, 24}, {"IDP3", 76, 92, 0, 56, 40}};

std::uint32_t word(const std::vector<char> &bytes, std::size_t at) {
    std::uint32_t value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

// The names of the frames of a file of one of these formats, as far as it goes; empty for others.
std::vector<std::string> frameNames(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> header(kHeaderSize, '\0');
    file.read(header.data(), static_cast<std::streamsize>(header.size()));
    for (const Layout &layout : kLayouts) {
        if (std::memcmp(header.data(), layout.magic, 4) != 0) continue;
        const std::uint32_t count = word(header, layout.countAt), offset = word(header, layout.offsetAt);
        const std::uint64_t size = layout.sizeAt ? word(header, layout.sizeAt) : layout.size;
        std::vector<std::string> names;
        file.clear();
        for (std::uint64_t i = 0; i < count && i < kMostFrames; ++i) {
            char name[kNameSize + 1] = {};
            file.seekg(static_cast<std::streamoff>(offset + i * size + layout.nameAt));
            if (!file.read(name, kNameSize)) break;
            names.emplace_back(name);
        }
        return names;
    }
    return {};
}

std::string withoutNumber(const std::string &name) {
    const std::size_t end = name.find_last_not_of("0123456789");
    return cleanText(name.substr(0, end == std::string::npos ? 0 : end + 1));
}

// "stand 0-39, run 40-45": frames whose names differ in their numbers only are one movement.
std::string movementsOf(const std::vector<std::string> &names) {
    std::string list;
    std::size_t movements = 0;
    for (std::size_t first = 0, next; first < names.size(); first = next) {
        const std::string stem = withoutNumber(names[first]);
        for (next = first + 1; next < names.size() && withoutNumber(names[next]) == stem;) ++next;
        if (++movements > kListed) return list + ", ...";
        list += (first > 0 ? ", " : "") + (stem.empty() ? "" : stem + " ") + std::to_string(first);
        if (next - first > 1) list += "-" + std::to_string(next - 1);
    }
    return list;
}

}  // namespace

void reportKeyFrames(const Options &options, Report &report) {
    const std::vector<std::string> names = frameNames(options.model);
    if (names.empty()) return;
    if (options.frame >= names.size())
        throw Refusal("it has no key frame " + std::to_string(options.frame) + ": the last is " +
                      std::to_string(names.size() - 1));
    if (names.size() == 1) return;
    report.drop("key frames", names.size() - 1,
                "they hold all vertices, and a skeleton cannot move these: number " +
                    std::to_string(options.frame) + " is converted; --frame chooses another");
    report.tell("its key frames: " + movementsOf(names));
}

}  // namespace keltra::convert
