// SPDX-License-Identifier: Zlib
#include "tests/support/gl_recorder.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "tools/support/gl_functions.h"
#include "tools/support/interpose.h"

namespace keltra::test {
namespace {

enum class GlFunction {
#define KELTRA_NAME(n, f) f,
    KELTRA_GL_FLOAT_FUNCTIONS(KELTRA_NAME) KELTRA_GL_FIXED_FUNCTIONS(KELTRA_NAME)
#undef KELTRA_NAME
};

struct State {
    CallLog log;
    int floatCalls = 0;
    bool recording = true;
    bool stubbed = false;
    bool drawing = true;
    bool scissored = false, drawingScissored = true;
    GlRecorder::Listener listener = nullptr;
    GLuint nextName = 1;
    GLint unpackAlignment = 4;
    GLenum error = GL_NO_ERROR;
    GLenum uploadError = GL_NO_ERROR, laterError = GL_NO_ERROR;
    long uploads = 0, failingUpload = 0;
    std::map<GLenum, std::vector<GLint>> integers;
    std::vector<std::uint8_t> pixels;
};

// Neither recording nor passing calls on, as in benchmarks: a call takes no more than that of an empty
// function.
bool quiet = false;

// Never destroyed: the engine's unload step may still call the GL after the statics of this file are gone.
State &state() {
    static State *const instance = new State;
    return *instance;
}

void updateQuiet() { quiet = state().stubbed && !state().recording; }

int bytesPerTexel(GLenum format, GLenum type) {
    if (type != GL_UNSIGNED_BYTE) return 2;
    switch (format) {
        case GL_RGBA:
            return 4;
        case GL_RGB:
            return 3;
        case GL_LUMINANCE_ALPHA:
            return 2;
        default:
            return 1;
    }
}

std::vector<std::uint8_t> copyTexels(GLsizei width, GLsizei height, GLenum format, GLenum type,
                                     const void *texels) {
    if (!texels || width <= 0 || height <= 0) return {};
    const std::size_t row = static_cast<std::size_t>(width) * bytesPerTexel(format, type);
    const std::size_t alignment = state().unpackAlignment;
    const std::size_t stride = (row + alignment - 1) / alignment * alignment;
    const auto *bytes = static_cast<const std::uint8_t *>(texels);
    return {bytes, bytes + stride * (height - 1) + row};
}

template <class T>
std::vector<std::int64_t> copyValues(const T *values, GLsizei count) {
    if (!values || count <= 0) return {};
    return {values, values + count};
}

// The fixed-point values of the array given last by `pointer`: `count` vertices of `size` numbers each. False
// for an array of another layout.
bool appendArray(std::vector<std::int64_t> &values, std::string_view pointer, GLint size, GLsizei count) {
    const Call &call = state().log.last(pointer);
    if (call.name.empty() || call.arguments[0] != size || call.arguments[1] != GL_FIXED ||
        call.arguments[2] != 0)
        return false;
    const auto *array = reinterpret_cast<const GLfixed *>(static_cast<std::intptr_t>(call.arguments[3]));
    values.insert(values.end(), array, array + size * count);
    return true;
}

// A 2D quad: positions, colours and texture coordinates of four vertices.
std::vector<std::int64_t> copyQuad(GLenum mode, GLint first, GLsizei count) {
    std::vector<std::int64_t> values;
    const bool isQuad = mode == GL_TRIANGLE_STRIP && first == 0 && count == 4;
    if (isQuad && appendArray(values, "glVertexPointer", 2, 4) &&
        appendArray(values, "glColorPointer", 4, 4) && appendArray(values, "glTexCoordPointer", 2, 4))
        return values;
    return {};
}

// The data of a function's pointer argument; overloads below for those whose size is known.
template <GlFunction f, class... A>
void keepContents(Call &call, A... arguments) {
    constexpr bool isMatrix = f == GlFunction::glLoadMatrixx || f == GlFunction::glMultMatrixx;
    constexpr bool isVector =
        f == GlFunction::glLightxv || f == GlFunction::glMaterialxv || f == GlFunction::glLightModelxv;
    constexpr bool areNames = f == GlFunction::glDeleteTextures || f == GlFunction::glDeleteBuffers ||
                              f == GlFunction::glGenTextures || f == GlFunction::glGenBuffers;
    [[maybe_unused]] const auto all = std::make_tuple(arguments...);
    if constexpr (isMatrix) {
        call.contents = copyValues(std::get<0>(all), 16);
    } else if constexpr (isVector) {
        call.contents = copyValues(std::get<sizeof...(A) - 1>(all), 4);
    } else if constexpr (areNames) {
        call.contents = copyValues(std::get<1>(all), std::get<0>(all));
    } else if constexpr (f == GlFunction::glDrawArrays) {
        call.contents = copyQuad(arguments...);
    } else if constexpr (f == GlFunction::glTexImage2D) {
        call.bytes = copyTexels(std::get<3>(all), std::get<4>(all), std::get<6>(all), std::get<7>(all),
                                std::get<8>(all));
    } else if constexpr (f == GlFunction::glTexSubImage2D) {
        call.bytes = copyTexels(std::get<4>(all), std::get<5>(all), std::get<6>(all), std::get<7>(all),
                                std::get<8>(all));
    }
}

void stubNames(GLsizei count, GLuint *names) {
    for (GLsizei i = 0; i < count; ++i) names[i] = state().nextName++;
}

void stubIntegers(GLenum pname, GLint *data) {
    const auto found = state().integers.find(pname);
    if (found == state().integers.end()) {
        *data = 0;
    } else {
        std::copy(found->second.begin(), found->second.end(), data);
    }
}

void stubPixels(GLsizei width, GLsizei height, GLenum format, GLenum type, void *pixels) {
    const std::size_t size = static_cast<std::size_t>(width) * height * bytesPerTexel(format, type);
    const std::vector<std::uint8_t> &source = state().pixels;
    auto *bytes = static_cast<std::uint8_t *>(pixels);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = source.empty() ? 0 : source[i % source.size()];
}

template <GlFunction f, class R, class... A>
R stub(A... arguments) {
    [[maybe_unused]] const auto all = std::make_tuple(arguments...);
    if constexpr (f == GlFunction::glGenTextures || f == GlFunction::glGenBuffers) {
        stubNames(arguments...);
    } else if constexpr (f == GlFunction::glGetIntegerv) {
        stubIntegers(arguments...);
    } else if constexpr (f == GlFunction::glReadPixels) {
        stubPixels(std::get<2>(all), std::get<3>(all), std::get<4>(all), std::get<5>(all), std::get<6>(all));
    } else if constexpr (f == GlFunction::glGetError) {
        return std::exchange(state().error, static_cast<GLenum>(GL_NO_ERROR));
    } else if constexpr (f == GlFunction::glGetString) {
        return reinterpret_cast<const GLubyte *>("");
    } else {
        return R();
    }
}

template <GlFunction f, bool isFloat, class F>
struct Wrapper;
template <GlFunction f, bool isFloat, class R, class... A>
struct Wrapper<f, isFloat, R GL_APIENTRY(A...)> {
    static R call(const char *name, A... arguments) {
        constexpr bool keepsState = f == GlFunction::glPixelStorei || f == GlFunction::glGenTextures ||
                                    f == GlFunction::glGenBuffers || f == GlFunction::glGetIntegerv ||
                                    f == GlFunction::glReadPixels || f == GlFunction::glTexImage2D;
        if constexpr (f == GlFunction::glEnable || f == GlFunction::glDisable) {
            if (quiet && !isScissor(arguments...)) return;
        } else if constexpr (std::is_void_v<R> && !keepsState) {
            if (quiet) return;
        }
        return handle(name, arguments...);
    }

