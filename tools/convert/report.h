// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_REPORT_H
#define KELTRA_CONVERT_REPORT_H

// What a conversion did and dropped, and its warnings; printed as text or as JSON.

#include <cstdint>
#include <string>
#include <vector>

namespace keltra::convert {

constexpr std::uint64_t kTextureBudget = 8u << 20;  // the engine's texture memory, in bytes

struct ClipReport {
    std::string name;  // the model's name of the clip
    std::string file;
    unsigned frames = 0, bones = 0;
    double seconds = 0.0;  // of this file
    bool moves = false;    // some bone changes its position: play it with `setTranslating(true)`
};

struct TextureReport {
    std::string file;
    std::string source;  // path in the model, or "*0" for an embedded one
    unsigned width = 0, height = 0, bits = 0;
    bool missing = false;  // replaced by a checkerboard
};

// Something of the model that is not in the output.
struct Dropped {
    std::string what;  // "morph targets", "cameras", ...
    std::uint64_t count = 0;
    std::string why;
};

struct Report {
    std::string sceneFile;
    unsigned nodes = 0, meshes = 0, skins = 0, bones = 0, lights = 0, materials = 0;
    std::uint64_t vertices = 0, triangles = 0;
    double scale = 1.0;
    double size = 0.0;  // diagonal of the bounding box, after scaling
    std::vector<ClipReport> clips;
    std::vector<TextureReport> textures;
    std::uint64_t textureMemory = 0;  // bytes, four per pixel, without mipmaps
    std::vector<Dropped> dropped;
    std::vector<std::string> warnings;  // results that the user should check
    std::vector<std::string> notes;     // changes that the user may not expect

    void drop(const std::string &what, std::uint64_t count, const std::string &why) {
        if (count == 0) return;
        for (Dropped &known : dropped) {
            if (known.what == what && known.why == why) {
                known.count += count;
                return;
            }
        }
        dropped.push_back({what, count, why});
    }
    void warn(const std::string &text) { warnings.push_back(text); }
    void note(const std::string &text) { notes.push_back(text); }
};

}  // namespace keltra::convert

#endif
