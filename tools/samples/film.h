#ifndef KELTRA_SAMPLES_FILM_H
#define KELTRA_SAMPLES_FILM_H

// A box to show a film on.

#include <vector>

#include "tools/samples/scene.h"

namespace keltra::samples {

// film.kte: "box", a cube of 4 units with the whole texture, top row first, on each side, of the material
// "screen", which shines by itself and waits for its texture.
std::vector<SampleFile> makeFilmFiles();

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_FILM_H
