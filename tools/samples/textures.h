#ifndef KELTRA_SAMPLES_TEXTURES_H
#define KELTRA_SAMPLES_TEXTURES_H

// The painted textures of the sample scene. All of them repeat at their edges
// unless said otherwise; sides are powers of two.

#include "tools/formats/tga_writer.h"

namespace keltra::samples {

using namespace formats;

// Stone.
Image paintPaving();   // slabs in rings: u runs around, v outwards
Image paintMasonry();  // courses of dressed blocks
Image paintColumn();   // fluted shaft, one turn wide
Image paintMosaic();   // floor of the pool

// Living things and water.
Image paintScales();  // one turn of the serpent: back at the edges, belly inside
Image paintFin();
Image paintGrass();
Image paintCypress();
Image paintWater();

// Metal and light.
Image paintBronze();
Image paintPane();  // one lantern pane
Image paintGlow();  // alpha: a soft spot; does not repeat
Image paintMist();  // alpha: densest at the bottom; repeats sideways only

// Sky.
Image paintSky();   // repeats sideways only; the top row is the zenith
Image paintMoon();  // alpha outside the disc; does not repeat

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_TEXTURES_H
