#ifndef KELTRA_SAMPLES_PARTICLES_H
#define KELTRA_SAMPLES_PARTICLES_H

// The textures of the sample emitters.

#include <vector>

#include "tools/samples/scene.h"

namespace keltra::samples {

// drop.tga, spark.tga and puff.tga. Their images keep to the right quarter of the square, between its
// diagonals: an emitter's list of triangles shows that quarter whole or not at all.
std::vector<SampleFile> makeParticleFiles();

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_PARTICLES_H
