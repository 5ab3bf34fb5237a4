// SPDX-License-Identifier: Zlib
// Loaded before a program (LD_PRELOAD): writes each frame that the program shows to the file descriptor
// KELTRA_RECORD, as rows of RGBA from the bottom up.

#include <EGL/egl.h>
#include <GLES/gl.h>
#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

void writeAll(int file, const unsigned char *bytes, std::size_t count) {
    while (count > 0) {
        const ssize_t written = write(file, bytes, count);
        if (written <= 0) {
            std::perror("record");
            std::_Exit(1);
        }
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

}  // namespace

extern "C" EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    EGLint width = 0, height = 0;
    eglQuerySurface(display, surface, EGL_WIDTH, &width);
    eglQuerySurface(display, surface, EGL_HEIGHT, &height);
    std::vector<unsigned char> pixels(4u * static_cast<unsigned>(width) * static_cast<unsigned>(height));
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    const char *file = std::getenv("KELTRA_RECORD");
    if (file) writeAll(std::atoi(file), pixels.data(), pixels.size());
    static const auto next = reinterpret_cast<decltype(&eglSwapBuffers)>(dlsym(RTLD_NEXT, "eglSwapBuffers"));
    return next(display, surface);
}
