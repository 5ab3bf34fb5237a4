// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_PICTURES_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_PICTURES_H

// Pictures of the common formats, made in the test, and textures as the engine reads them.

#include <Magick++.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "formats/tga.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {

using Bytes = std::vector<std::uint8_t>;

/// Every pixel differs from its neighbours, and the picture from its mirror images.
inline formats::Image sample(unsigned width, unsigned height, unsigned alpha = 255) {
    formats::Image image(width, height);
    for (unsigned y = 0; y < height; ++y)
        for (unsigned x = 0; x < width; ++x)
            image.at(x, y) = {static_cast<std::uint8_t>(x * 37 + 10), static_cast<std::uint8_t>(y * 53 + 20),
                              static_cast<std::uint8_t>((x * 5 + y * 3) % 256),
                              static_cast<std::uint8_t>(alpha)};
    return image;
}

inline formats::Image plain(unsigned width, unsigned height, formats::Rgba colour) {
    formats::Image image(width, height);
    for (formats::Rgba &pixel : image.pixels) pixel = colour;
    return image;
}

using Change = std::function<void(Magick::Image &)>;

inline Bytes encode(const formats::Image &image, const std::string &format, const Change &change = {}) {
    Magick::InitializeMagick(nullptr);
    bool alpha = false;
    for (const formats::Rgba pixel : image.pixels) alpha = alpha || pixel.a != 255;
    // Magick writes Targa files upside down.
    if (format == "tga") return formats::writeTga(image, {false, alpha ? 32u : 24u, false});
    Magick::Image picture(image.width, image.height, alpha ? "RGBA" : "RGBP", MagickCore::CharPixel,
                          image.pixels.data());
    picture.magick(format);
    picture.depth(8);
    if (change) change(picture);
    Magick::Blob blob;
    picture.write(&blob);
    const auto *first = static_cast<const std::uint8_t *>(blob.data());
    return Bytes(first, first + blob.length());
}

/// What the engine makes of a texture file, row 0 at the top. Throws for what it refuses.
inline formats::Image engineReads(const Bytes &file) {
    TgaImage header;
    if (!parseTga(file.data(), file.size(), header) || header.kind == TgaKind::kOther)
        throw std::runtime_error("the engine refuses the texture");
    Bytes pixels(header.bytes());
    if (!decodeTga(header, pixels.data())) throw std::runtime_error("the texture is cut short");
    formats::Image image(header.sizeX, header.sizeY);
    const std::uint8_t *at = pixels.data();
    for (unsigned row = 0; row < image.height; ++row) {
        for (unsigned x = 0; x < image.width; ++x, at += header.bytesPerPixel) {
            const std::uint8_t alpha = header.bytesPerPixel == 4 ? at[3] : std::uint8_t{255};
            image.at(x, image.height - 1 - row) = {at[0], at[1], at[2], alpha};
        }
    }
    return image;
}

/// The largest difference of a channel, alpha too; 1000 for pictures of different sizes.
inline int difference(const formats::Image &a, const formats::Image &b) {
    if (a.width != b.width || a.height != b.height) return 1000;
    int most = 0;
    const auto compare = [&](int x, int y) { most = std::max(most, std::abs(x - y)); };
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        compare(a.pixels[i].r, b.pixels[i].r);
        compare(a.pixels[i].g, b.pixels[i].g);
        compare(a.pixels[i].b, b.pixels[i].b);
        compare(a.pixels[i].a, b.pixels[i].a);
    }
    return most;
}

}  // namespace keltra::test

#endif
