// SPDX-License-Identifier: Zlib
#include "tools/support/shot.h"

#include <keltra/settings.h>

#include "tools/support/whole_file.h"

#include <GLES/gl.h>
#include <png.h>

#include <algorithm>

namespace keltra::support {
namespace {

constexpr int kRgba = 4, kRgb = 3;

bool encode(const Shot &shot, std::vector<unsigned char> *file, std::string *reason) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(shot.width);
    image.height = static_cast<png_uint_32>(shot.height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    file->resize(size);
    const bool good =
        png_image_write_to_memory(&image, file->data(), &size, 0, shot.pixels.data(), 0, nullptr) != 0;
    file->resize(good ? size : 0);
    if (!good) *reason = image.message;
    return good;
}

}  // namespace

Shot takeShot() {
    Shot shot;
    shot.width = KTSETTINGS::getSDLWindowX();
    shot.height = KTSETTINGS::getSDLWindowY();
    const std::size_t width = static_cast<std::size_t>(shot.width),
                      height = static_cast<std::size_t>(shot.height);
    std::vector<unsigned char> read(width * height * kRgba);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, shot.width, shot.height, GL_RGBA, GL_UNSIGNED_BYTE, read.data());
    shot.pixels.resize(width * height * kRgb);
    unsigned char *pixel = shot.pixels.data();
    // GL's first row is the bottom one.
    for (std::size_t y = height; y-- > 0;)
        for (std::size_t x = 0; x < width; ++x, pixel += kRgb)
            std::copy_n(read.data() + (y * width + x) * kRgba, kRgb, pixel);
    return shot;
}

bool saveShot(const Shot &shot, const std::string &path, std::string *reason) {
    std::vector<unsigned char> bytes;
    if (!encode(shot, &bytes, reason)) return false;
    return writeWhole(path, bytes.data(), bytes.size(), reason);
}

}  // namespace keltra::support
