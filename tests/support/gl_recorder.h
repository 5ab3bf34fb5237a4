// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_GL_RECORDER_H
#define KELTRA_TESTS_GL_RECORDER_H

// The test program's own definitions of all OpenGL ES 1.1 entry points: each keeps its name and arguments and
// passes the call on to the driver. A test clears the log, acts, and then counts:
//
//     GlRecorder::clear();
//     KTOPENGL::blendingOn();
//     EXPECT_EQ(GlRecorder::count("glEnable", {GL_BLEND}), 1);
//
// Stubbed, nothing reaches the driver: for tests and benchmarks that have no context.

#include <GLES/gl.h>

#include <cstdint>
#include <vector>

#include "tests/support/call_log.h"

namespace keltra::test {

class GlRecorder {
   public:
    static void clear();
    static const std::vector<Call> &calls();
    static int count(std::string_view name);
    /// Only calls whose leading arguments equal these.
    static int count(std::string_view name, std::initializer_list<std::int64_t> first);
    static std::vector<std::string> names();
    static std::vector<Call> all(std::string_view name);
    /// The newest call of `name`; one without a name when there was none. `contents` holds the 16 values of
    /// glLoadMatrixx and glMultMatrixx, the 4 of glLightxv, glMaterialxv and glLightModelxv, the names given
    /// to glDelete... and made by glGen..., and for glDrawArrays of a strip of four the 8 positions, 16
    /// colours and 8 texture coordinates, when their arrays are packed and fixed-point; `bytes` the texels of
    /// glTexImage2D and glTexSubImage2D.
    static const Call &last(std::string_view name);
    /// How many of the calls went to entry points that take or return floats: none may.
    static int countFloat();

    /// Is told of every call that is recorded, before a driver has it; of those that make names, after. Bit n
    /// of `pointers` says that argument n is an address. Null: nobody.
    using Listener = void (*)(const Call &call, unsigned pointers);
    static void setListener(Listener listener);
    /// Off, drawing calls do not reach the driver. With `scissored` those do that are scissored, and glClear:
    /// picking reads what it draws. On at program start.
    static void setDrawing(bool on, bool scissored = true);

    /// Calls are still passed on while this is off. On at program start.
    static void setRecording(bool on);
    static bool isRecording();

    /// Stubbed, calls return 0 and do nothing, but glGenTextures and glGenBuffers hand out fresh names,
    /// glGetString returns an empty text, and the following hold.
    static void setStubbed(bool on);
    static bool isStubbed();
    /// What a stubbed glGetIntegerv stores; 0 where nothing was set.
    static void setInteger(GLenum pname, std::vector<GLint> values);
    /// What a stubbed glReadPixels stores, repeated over the rectangle; 0 where nothing was set.
    static void setPixels(std::vector<std::uint8_t> bytes);
    /// What the next stubbed glGetError returns; GL_NO_ERROR after that.
    static void setError(GLenum error);
    /// Lets the `nth` texture upload from now on do nothing but set GL_OUT_OF_MEMORY; with 0 they are only
    /// counted. Returns how many there were since the last time.
    static long failUpload(long nth);

    /// Switches recording off for its lifetime: for the calls of the test itself.
    class Pause {
       public:
        Pause() : before(isRecording()) { setRecording(false); }
        ~Pause() { setRecording(before); }
        Pause(const Pause &) = delete;
        Pause &operator=(const Pause &) = delete;

       private:
        bool before;
    };

    /// Stubs the GL for its lifetime, with a clean log and clean settings before and after.
    class Stub {
       public:
        Stub();
        ~Stub();
        Stub(const Stub &) = delete;
        Stub &operator=(const Stub &) = delete;
    };
};

}  // namespace keltra::test

#endif
