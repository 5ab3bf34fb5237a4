// SPDX-License-Identifier: Zlib
#include <keltra/engine.h>
#include <keltra/foundation.h>
#include <keltra/kit/view.h>
#include <keltra/settings.h>

#include "kit/fault.h"

#include <GLES/gl.h>

#include <cstdio>

namespace {

constexpr unsigned int kReadBytes = 4, kWrittenBytes = 3;  // a pixel

// Rows go from the bottom up, in the GL as in the file; colours from blue to red in the file.
bool writeRows(std::FILE *file, unsigned char *row, unsigned int width, unsigned int height) {
    for (unsigned int y = 0; y < height; ++y) {
        glReadPixels(0, GLint(y), GLsizei(width), 1, GL_RGBA, GL_UNSIGNED_BYTE, row);
        for (unsigned int x = 0; x < width; ++x) {
            const unsigned char red = row[kReadBytes * x], green = row[kReadBytes * x + 1],
                                blue = row[kReadBytes * x + 2];
            unsigned char *const out = row + kWrittenBytes * x;
            out[0] = blue;
            out[1] = green;
            out[2] = red;
        }
        if (std::fwrite(row, kWrittenBytes, width, file) != width) return false;
    }
    return true;
}

}  // namespace

bool KTVIEW::saveScreenshot(const char *path) {
    const char *const call = "KTVIEW::saveScreenshot";
    if (!path) return keltra::kit::failNull(call, "path");
    if (!KELTRA::isActive())
        return keltra::kit::fail(KT_FAULT_STATE, call,
                                 {nullptr, 0, nullptr, "the engine is not active", nullptr});
    const unsigned int width = static_cast<unsigned int>(KTSETTINGS::getSDLWindowX()),
                       height = static_cast<unsigned int>(KTSETTINGS::getSDLWindowY());
    unsigned char *const row = static_cast<unsigned char *>(vnfMalloc(kReadBytes * width));
    if (!row) return keltra::kit::failMemory(call);
    std::FILE *const file = std::fopen(path, "wb");
    const unsigned char low = 0xff, high = 8;
    const unsigned char header[18] = {0,
                                      0,
                                      2,
                                      0,
                                      0,
                                      0,
                                      0,
                                      0,
                                      0,
                                      0,
                                      0,
                                      0,
                                      static_cast<unsigned char>(width & low),
                                      static_cast<unsigned char>(width >> high),
                                      static_cast<unsigned char>(height & low),
                                      static_cast<unsigned char>(height >> high),
                                      24,
                                      0};
    bool good =
        file && std::fwrite(header, sizeof header, 1, file) == 1 && writeRows(file, row, width, height);
    good = file && std::fclose(file) == 0 && good;
    vnfFree(row);
    return good || keltra::kit::fail(KT_FAULT_FILE_WRITE, call, {path, 0, nullptr, nullptr, nullptr});
}
