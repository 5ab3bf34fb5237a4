#ifndef KELTRA_SAMPLES_FIGURE_H
#define KELTRA_SAMPLES_FIGURE_H

// The sample character, a lamplighter's boy in a long cap, with two animations; the meadow where he walks and
// the evening garden of paper lanterns that he tends. One unit is about a foot; he looks along +z and is
// three units tall.

#include <vector>

#include "tools/formats/kta_writer.h"
#include "tools/samples/scene.h"

namespace keltra::samples {

using namespace formats;

// "figure", with "HumanoidRoot" below it: the bones, and one skin beside them.
Scene makeFigure();

// Both have all bones of the figure and run in a circle; positions belong to them.
Animation makeWalk();  // two steps, which take him 1.36 units on
Animation makeWave();  // the right arm

Scene makeMeadow();
Scene makeGarden();

// figure.kte, walk.kta, wave.kta, meadow.kte, garden.kte, and their textures.
std::vector<SampleFile> makeFigureFiles();

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_FIGURE_H
