#ifndef KELTRA_CONVERT_OPTIONS_H
#define KELTRA_CONVERT_OPTIONS_H

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace keltra::convert {

// What a conversion is asked to do.
struct Options {
    std::string model;          // path of the model
    std::string name;           // what the output files' names begin with; see `fileStem`
    double fps = 25.0;          // frames a second that animations are sampled at
    unsigned maxTexture = 512;  // pixels, a power of two
    bool normalMaps = false;
    double scale = 0.0;  // of all lengths; 0 chooses 1, or what brings the model into the range of 16.16
};

// A model that cannot be converted, and why: one line, without the file's name.
struct Refusal : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct OutputFile {
    std::string name;  // without a folder
    std::vector<std::uint8_t> bytes;
};

// Told what is being done, 0 to 1 of it done.
using Progress = std::function<void(const char *what, double done)>;

}  // namespace keltra::convert

#endif
