// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KELTRA_H
#define KELTRA_KELTRA_H

/** @file
 *
 * Includes all exported headers. In all of them: matrices are 16 floats in column-major order; angles are
 * degrees (vectors and quaternions: radians); geometry and GL parameters are 16.16 fixed point; y points up
 * in 3D and down in 2D, where a unit is a pixel; colours are RGBA from 0 to 1; one thread calls everything;
 * objects made with `new` are owned by their class's list. */

#include <keltra/anim.h>
#include <keltra/box.h>
#include <keltra/button.h>
#include <keltra/camera.h>
#include <keltra/element.h>
#include <keltra/emitter.h>
#include <keltra/engine.h>
#include <keltra/engine_state.h>
#include <keltra/export.h>
#include <keltra/fault.h>
#include <keltra/fbo.h>
#include <keltra/font.h>
#include <keltra/foundation.h>
#include <keltra/glbridge.h>
#include <keltra/helper.h>
#include <keltra/label.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/matrix.h>
#include <keltra/mesh.h>
#include <keltra/node.h>
#include <keltra/opengl.h>
#include <keltra/plane.h>
#include <keltra/registered.h>
#include <keltra/scrollbar.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/textfield.h>
#include <keltra/texture.h>
#include <keltra/vector.h>
#include <keltra/version.h>
#include <keltra/video.h>
#include <keltra/video_stream.h>
#include <keltra/window.h>

#endif
