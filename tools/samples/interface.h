#ifndef KELTRA_SAMPLES_INTERFACE_H
#define KELTRA_SAMPLES_INTERFACE_H

// The textures of the sample interface's boxes.

#include <vector>

#include "tools/samples/scene.h"

namespace keltra::samples {

// panel.tga, what the controls lie on, and crescent.tga, an emblem whose shape is its alpha.
std::vector<SampleFile> makeInterfaceFiles();

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_INTERFACE_H
