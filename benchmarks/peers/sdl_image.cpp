// SPDX-License-Identifier: Zlib
// SDL_image decodes the picture of the row `decodeUncompressed`, from memory.

#include <SDL_image.h>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <random>
#include <vector>

namespace {

constexpr unsigned int kSize = 512, kPixelBytes = 4, kHeader = 18;

std::vector<std::uint8_t> uncompressedFile() {
    std::mt19937 random(1);
    std::vector<std::uint8_t> file(kHeader);
    file[2] = 2;
    file[13] = file[15] = kSize >> 8;
    file[16] = 8 * kPixelBytes;
    for (unsigned int i = 0; i < kSize * kSize; ++i) {
        const std::uint32_t value = static_cast<std::uint32_t>(random());
        for (unsigned int byte = 0; byte < kPixelBytes; ++byte)
            file.push_back(static_cast<std::uint8_t>(value >> 8 * byte));
    }
    return file;
}

// The surface is the library's own, so it is made and freed each time.
void decodeUncompressed(benchmark::State &state) {
    const std::vector<std::uint8_t> file = uncompressedFile();
    for (auto _ : state) {
        SDL_RWops *const source = SDL_RWFromConstMem(file.data(), static_cast<int>(file.size()));
        SDL_Surface *const picture = IMG_LoadTGA_RW(source);
        SDL_FreeRW(source);
        if (!picture || picture->w != int(kSize) || picture->format->BytesPerPixel != kPixelBytes)
            return state.SkipWithError("no picture");
        benchmark::DoNotOptimize(picture->pixels);
        SDL_FreeSurface(picture);
    }
    state.SetItemsProcessed(state.iterations() * kSize * kSize);
}
BENCHMARK(decodeUncompressed);

}  // namespace