   private:
    [[gnu::noinline]] static R handle(const char *name, A... arguments) {
        State &now = state();
        if constexpr (f == GlFunction::glPixelStorei) noteAlignment(arguments...);
        if constexpr (f == GlFunction::glEnable || f == GlFunction::glDisable)
            noteScissor(f == GlFunction::glEnable, arguments...);
        if (!now.recording) return pass(name, arguments...);
        // The engine asks after an upload; what it finds is kept for the test, which asks after the frame.
        if constexpr (f == GlFunction::glGetError) {
            const Call *before = now.log.newest();
            const bool isUpload = before && before->name.compare(0, 5, "glTex") == 0;
            const GLenum error = pass(name, arguments...);
            if (isUpload && error != GL_OUT_OF_MEMORY) now.laterError = error;
            return error;
        }
        if (isFloat) ++now.floatCalls;
        now.log.add({name, {asNumber(arguments)...}, {}, {}});
        keepInputs(arguments...);
        if constexpr (f == GlFunction::glGenTextures || f == GlFunction::glGenBuffers) {
            pass(name, arguments...);
            keepContents<f>(*now.log.newest(), arguments...);
            tell();
        } else {
            tell();
            return pass(name, arguments...);
        }
    }

    static void keepInputs(A... arguments) {
        if constexpr (f != GlFunction::glGenTextures && f != GlFunction::glGenBuffers) {
            keepContents<f>(*state().log.newest(), arguments...);
        }
    }

