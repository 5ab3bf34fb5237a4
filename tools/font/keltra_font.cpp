// SPDX-License-Identifier: Zlib
// keltra-font FONT.ttf OUT.tga OUT.txt: bakes a TrueType font into the texture and the kerning file of a
// KTFONT.

#include "tools/font/font_baker.h"
#include "tools/formats/version.h"
#include "tools/support/whole_file.h"

#include <png.h>
#include <CLI/CLI.hpp>

#include <cstdio>
#include <string>
#include <vector>

namespace {

using keltra::font::BakedFont;

constexpr int kDrawnCell = 16;

struct Arguments {
    keltra::font::BakeOptions bake;
    std::string texture, kerning, preview;
};

bool writeFile(const std::string &path, const void *bytes, std::size_t size) {
    std::string reason;
    if (keltra::support::writeWhole(path, bytes, size, &reason)) return true;
    std::fprintf(stderr, "keltra-font: cannot write %s: %s\n", path.c_str(), reason.c_str());
    return false;
}

bool writePreview(const std::string &path, const BakedFont &font) {
    const keltra::formats::Image picture = keltra::font::previewOf(font);
    png_image png = {};
    png.version = PNG_IMAGE_VERSION;
    png.width = picture.width;
    png.height = picture.height;
    png.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(png);
    std::vector<std::uint8_t> file(size);
    if (png_image_write_to_memory(&png, file.data(), &size, 0, picture.pixels.data(), 0, nullptr))
        return writeFile(path, file.data(), size);
    std::fprintf(stderr, "keltra-font: cannot write %s: %s\n", path.c_str(), png.message);
    return false;
}

bool writeAll(const Arguments &arguments, const BakedFont &font) {
    keltra::formats::TgaOptions options;
    options.runLength = true;
    options.bits = 32;
    const std::vector<std::uint8_t> texture = keltra::formats::writeTga(font.image, options);
    const std::string kerning = keltra::font::kerningText(font);
    return writeFile(arguments.texture, texture.data(), texture.size()) &&
           writeFile(arguments.kerning, kerning.data(), kerning.size()) &&
           (arguments.preview.empty() || writePreview(arguments.preview, font));
}

void describe(CLI::App *app, Arguments *arguments) {
    app->set_version_flag("--version", std::string("keltra-font ") + keltra::formats::projectVersion());
    app->add_option("FONT", arguments->bake.file, "Font file")->required()->check(CLI::ExistingFile);
    app->add_option("TEXTURE", arguments->texture, "Targa file to write, 16 x 16 cells")->required();
    app->add_option("KERNING", arguments->kerning, "Kerning file to write")->required();
    app->add_option("--size", arguments->bake.size,
                    "Pixel size of the letters; without it, the largest that fits")
        ->check(CLI::Range(4, 64));
    app->add_option(
           "--cell", arguments->bake.cell,
           "Pixels of a cell; the engine takes the right glyphs only from cells drawn 16 pixels wide")
        ->check(CLI::Range(8, 32))
        ->capture_default_str();
    app->add_option("--preview", arguments->preview, "PNG file of the cells and of a few lines of text");
}

}  // namespace

int main(int argc, char **argv) {
    CLI::App app("Bakes a TrueType font into the texture and the kerning file of an engine font",
                 "keltra-font");
    Arguments arguments;
    describe(&app, &arguments);
    CLI11_PARSE(app, argc, argv);

    BakedFont font;
    std::string error;
    if (!keltra::font::bakeFont(arguments.bake, &font, &error)) {
        std::fprintf(stderr, "keltra-font: %s\n", error.c_str());
        return 1;
    }
    if (font.cut)
        std::fprintf(stderr, "keltra-font: %d letters are larger than their cells and are cut\n", font.cut);
    if (font.cell != kDrawnCell)
        std::fprintf(stderr,
                     "keltra-font: set the width of the engine's font to %d pixels, other widths draw wrong\n"
                     "keltra-font: glyphs; and scale the kerning by %d / %d\n",
                     kDrawnCell, kDrawnCell, font.cell);
    if (!writeAll(arguments, font)) return 1;
    std::printf("%s, %d pixels: %s, %s\n", font.family.c_str(), font.size, arguments.texture.c_str(),
                arguments.kerning.c_str());
    return 0;
}
