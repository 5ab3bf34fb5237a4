// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_OPTIONS_H
#define KELTRA_CONVERT_OPTIONS_H

#include "formats/limits.h"
#include "tools/convert/budget.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace keltra::convert {

// Which back sides of two-sided materials become triangles.
enum class BackSides {
    kOpen,  // those of meshes that are not closed
    kAll,
    kNone,
};

// The options of a conversion.
struct Options {
    std::string model;                      // path of the model
    std::vector<std::string> clips;         // further files, whose animations are for the model's skeleton
    std::vector<std::string> folders;       // that files of the model may be in, besides its own
    std::string name;                       // prefix of the output files' names; see `fileStem`
    double fps = 25.0;                      // frames per second at which animations are sampled
    unsigned maxTexture = kMaxTextureSize;  // pixels, a power of two
    bool normalMaps = false;
    bool setup = false;  // what scene files have no place for is not dropped: the application gets it as code
    BackSides backSides = BackSides::kOpen;
    double simplify = 0.0;  // share of the triangles to keep, below 1, or how many; 0 for all
    Budget budget;
    bool atlas = false;        // pictures share textures, and meshes of a node that then have equal materials
    bool fit = false;          // reduces triangles, pictures and clips to the budget
    double clipError = 0.005;  // how far `fit` may move a point of a clip, as a share of the model's size
    bool strict = false;       // nothing is written when anything was dropped, changed, missing or warned of
    double scale = 0.0;  // of lengths in metres; 0 for 1, or a power of ten that brings the model into 16.16
    unsigned frame = 0;  // of a model that moves by key frames of all vertices
    char up = 0;         // the model's axis that points upward: 'X', 'Y', 'Z'; 0 for what its format says
};

// A model that cannot be converted, and why: one line, without the file's name.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct OutputFile {
    std::string name;  // without a folder
    std::vector<std::uint8_t> bytes;
};

// Called with the present step and how much of it is done, from 0 to 1.
using Progress = std::function<void(const char *what, double done)>;

}  // namespace keltra::convert

#endif
