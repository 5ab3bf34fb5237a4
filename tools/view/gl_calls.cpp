// SPDX-License-Identifier: Zlib
#include "tools/view/gl_calls.h"

#include "tools/support/gl_functions.h"
#include "tools/support/interpose.h"

#include <GLES/gl.h>

namespace {

unsigned long calls = 0;

template <class F>
struct Counted;
template <class R, class... A>
struct Counted<R(A...)> {
    static R pass(R (*driver)(A...), A... arguments) {
        ++calls;
        return driver(arguments...);
    }
};

}  // namespace

namespace keltra::view {

unsigned long glCallsMade() { return calls; }

}  // namespace keltra::view

#define KELTRA_COUNT(n, f)                                                                                  \
    extern "C" __attribute__((visibility("default"))) keltra::Signature<decltype(f)>::Result GL_APIENTRY f( \
        KELTRA_PARAMETERS_##n(f)) {                                                                         \
        static auto *const driver = keltra::nextFunction<decltype(f)>(#f);                                  \
        return Counted<decltype(f)>::pass(driver KELTRA_ARGUMENTS_##n);                                     \
    }

KELTRA_GL_FLOAT_FUNCTIONS(KELTRA_COUNT)
KELTRA_GL_FIXED_FUNCTIONS(KELTRA_COUNT)
