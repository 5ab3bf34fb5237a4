#ifndef KELTRA_SAMPLES_INTERFACE_H
#define KELTRA_SAMPLES_INTERFACE_H

// The textures of the sample interface's boxes.

#include <vector>

#include "tools/samples/scene.h"

namespace keltra {
namespace samples {

// panel.tga, what the controls lie on, and crescent.tga, an emblem whose shape is its alpha.
std::vector<SampleFile> makeInterfaceFiles();

}  // namespace samples
}  // namespace keltra

#endif  // KELTRA_SAMPLES_INTERFACE_H
