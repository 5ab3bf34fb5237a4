// SPDX-License-Identifier: Zlib
// A GL that does nothing, at the cost of a call and a return. What has to answer is in silent_system.cpp.

#include <GLES/gl.h>

#include "tools/support/gl_functions.h"
#include "tools/support/interpose.h"

extern "C" {

#define KELTRA_SILENT(n, f)                                                                                \
    __attribute__((weak)) keltra::Signature<decltype(f)>::Result GL_APIENTRY f(KELTRA_PARAMETERS_##n(f)) { \
        return keltra::Signature<decltype(f)>::Result();                                                   \
    }
#pragma GCC diagnostic ignored "-Wunused-parameter"
KELTRA_GL_FLOAT_FUNCTIONS(KELTRA_SILENT)
KELTRA_GL_FIXED_FUNCTIONS(KELTRA_SILENT)
#undef KELTRA_SILENT

}  // extern "C"
