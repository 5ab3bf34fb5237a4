// SPDX-License-Identifier: Zlib
// Linked to the README's program: the picture beside it has to be what it draws in its frame kFrame. Then the
// pen drags the view away, the key right brings it back, and Escape ends the program. Ends it with 1 when one
// of these is not so; with KELTRA_UPDATE_GOLDEN in the environment, writes the picture.

#include <EGL/egl.h>
#include <GLES/gl.h>
#include <SDL.h>
#include <dlfcn.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr int kFrame = 6;
// In pixels: what the key right undoes in a frame of half a second.
constexpr int kDrag = 50;
constexpr int kWidth = 240, kHeight = 320;
// The picture is one of 16 bits: a channel of the other screen differs by up to 8 steps, single pixels on
// edges by more.
constexpr double kMeanDifference = 3.0;

png_image described() {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    png.width = kWidth;
    png.height = kHeight;
    png.format = PNG_FORMAT_RGB;
    return png;
}

// Rows from the bottom up, as the GL has them.
std::vector<unsigned char> drawn() {
    std::vector<unsigned char> rgba(kWidth * kHeight * 4), rgb;
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    for (std::size_t i = 0; i < rgba.size(); i += 4) rgb.insert(rgb.end(), &rgba[i], &rgba[i] + 3);
    return rgb;
}

// Below 0 when the picture cannot be read.
double differenceFromThePicture() {
    const std::vector<unsigned char> frame = drawn();
    png_image png = described();
    if (!png_image_begin_read_from_file(&png, KELTRA_PICTURE)) return -1.0;
    const bool sameSize = png.width == kWidth && png.height == kHeight;
    png.format = PNG_FORMAT_RGB;
    std::vector<unsigned char> picture(frame.size());
    if (!sameSize || !png_image_finish_read(&png, nullptr, picture.data(), -3 * kWidth, nullptr)) return -1.0;
    double sum = 0.0;
    for (std::size_t i = 0; i < frame.size(); ++i) sum += std::abs(frame[i] - picture[i]);
    return sum / static_cast<double>(frame.size());
}

void fail(const char *what) {
    std::fprintf(stderr, "the program %s\n", what);
    std::exit(1);
}

void writePicture() {
    const std::vector<unsigned char> frame = drawn();
    png_image png = described();
    if (!png_image_write_to_file(&png, KELTRA_PICTURE, 0, frame.data(), -3 * kWidth, nullptr))
        fail("cannot write its picture");
}

void expectThePicture(bool shown) {
    const double difference = differenceFromThePicture();
    std::fprintf(stderr, "mean difference from the picture: %.2f\n", difference);
    if (difference < 0.0) fail("has no picture of its size");
    if (shown != (difference <= kMeanDifference))
        fail(shown ? "does not draw its picture" : "does not hear the pen");
}

void drag() {
    SDL_Event event = {};
    event.type = SDL_MOUSEMOTION;
    event.motion.state = SDL_BUTTON(1);
    event.motion.xrel = kDrag;
    SDL_PushEvent(&event);
}

void pressEscape() {
    SDL_Event event = {};
    event.type = SDL_KEYDOWN;
    event.key.keysym.sym = SDLK_ESCAPE;
    SDL_PushEvent(&event);
}

// Looks at the frame that is about to be shown, and gives the next one its input.
void visit(int frame) {
    if (glGetError() != GL_NO_ERROR) fail("makes an error of the GL");
    if (frame == kFrame) {
        if (std::getenv("KELTRA_UPDATE_GOLDEN")) writePicture();
        expectThePicture(true);
        drag();
    } else if (frame == kFrame + 1) {
        expectThePicture(false);
        SDL_GetKeyState(nullptr)[SDLK_RIGHT] = 1;
    } else if (frame == kFrame + 2) {
        expectThePicture(true);
        pressEscape();
    } else if (frame > kFrame + 2) {
        fail("does not end at Escape");
    }
}

int frames = 0;

struct Shown {
    ~Shown() {
        if (frames < kFrame + 2)
            std::fprintf(stderr, "the program has drawn %d frames only\n", frames), std::_Exit(1);
    }
} shown;

}  // namespace

extern "C" __attribute__((visibility("default"))) EGLBoolean eglSwapBuffers(EGLDisplay display,
                                                                            EGLSurface surface) {
    static const auto next = reinterpret_cast<decltype(&eglSwapBuffers)>(dlsym(RTLD_NEXT, "eglSwapBuffers"));
    visit(++frames);
    return next(display, surface);
}
