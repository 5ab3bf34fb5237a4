// SPDX-License-Identifier: Zlib
// Decoding a 512 x 512 Targa image of 32 bits, against a plain copy of the same bytes.

#include <benchmark/benchmark.h>
#include <keltra/texture.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "formats/tga.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr unsigned int kSize = 512;
constexpr unsigned int kPixels = kSize * kSize;
constexpr unsigned int kPixelBytes = 4;

Bytes header(std::uint8_t kind) {
    Bytes file(18);
    file[2] = kind;
    file[13] = file[15] = kSize >> 8;
    file[16] = 8 * kPixelBytes;
    return file;
}

void putPixel(Bytes &file, std::uint32_t value) {
    for (unsigned int i = 0; i < kPixelBytes; ++i) file.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

Bytes uncompressedFile() {
    std::mt19937 random(1);
    Bytes file = header(2);
    for (unsigned int i = 0; i < kPixels; ++i) putPixel(file, random());
    return file;
}

// Runs and raw packets of all lengths in turn, which is the mean of flat and of noisy pictures.
Bytes runLengthFile() {
    std::mt19937 random(2);
    Bytes file = header(10);
    for (unsigned int left = kPixels; left;) {
        const bool run = random() & 1;
        const unsigned int length = std::min<unsigned int>(left, random() % 128 + 1);
        file.push_back(static_cast<std::uint8_t>((run ? 128 : 0) + length - 1));
        for (unsigned int i = 0; i < (run ? 1 : length); ++i) putPixel(file, random());
        left -= length;
    }
    return file;
}

// A plain decoder to check the result.
Bytes expectedPixels(const Bytes &file) {
    Bytes pixels;
    std::size_t at = 18;
    auto put = [&](std::size_t from) {
        pixels.insert(pixels.end(), {file[from + 2], file[from + 1], file[from], file[from + 3]});
    };
    while (pixels.size() < kPixels * kPixelBytes) {
        const bool packed = file[2] == 10;
        const unsigned int packet = packed ? file[at++] : 0;
        for (unsigned int i = 0; i <= packet % 128; ++i) {
            put(at);
            if (packet < 128) at += kPixelBytes;
        }
        if (packet >= 128) at += kPixelBytes;
    }
    return pixels;
}

void setRates(benchmark::State &state) {
    state.SetItemsProcessed(state.iterations() * kPixels);
    state.SetBytesProcessed(state.iterations() * kPixels * kPixelBytes);
}

void decode(benchmark::State &state, const Bytes &file) {
    Bytes target(kPixels * kPixelBytes);
    keltra::TgaImage image;
    if (!keltra::parseTga(file.data(), file.size(), image) || !keltra::decodeTga(image, target.data()) ||
        target != expectedPixels(file)) {
        state.SkipWithError("wrong pixels");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(keltra::decodeTga(image, target.data()));
        benchmark::ClobberMemory();
    }
    setRates(state);
}

void decodeUncompressed(benchmark::State &state) { decode(state, uncompressedFile()); }

void decodeRunLength(benchmark::State &state) { decode(state, runLengthFile()); }

// From the file to the texture object: read, decoded, uploaded with all its smaller levels to a GL that does
// nothing.
void loadTexture(benchmark::State &state, const Bytes &file) {
    const keltra::test::GlRecorder::Stub stub;
    const keltra::test::GlRecorder::Pause pause;
    const keltra::test::TempFolder folder;
    folder.write("a.tga", file);
    KTTEXTURE::setPath(folder.prefix().c_str());
    KTTEXTURE texture;
    if (!texture.load("a.tga") ||
        std::memcmp(texture.bitmap, expectedPixels(file).data(), texture.sizeX) != 0)
        return state.SkipWithError("wrong pixels");
    for (auto _ : state) {
        texture.unload(true);
        benchmark::DoNotOptimize(texture.load("a.tga") && texture.update());
    }
    setRates(state);
    KTTEXTURE::setPath(nullptr);
}

void copyPixels(benchmark::State &state) {
    const Bytes source = uncompressedFile();
    Bytes target(kPixels * kPixelBytes);
    for (auto _ : state) {
        std::memcpy(target.data(), source.data() + 18, target.size());
        benchmark::ClobberMemory();
    }
    setRates(state);
}

}  // namespace

BENCHMARK(decodeUncompressed);
BENCHMARK(decodeRunLength);
BENCHMARK_CAPTURE(loadTexture, uncompressed, uncompressedFile())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(loadTexture, runLength, runLengthFile())->Unit(benchmark::kMicrosecond);
BENCHMARK(copyPixels);
