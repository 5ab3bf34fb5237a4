// SPDX-License-Identifier: Zlib
#include "tools/support/shot.h"

#include <keltra/settings.h>

#include <GLES/gl.h>
#include <png.h>

#include <fcntl.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

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

bool writeAll(int file, const std::vector<unsigned char> &bytes) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += static_cast<std::size_t>(count);
    }
    return true;
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
    const std::string aside = path + "." + std::to_string(::getpid()) + ".tmp";
    const int file = ::open(aside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        *reason = std::strerror(errno);
        return false;
    }
    bool good = writeAll(file, bytes);
    int fault = errno;
    if (::close(file) != 0 && good) {
        good = false;
        fault = errno;
    }
    if (good && std::rename(aside.c_str(), path.c_str()) != 0) {
        good = false;
        fault = errno;
    }
    if (good) return true;
    ::unlink(aside.c_str());
    *reason = std::strerror(fault);
    return false;
}

}  // namespace keltra::support
