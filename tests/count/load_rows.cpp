// SPDX-License-Identifier: Zlib
#include <keltra/keltra.h>
#include <tinyxml.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "formats/tga.h"
#include "formats/xml_document.h"
#include "formats/xml_scan.h"
#include "tests/count/region.h"

namespace {

constexpr unsigned int kSize = 128, kPixels = kSize * kSize;

using Bytes = std::vector<std::uint8_t>;

Bytes header(std::uint8_t kind) {
    Bytes file(18);
    file[2] = kind;
    file[12] = file[14] = kSize;
    file[16] = 32;
    return file;
}

void addPixels(Bytes &file, unsigned int count, std::uint32_t &random) {
    for (unsigned int i = 0; i < 4 * count; ++i) {
        random = random * 1664525 + 1013904223;
        file.push_back(static_cast<std::uint8_t>(random >> 24));
    }
}

Bytes rawFile() {
    std::uint32_t random = 1;
    Bytes file = header(2);
    addPixels(file, kPixels, random);
    return file;
}

// Runs and raw packets of many lengths, as many pixels of each.
Bytes packedFile() {
    std::uint32_t random = 2;
    Bytes file = header(10);
    for (unsigned int left = kPixels, packet = 0; left; ++packet) {
        unsigned int length = packet / 2 * 37 % 128 + 1;
        if (length > left) length = left;
        file.push_back(static_cast<std::uint8_t>((packet & 1 ? 0 : 128) + length - 1));
        addPixels(file, packet & 1 ? length : 1, random);
        left -= length;
    }
    return file;
}

void countPixels(const char *row, const Bytes &file) {
    Bytes pixels(4 * kPixels);
    keltra::TgaImage image;
    count::require(keltra::parseTga(file.data(), file.size(), image), row);
    {
        const count::Region region(row, kPixels, count::Kind::kLoad);
        keltra::decodeTga(image, pixels.data());
    }
    count::require(pixels[0] == file[20 + (file[2] == 10)], row);
}

// The table has instructions a KB: the count is divided by the file's size in KB, at least one.
unsigned int kilobytes(const char *data, const char *name) {
    std::FILE *file = std::fopen((std::string(data) + name).c_str(), "rb");
    count::require(file && std::fseek(file, 0, SEEK_END) == 0, name);
    const long bytes = std::ftell(file);
    std::fclose(file);
    return bytes < 1024 ? 1 : static_cast<unsigned int>((bytes + 512) / 1024);
}

void countFile(const char *row, const char *data, const char *name) {
    const unsigned int size = kilobytes(data, name);
    KTNODE *root;
    {
        const count::Region region(row, size, count::Kind::kLoad);
        root = KELTRA::load(name);
    }
    count::require(root != nullptr, name);
}

std::vector<char> textOf(const char *data, const char *name) {
    std::FILE *file = std::fopen((std::string(data) + name).c_str(), "rb");
    std::vector<char> text(std::size_t{kilobytes(data, name)} * 2048 + 1);
    text.resize(std::fread(text.data(), 1, text.size() - 1, file) + 1);
    std::fclose(file);
    return text;
}

// The part of the row above that makes the document.
void countDocument(const char *row, const char *data, const char *name) {
    const std::vector<char> text = textOf(data, name);
    const count::Region region(row, kilobytes(data, name), count::Kind::kLoad);
    TiXmlDocument document;
    count::require(keltra::parseXmlDocument(text.data(), text.size() - 1, document), name);
}

// What the parser takes for it by itself, from the text that it is given of documents that are not plain.
void countParser(const char *row, const char *data, const char *name) {
    std::vector<char> text = textOf(data, name);
    std::vector<unsigned int> lines(text.size());
    keltra::MarkupScan scan(text.data(), &text.back(), lines.data(), keltra::MarkupScan::kShorter);
    count::require(scan.run(), name);
    const count::Region region(row, kilobytes(data, name), count::Kind::kLoad);
    TiXmlDocument document;
    document.SetTabSize(0);
    document.Parse(text.data(), nullptr, TIXML_ENCODING_LEGACY);
    count::require(!document.Error() && document.FirstChildElement(), name);
}

}  // namespace

void count::countAnimation(const char *data) {
    const unsigned int size = kilobytes(data, "figure_walk.kta");
    KTNODE *figure = KELTRA::load("figure.kte");
    KTANIM *walk;
    {
        const Region region("walk.kta, a KB, with its KTANIM", size, Kind::kLoad);
        walk = new KTANIM;
        walk->load("figure_walk.kta");
    }
    require(figure && walk->getNumberOfFrames() > 1, "walk");
    walk->apply(0, figure);
    const Region region("animation, a bone", walk->getNumberOfBones());
    walk->apply(1, figure);
}

void count::countLoading(const char *data) {
    countPixels("Targa of 32 bits, a pixel, raw", rawFile());
    countPixels("Targa of 32 bits, a pixel, run-length", packedFile());
    countFile("scene file, a KB", data, "scene.kte");
    countFile("scene file, a KB, loaded again with its textures kept", data, "scene.kte");
    countFile("interface.xml, a KB", data, "interface.xml");
    countDocument("interface.xml, a KB, its document", data, "interface.xml");
    countParser("interface.xml, a KB, its document by TinyXML's parser", data, "interface.xml");
}
