#ifndef KELTRA_SAMPLES_SCENE_H
#define KELTRA_SAMPLES_SCENE_H

// The sample scene: a serpent in the pool of a ruined court, at moonrise.

#include <cstdint>
#include <string>
#include <vector>

#include "tools/formats/kte_writer.h"

namespace keltra::samples {

using namespace formats;

struct SampleFile {
    std::string name;
    std::vector<uint8_t> bytes;
};

Scene makeScene();

// scene.kte, the textures that it names, and scene.cfg, settings that suit it.
std::vector<SampleFile> makeSampleFiles();

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_SCENE_H
