// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_IMAGE_H
#define KELTRA_TESTS_IMAGE_H

// Pictures of what was drawn, and their comparison with the golden ones in tests/golden.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/screen_depth.h"

namespace keltra::test {

/// Rows from the top, three bytes a pixel: red, green, blue.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    bool empty() const { return pixels.empty(); }
    std::array<int, 3> at(int x, int y) const;
};

/// Reads the frame buffer of the current context, whose lower left corner is the origin. The recorder does
/// not see it.
Image captureFrame(int width = 240, int height = 320);

/// False or an empty image when the file cannot be written or read.
bool savePng(const Image &image, const std::string &path);
Image loadPng(const std::string &path);

/// The differences of colour channels, in steps of 0 to 255.
struct Difference {
    bool sameSize = false;
    int largest = 0;
    double mean = 0;
};
Difference compare(const Image &one, const Image &other);
/// Where the two differ, four times as bright; for two images of the same size.
Image differenceImage(const Image &one, const Image &other);

struct Tolerance {
    int largest = 0;
    double mean = 0;
};

/// Compares the calls, when they are noted (call_hash.h), and then with tests/golden/NAME_DEPTH.png, DEPTH
/// being the screen's colour depth: a golden picture holds for one depth. On failure the actual and the
/// difference picture are left in the build folder and the message names them. With KELTRA_UPDATE_GOLDEN=1 in
/// the environment the golden picture is written instead.
::testing::AssertionResult matchesGolden(const Image &actual, const std::string &name, Tolerance tolerance);

}  // namespace keltra::test

#endif
