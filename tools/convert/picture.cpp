// SPDX-License-Identifier: Zlib
#include "tools/convert/picture.h"

#include "tools/convert/names.h"

#include <Magick++.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdint>
#include <cstring>

namespace keltra::convert {
namespace {

using formats::Image;
using formats::Rgba;

// Raster formats only: a model must not be able to use formats that draw, run scripts or read other files.
struct Signature {
    const char *format;
    const char *bytes;
    std::size_t size;
};
constexpr Signature kSignatures[] = {
    {"PNG", "\x89PNG\r\n\x1a\n", 8},
    {"JPEG", "\xff\xd8\xff", 3},
    {"GIF", "GIF8", 4},
    {"DDS", "DDS ", 4},
    {"TIFF", "II*\0", 4},
    {"TIFF", "MM\0*", 4},
    {"PSD", "8BPS", 4},
    {"HDR", "#?RADIANCE", 10},
    {"HDR", "#?RGBE", 6},
    {"SGI", "\x01\xda", 2},
    {"PCX", "\x0a\x05\x01", 3},
    {"PCX", "\x0a\x03\x01", 3},
    {"PCX", "\x0a\x02\x01", 3},
    {"BMP", "BM", 2},
};

// Formats that models name and that are not read.
constexpr Signature kUnread[] = {
    {"KTX 2, Basis Universal or other GPU textures", "\xabKTX 20\xbb", 8},
    {"KTX, compressed for a GPU", "\xabKTX 11\xbb", 8},
    {"AVIF", "ftypavif", 8},
    {"HEIF", "ftypheic", 8},
    {"Basis Universal", "sB\x13", 3},
    {"JPEG 2000", "jP  ", 4},
    {"OpenEXR", "\x76\x2f\x31\x01", 4},
    {"XCF, the GIMP's own format", "gimp xcf", 8},
};

const char *const kExtensions[] = {"png", "tga", "jpg",  "jpeg", "bmp", "tif", "tiff", "dds",
                                   "psd", "gif", "webp", "pcx",  "ppm", "pgm", "pbm",  "pnm",
                                   "pam", "hdr", "sgi",  "vda",  "vst", "icb", "dib",  "jpe"};

bool startsWith(const unsigned char *bytes, std::size_t size, const char *with, std::size_t length) {
    return size >= length && std::memcmp(bytes, with, length) == 0;
}

// The decoder's name of the format, or null. Targa has only an optional footer to recognise it by.
const char *formatOf(const unsigned char *bytes, std::size_t size, const std::string &extension) {
    for (const Signature &known : kSignatures)
        if (startsWith(bytes, size, known.bytes, known.size)) return known.format;
    if (size >= 12 && startsWith(bytes, size, "RIFF", 4) && std::memcmp(bytes + 8, "WEBP", 4) == 0)
        return "WEBP";
    if (size >= 3 && bytes[0] == 'P' && bytes[1] >= '1' && bytes[1] <= '7' && std::isspace(bytes[2]))
        return "PNM";
    constexpr char kFooter[] = "TRUEVISION-XFILE.";  // with the terminating zero
    if (size >= 26 && std::memcmp(bytes + size - sizeof kFooter, kFooter, sizeof kFooter) == 0) return "TGA";
    for (const char *targa : {"tga", "vda", "vst", "icb"})
        if (extension == targa) return "TGA";
    return nullptr;
}

std::string unreadFormat(const unsigned char *bytes, std::size_t size) {
    constexpr std::size_t boxHeader = 4;  // before the type, in formats of boxes
    for (const Signature &known : kUnread)
        if (startsWith(bytes, size, known.bytes, known.size) ||
            (size > boxHeader && startsWith(bytes + boxHeader, size - boxHeader, known.bytes, known.size)))
            return known.format;
    return "";
}

void startMagick() {
    static const bool started = [] {
        Magick::InitializeMagick(nullptr);
        // No threads: a conversion runs in a forked process. The library's time limit would end the process,
        // so each picture has a Clock instead.
        MagickCore::SetMagickResourceLimit(MagickCore::ThreadResource, 1);
        MagickCore::SetMagickResourceLimit(MagickCore::WidthResource, kMaxPictureSide);
        MagickCore::SetMagickResourceLimit(MagickCore::HeightResource, kMaxPictureSide);
        MagickCore::SetMagickResourceLimit(MagickCore::MemoryResource, std::uint64_t{1} << 30);
        MagickCore::SetMagickResourceLimit(MagickCore::MapResource, std::uint64_t{1} << 30);
        MagickCore::SetMagickResourceLimit(MagickCore::DiskResource, std::uint64_t{1} << 30);
        return true;
    }();
    static_cast<void>(started);
}

// Stops a decoder that takes too long.
struct Clock {
    std::chrono::steady_clock::time_point end;
    bool late = false;

