// SPDX-License-Identifier: Zlib
#include "tests/support/image.h"

#include <GLES/gl.h>
#include <png.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "tests/support/call_hash.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

constexpr int kDifferenceGain = 4;

std::string goldenPath(const std::string &name) {
    return std::string(KELTRA_GOLDEN_FOLDER) + "/" + name + "_" + std::to_string(screenDepth()) + ".png";
}

// Writes the picture to the build folder and prints its path.
std::string leave(const Image &image, const std::string &name) {
    std::error_code ignored;
    std::filesystem::create_directories(KELTRA_OUTPUT_FOLDER, ignored);
    const std::string path =
        std::string(KELTRA_OUTPUT_FOLDER) + "/" + name + "_" + std::to_string(screenDepth()) + ".png";
    return savePng(image, path) ? path : path + " (could not be written)";
}

}  // namespace

std::array<int, 3> Image::at(int x, int y) const {
    const std::size_t i = (static_cast<std::size_t>(y) * width + x) * 3;
    return {pixels.at(i), pixels.at(i + 1), pixels.at(i + 2)};
}

Image captureFrame(int width, int height) {
    const GlRecorder::Pause pause;
    // RGBA is the one format that every OpenGL ES driver reads; its rows need no padding.
    std::vector<std::uint8_t> rgba(static_cast<std::size_t>(width) * height * 4);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());

    Image image{width, height, {}};
    image.pixels.reserve(static_cast<std::size_t>(width) * height * 3);
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x) {
            const std::uint8_t *texel = &rgba[(static_cast<std::size_t>(y) * width + x) * 4];
            image.pixels.insert(image.pixels.end(), texel, texel + 3);
        }
    }
    return image;
}

bool savePng(const Image &image, const std::string &path) {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    png.width = static_cast<png_uint_32>(image.width);
    png.height = static_cast<png_uint_32>(image.height);
    png.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&png, path.c_str(), 0, image.pixels.data(), 0, nullptr) != 0;
}

Image loadPng(const std::string &path) {
    png_image png;
    std::memset(&png, 0, sizeof png);
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&png, path.c_str())) return {};
    png.format = PNG_FORMAT_RGB;
    Image image{static_cast<int>(png.width), static_cast<int>(png.height), {}};
    image.pixels.resize(PNG_IMAGE_SIZE(png));
    if (!png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr)) return {};
    return image;
}

Difference compare(const Image &one, const Image &other) {
    Difference result;
    result.sameSize = one.width == other.width && one.height == other.height;
    if (!result.sameSize || one.empty()) return result;
    long sum = 0;
    for (std::size_t i = 0; i < one.pixels.size(); ++i) {
        const int difference = std::abs(one.pixels[i] - other.pixels[i]);
        result.largest = std::max(result.largest, difference);
        sum += difference;
    }
    result.mean = static_cast<double>(sum) / static_cast<double>(one.pixels.size());
    return result;
}

Image differenceImage(const Image &one, const Image &other) {
    Image result = one;
    for (std::size_t i = 0; i < result.pixels.size(); ++i) {
        const int difference = std::abs(one.pixels[i] - other.pixels[i]);
        result.pixels[i] = static_cast<std::uint8_t>(std::min(difference * kDifferenceGain, 255));
    }
    return result;
}

::testing::AssertionResult matchesGolden(const Image &actual, const std::string &name, Tolerance tolerance) {
    if (CallHash::isOn()) {
        const ::testing::AssertionResult calls = CallHash::matches(name);
        if (!calls || CallHash::withoutPictures()) return calls;
    }
    const std::string golden = goldenPath(name);
    if (const char *update = std::getenv("KELTRA_UPDATE_GOLDEN"); update && !std::strcmp(update, "1")) {
        if (savePng(actual, golden)) return ::testing::AssertionSuccess() << golden << " was written";
        return ::testing::AssertionFailure() << golden << " could not be written";
    }
    const Image expected = loadPng(golden);
    if (expected.empty()) {
        return ::testing::AssertionFailure()
               << "no golden picture " << golden << "; the actual one is " << leave(actual, name + "_actual");
    }
    const Difference difference = compare(actual, expected);
    if (difference.sameSize && difference.largest <= tolerance.largest && difference.mean <= tolerance.mean) {
        return ::testing::AssertionSuccess();
    }
    auto failure = ::testing::AssertionFailure();
    if (difference.sameSize) {
        failure << "the picture differs from " << golden << ": largest " << difference.largest << " (allowed "
                << tolerance.largest << "), mean " << difference.mean << " (allowed " << tolerance.mean
                << ")";
        failure << "\n  difference: " << leave(differenceImage(actual, expected), name + "_difference");
    } else {
        failure << golden << " is " << expected.width << "x" << expected.height << ", the picture "
                << actual.width << "x" << actual.height;
    }
    return failure << "\n  actual: " << leave(actual, name + "_actual");
}

}  // namespace keltra::test
