// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_CONVERT_H
#define KELTRA_CONVERT_CONVERT_H

// Converts a model into the engine's files: NAME.kte, NAME_CLIP.kta for every animation, and
// NAME_PICTURE_d.tga for every texture. Further files of animations become clips of the same skeleton.

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"

namespace keltra::convert {

struct Conversion {
    // The scene file is the last: once it exists, all files that it names exist.
    std::vector<OutputFile> files;
    Report report;
};

// Throws Refusal for a model that cannot be read or has nothing that the engine can draw or play.
Conversion convertModel(const Options &options, const Progress &progress);

// For a picture in the place of the model: one texture, NAME.tga, with alpha where the picture has any.
// Throws Refusal.
Conversion convertPicture(const Options &options, const Progress &progress);

}  // namespace keltra::convert

#endif