    static MagickCore::MagickBooleanType ask(const char *, const MagickCore::MagickOffsetType,
                                             const MagickCore::MagickSizeType, void *data) {
        Clock &clock = *static_cast<Clock *>(data);
        clock.late = clock.late || std::chrono::steady_clock::now() >= clock.end;
        return clock.late ? MagickCore::MagickFalse : MagickCore::MagickTrue;
    }
};

// "PROGRAM: MESSAGE `FILE' @ error/png.c/..." reduced to the message.
std::string reasonOf(const std::exception &error) {
    std::string text = error.what();
    text = text.substr(0, text.find(" @ "));
    const std::size_t colon = text.find(": ");
    if (colon != std::string::npos) text.erase(0, colon + 2);
    const std::size_t file = text.find(" `'");
    if (file != std::string::npos) text.erase(file, 3);
    return cleanText(text.empty() ? "it cannot be decoded" : text);
}

void prepare(Magick::Image &image, const char *format, Clock &clock) {
    image.magick(format);
    image.subImage(0);
    image.subRange(1);
    MagickCore::SetImageInfoProgressMonitor(image.imageInfo(), Clock::ask, &clock);
}

void checkSize(const Magick::Image &image) {
    const std::size_t width = image.columns(), height = image.rows();
    if (width == 0 || height == 0) throw PictureFault("it has no pixels", false);
    if (width > kMaxPictureSide || height > kMaxPictureSide || width * height > kMaxPicturePixels)
        throw PictureFault(
            "it is too large, " + std::to_string(width) + " x " + std::to_string(height) + " pixels", false);
}

Image exported(Magick::Image &image) {
    Image result(static_cast<unsigned>(image.columns()), static_cast<unsigned>(image.rows()));
    static_assert(sizeof(Rgba) == 4, "pixels must be packed");
    image.write(0, 0, image.columns(), image.rows(), "RGBA", MagickCore::CharPixel, result.pixels.data());
    // Decoders do not initialise the alpha of a picture that has none.
    if (!image.matte())
        for (Rgba &pixel : result.pixels) pixel.a = 255;
    return result;
}

// The decoder returns the rows of a Targa file in file order, with their orientation. In other formats the
// orientation is the camera's, which does not apply to textures.
void turnTarga(Magick::Image &image) {
    const MagickCore::OrientationType begin = image.orientation();
    if (begin == MagickCore::BottomLeftOrientation || begin == MagickCore::BottomRightOrientation)
        image.flip();
    if (begin == MagickCore::TopRightOrientation || begin == MagickCore::BottomRightOrientation) image.flop();
}

Image decode(const Magick::Blob &blob, const char *format, Clock &clock, std::string &remark) {
    // The PNM decoder leaks memory when asked only for the size. PNM is not compressed, so a small file
    // cannot be a large picture, and the library's limits are enough.
    if (std::strcmp(format, "PNM") != 0) {
        Magick::Image header;
        prepare(header, format, clock);
        header.quiet(true);
        header.ping(blob);
        checkSize(header);
    }
    Magick::Image image;
    prepare(image, format, clock);
    try {
        image.read(blob);
    } catch (const Magick::WarningCorruptImage &damage) {
        remark = reasonOf(damage);
    } catch (const Magick::Warning &) {
        // Unknown tags and colour profiles do not change pixels.
    }
    checkSize(image);
    if (std::strcmp(format, "TGA") == 0) turnTarga(image);
    // The values of grey pictures are sRGB already.
    if (image.colorSpace() != MagickCore::GRAYColorspace && image.colorSpace() != MagickCore::sRGBColorspace)
        image.colorSpace(MagickCore::sRGBColorspace);
    return exported(image);
}

bool visible(Rgba pixel) { return pixel.a != 0; }

}  // namespace

bool isPictureExtension(const std::string &extension, unsigned *rank) {
    const auto found = std::find(std::begin(kExtensions), std::end(kExtensions), extension);
    if (found == std::end(kExtensions)) return false;
    if (rank) *rank = static_cast<unsigned>(found - std::begin(kExtensions));
    return true;
}

Image readPicture(const void *bytes, std::size_t size, const std::string &extension, std::string &remark,
                  double seconds) {
    remark.clear();
    if (size == 0) throw PictureFault("it is empty", false);
    const char *format = formatOf(static_cast<const unsigned char *>(bytes), size, extension);
    const std::string unread = format ? "" : unreadFormat(static_cast<const unsigned char *>(bytes), size);
    if (!unread.empty()) throw PictureFault("its format is not read: " + unread, false);
    if (!format) throw PictureFault("it is not a picture of a known format", false);
    startMagick();
    Clock clock{std::chrono::steady_clock::now() +
                std::chrono::microseconds(static_cast<std::int64_t>(seconds * 1e6))};
    const PictureFault late("it takes too long to decode", false);
    try {
        const Image image = decode(Magick::Blob(bytes, size), format, clock, remark);
        if (clock.late) throw late;
        return image;
    } catch (const PictureFault &) {
        throw;
    } catch (const std::exception &error) {
        if (clock.late) throw late;
        throw PictureFault(reasonOf(error), false);
    }
}

unsigned nearestPower(unsigned size, unsigned most) {
    unsigned power = 1;
    // The geometric mean of p and 2 p is p times the square root of 2.
    while (power * 2 <= most && std::uint64_t{size} * size > std::uint64_t{power} * power * 2) power *= 2;
    return power;
}

Image resized(const Image &image, unsigned width, unsigned height, bool alphaCounts) {
    Image result = image;
    if (image.width != width || image.height != height) {
        startMagick();
        // 'P' is a byte of padding.
        Magick::Image work(image.width, image.height, alphaCounts ? "RGBA" : "RGBP", MagickCore::CharPixel,
                           image.pixels.data());
        Magick::Geometry size(width, height);
        size.aspect(true);  // exactly these sides
        work.resize(size);
        result = exported(work);
    }
    if (!alphaCounts)
        for (Rgba &pixel : result.pixels) pixel.a = 255;
    return result;
}

void spreadColours(Image &image) {
    std::vector<std::uint32_t> edge;
    std::vector<bool> known(image.pixels.size());
    for (std::uint32_t i = 0; i < image.pixels.size(); ++i) {
        known[i] = visible(image.pixels[i]);
        if (known[i]) edge.push_back(i);
    }
    // Each round colours one ring of pixels from the ring before.
    while (!edge.empty()) {
        std::vector<std::uint32_t> ring;
        for (const std::uint32_t from : edge) {
            const unsigned x = from % image.width, y = from / image.width;
            const unsigned left = (x + image.width - 1) % image.width, right = (x + 1) % image.width;
            const unsigned above = (y + image.height - 1) % image.height, below = (y + 1) % image.height;
            for (const std::uint32_t to : {y * image.width + left, y * image.width + right,
                                           above * image.width + x, below * image.width + x}) {
                if (known[to]) continue;
                known[to] = true;
                const std::uint8_t alpha = image.pixels[to].a;
                image.pixels[to] = image.pixels[from];
                image.pixels[to].a = alpha;
                ring.push_back(to);
            }
        }
        edge.swap(ring);
    }
}

bool hasAlpha(const Image &image) {
    return std::any_of(image.pixels.begin(), image.pixels.end(), [](Rgba pixel) { return pixel.a != 255; });
}

bool looksLikeNormals(const Image &image) {
    std::uint64_t red = 0, green = 0, blue = 0;
    for (const Rgba pixel : image.pixels) {
        red += pixel.r;
        green += pixel.g;
        blue += pixel.b;
    }
    const std::uint64_t count = std::max<std::size_t>(image.pixels.size(), 1);
    const auto middle = [&](std::uint64_t sum) { return sum / count >= 96 && sum / count <= 160; };
    return middle(red) && middle(green) && blue / count >= 190;
}

Image checker() {
    Image image(64, 64);
    for (unsigned y = 0; y < image.height; ++y)
        for (unsigned x = 0; x < image.width; ++x)
            if ((x / 8 + y / 8) % 2 == 0) image.at(x, y) = {255, 0, 255, 255};
    return image;
}

}  // namespace keltra::convert
