// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_REPORT_H
#define KELTRA_CONVERT_REPORT_H

// What a conversion did and dropped, and its warnings; printed as text or as JSON.

#include "formats/limits.h"

#include <cstdint>
#include <string>
#include <vector>

namespace keltra::convert {

constexpr std::uint64_t kTextureBudget = kVideoMemory;

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

// Something of the model that is not in the output, or other than in the model.
struct Dropped {
    std::string what;  // "morph targets", "cameras", ...
    std::uint64_t count = 0;
    std::string why;
};

// What exceeds the budget.
struct Over {
    std::string what;  // "triangles", "vertices", "bones", "textures", "clips"
    std::uint64_t used = 0, limit = 0;
};

// A call that an application makes once the scene is loaded, for what scene files have no place for.
struct SetupCall {
    std::string kind;  // "node", "light", "helper" or "texture"
    std::string name;  // of the node, or the texture's file
    std::string call;  // "setAuxId(7u)"; of a helper, what is set of the one that stands at the node
};

// What the last line of a run counts.
struct Tally {
    std::uint64_t dropped = 0, changed = 0, missing = 0, warnings = 0;

    bool any() const { return dropped + changed + missing + warnings > 0; }
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
    std::uint64_t meshBones = 0;      // the most of one mesh
    std::uint64_t clipBytes = 0;      // of all animation files
    std::vector<Over> over;
    std::vector<Dropped> dropped, changed;
    std::vector<Dropped> apart;         // pictures that share no texture although that was asked for
    std::uint64_t missing = 0;          // files and pictures that the model names and that were not read
    std::vector<std::string> warnings;  // results that the user should check
    std::vector<std::string> notes;     // changes that the user may not expect
    std::vector<std::string> source;    // what the file says of itself: its unit, its axes, named frames
    std::vector<SetupCall> setup;
    std::vector<std::string> inputs;  // paths of all files that were read

    void drop(const std::string &what, std::uint64_t count, const std::string &why) {
        add(dropped, what, count, why);
    }
    void change(const std::string &what, std::uint64_t count, const std::string &why) {
        add(changed, what, count, why);
    }
    void keepApart(const std::string &what, std::uint64_t count, const std::string &why) {
        add(apart, what, count, why);
    }
    void miss(const std::string &text) {
        ++missing;
        warn(text);
    }
    void warn(const std::string &text) { warnings.push_back(text); }
    void note(const std::string &text) { notes.push_back(text); }
    void tell(const std::string &text) { source.push_back(text); }

    Tally tally() const {
        Tally tally;
        for (const Dropped &entry : dropped) tally.dropped += entry.count;
        for (const Dropped &entry : changed) tally.changed += entry.count;
        tally.changed += notes.size();
        tally.missing = missing;
        tally.warnings = warnings.size();
        return tally;
    }

   private:
    static void add(std::vector<Dropped> &list, const std::string &what, std::uint64_t count,
                    const std::string &why) {
        if (count == 0) return;
        for (Dropped &known : list) {
            if (known.what == what && known.why == why) {
                known.count += count;
                return;
            }
        }
        list.push_back({what, count, why});
    }
};

}  // namespace keltra::convert

#endif
