// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_GL_ANSWERS_H
#define KELTRA_TESTS_GL_ANSWERS_H

// What the GL and the mirror of its matrices answer.

#include <keltra/glbridge.h>
#include <keltra/matrix.h>

#include <algorithm>
#include <array>

#include "tests/support/gl_recorder.h"

namespace keltra::test {

inline std::array<float, 16> mirror(int which) {
    std::array<float, 16> values{};
    KT_glGetFloatv(which, values.data());
    return values;
}

inline std::array<float, 16> elements(const R3XMATRIX &matrix) {
    std::array<float, 16> values{};
    std::copy(matrix.m, matrix.m + 16, values.begin());
    return values;
}

/// The recorder does not log the query.
inline bool enabled(GLenum capability) {
    const GlRecorder::Pause pause;
    return glIsEnabled(capability) == GL_TRUE;
}

}  // namespace keltra::test

#endif
