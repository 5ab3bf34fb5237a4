// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_KIT_H
#define KELTRA_KIT_KIT_H

/** @file
 *
 * Includes all headers of the kit, a library beside the engine that holds what most applications write again:
 * input, time, clips, shapes, cameras and saved games. Each part stands alone, uses the engine's public calls
 * only, and leaves the frame loop to the application. Nothing is allocated in a frame. */

#include <keltra/kit/cameras.h>
#include <keltra/kit/clip.h>
#include <keltra/kit/clock.h>
#include <keltra/kit/export.h>
#include <keltra/kit/flow.h>
#include <keltra/kit/input.h>
#include <keltra/kit/save.h>
#include <keltra/kit/shapes.h>
#include <keltra/kit/view.h>

#endif
