#include "examples/support/example.h"

#include <GLES/gl.h>
#include <SDL.h>
#include <keltra/settings.h>
#include <png.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <vector>

namespace example {
namespace {

constexpr int kShotFrames = 60;

}  // namespace

bool parse(int argc, char **argv, const char *description, Options *options, int *exitCode) {
    options->data = KELTRA_EXAMPLE_DATA;
    CLI::App app(description);
    app.add_option("--frames", options->frames, "Frames to draw; until the window is closed when left out")
        ->check(CLI::Range(1, 1000000));
    app.add_option("--shot", options->shot, "Save the last frame to this PNG file");
    app.add_option("--data", options->data, "Folder of the sample files");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        *exitCode = app.exit(error);
        return false;
    }
    if (!options->shot.empty() && options->frames == 0) options->frames = kShotFrames;
    if (options->data.empty() || options->data.back() != '/') options->data += '/';
    return true;
}

bool quitRequested() {
    bool quit = false;
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        quit = quit || event.type == SDL_QUIT || event.type == SDL_MOUSEBUTTONDOWN ||
               (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE);
    }
    return quit;
}

bool saveShot(const std::string &path) {
    const int width = KTSETTINGS::getSDLWindowX(), height = KTSETTINGS::getSDLWindowY();
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (size_t alpha = 3; alpha < pixels.size(); alpha += 4) pixels[alpha] = 255;  // the window is opaque
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    // GL's first row is the bottom one: a negative stride writes from the last.
    if (!png_image_write_to_file(&image, path.c_str(), 0, pixels.data(), -width * 4, nullptr)) {
        std::fprintf(stderr, "cannot write %s: %s\n", path.c_str(), image.message);
        return false;
    }
    std::printf("picture: %s\n", path.c_str());
    return true;
}

}  // namespace example