    static void tell() {
        unsigned pointers = 0, bit = 1;
        ((pointers |= std::is_pointer_v<A> ? bit : 0, bit <<= 1), ...);
        if (state().listener) state().listener(*state().log.newest(), pointers);
    }

    static bool isScissor(GLenum capability) { return capability == GL_SCISSOR_TEST; }

    static void noteScissor(bool on, GLenum capability) {
        if (isScissor(capability)) state().scissored = on;
    }

    static void noteAlignment(GLenum pname, GLint value) {
        const bool valid = value == 1 || value == 2 || value == 4 || value == 8;
        if (pname == GL_UNPACK_ALIGNMENT && valid) state().unpackAlignment = value;
    }

    static R pass(const char *name, A... arguments) {
        if constexpr (f == GlFunction::glTexImage2D) {
            if (++state().uploads == state().failingUpload) {
                state().uploadError = GL_OUT_OF_MEMORY;
                return R();
            }
        }
        if constexpr (f == GlFunction::glGetError) {
            for (GLenum *error : {&state().uploadError, &state().laterError})
                if (*error) return std::exchange(*error, static_cast<GLenum>(GL_NO_ERROR));
        }
        if (state().stubbed) return stub<f, R>(arguments...);
        if constexpr (f == GlFunction::glDrawArrays || f == GlFunction::glDrawElements)
            if (!state().drawing && !(state().scissored && state().drawingScissored)) return;
        if constexpr (f == GlFunction::glClear)
            if (!state().drawing && !state().drawingScissored) return;
        static auto *const driver = nextFunction<R GL_APIENTRY(A...)>(name);
        return driver(arguments...);
    }
};

}  // namespace

void GlRecorder::clear() {
    state().log.clear();
    state().floatCalls = 0;
}
const std::vector<Call> &GlRecorder::calls() { return state().log.calls(); }
int GlRecorder::count(std::string_view name) { return state().log.count(name); }
int GlRecorder::count(std::string_view name, std::initializer_list<std::int64_t> first) {
    return state().log.count(name, first);
}
std::vector<std::string> GlRecorder::names() { return state().log.names(); }
std::vector<Call> GlRecorder::all(std::string_view name) { return state().log.all(name); }
const Call &GlRecorder::last(std::string_view name) { return state().log.last(name); }
int GlRecorder::countFloat() { return state().floatCalls; }

void GlRecorder::setListener(Listener listener) { state().listener = listener; }
void GlRecorder::setDrawing(bool on, bool scissored) {
    state().drawing = on;
    state().drawingScissored = scissored;
}
void GlRecorder::setRecording(bool on) {
    state().recording = on;
    updateQuiet();
}
bool GlRecorder::isRecording() { return state().recording; }
void GlRecorder::setStubbed(bool on) {
    state().stubbed = on;
    updateQuiet();
}
bool GlRecorder::isStubbed() { return state().stubbed; }
void GlRecorder::setInteger(GLenum pname, std::vector<GLint> values) {
    state().integers[pname] = std::move(values);
}
void GlRecorder::setPixels(std::vector<std::uint8_t> bytes) { state().pixels = std::move(bytes); }
void GlRecorder::setError(GLenum error) { state().error = error; }

long GlRecorder::failUpload(long nth) {
    state().failingUpload = nth;
    state().uploadError = GL_NO_ERROR;
    return std::exchange(state().uploads, 0);
}

GlRecorder::Stub::Stub() {
    state() = State();
    setStubbed(true);
}
GlRecorder::Stub::~Stub() {
    state() = State();
    updateQuiet();
}

}  // namespace keltra::test

using keltra::Signature;
using keltra::test::GlFunction;
using keltra::test::Wrapper;

#define KELTRA_WRAP(n, f, isFloat)                                                                 \
    KELTRA_INTERPOSE(Signature<decltype(f)>::Result, GL_APIENTRY, f, (KELTRA_PARAMETERS_##n(f))) { \
        return Wrapper<GlFunction::f, isFloat, decltype(f)>::call(#f KELTRA_ARGUMENTS_##n);        \
    }
#define KELTRA_WRAP_FLOAT(n, f) KELTRA_WRAP(n, f, true)
#define KELTRA_WRAP_FIXED(n, f) KELTRA_WRAP(n, f, false)

KELTRA_GL_FLOAT_FUNCTIONS(KELTRA_WRAP_FLOAT)
KELTRA_GL_FIXED_FUNCTIONS(KELTRA_WRAP_FIXED)
