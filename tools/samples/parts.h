#ifndef KELTRA_SAMPLES_PARTS_H
#define KELTRA_SAMPLES_PARTS_H

// The parts of the moonlit court. Units are about a foot and a half; the pool
// is at the origin, the visitor comes from +z, the moon stands over -z.

#include "tools/samples/shapes.h"

namespace keltra::samples {

// Sky, ridges, mist, moon, ground and trees.
void addLandscape(Node *root);

// Paving, steps, pool, columns and arches.
void addCourt(Node *root);

// Standing and hanging lanterns with their lights and halos, the moonlight,
// the light under the water, and fireflies.
void addLanterns(Node *root);

// The serpent in the pool: three skinned meshes on two skeletons.
void addSerpent(Node *root);

constexpr float kColumnRadius = 11.5f;  // of the circle they stand on
constexpr float kArchStep = 36.0f;      // degrees between columns
constexpr float kSpringing = 6.2f;      // height of the capitals
constexpr float kWaterLevel = 0.55f;
constexpr float kPoolRadius = 4.85f;

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_PARTS_H
