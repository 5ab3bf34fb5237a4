// SPDX-License-Identifier: Zlib
// Playing films of 2000 pictures into a texture, against ffmpeg decoding the same file on one thread: as it
// is, and turned into RGB as the engine does. ffmpeg's time includes its start. The GL is stubbed: the upload
// itself is not measured.

#include <benchmark/benchmark.h>
#include <keltra/keltra.h>

#include <cstdlib>
#include <string>

#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

constexpr int kPictures = 2000;

std::string filmOf(const benchmark::State &state) {
    return KELTRA_BENCHMARK_FILMS "/film_" + std::to_string(state.range(0)) + "x" +
           std::to_string(state.range(1)) + ".m1v";
}

// From the beginning to the end.
void playOnce(KTVIDEO &video) {
    video.play();
    while (video.getStatus() == KT_VIDEO_PLAYING) video.update(1);
}

void playVideo(benchmark::State &state) {
    const GlRecorder::Stub stub;
    KTTEXTURE texture;
    texture.setFilter(false, false, true);
    KTVIDEO video;
    video.setTexture(&texture);
    if (!texture.create(512, 512, 3) || !video.load(filmOf(state).c_str())) {
        state.SkipWithError("no film");
        return;
    }
    GlRecorder::clear();
    playOnce(video);
    // The last two are still in the decoder at the end of the file.
    if (GlRecorder::count("glTexSubImage2D") != kPictures - 2)
        state.SkipWithError("wrong number of pictures");
    GlRecorder::setRecording(false);
    for (auto _ : state) playOnce(video);
    GlRecorder::setRecording(true);
    state.SetItemsProcessed(state.iterations() * kPictures);
    video.load(nullptr);
}

void runFfmpeg(benchmark::State &state, const char *output) {
    const std::string command = KELTRA_FFMPEG " -v error -threads 1 -f mpegvideo -i " + filmOf(state) +
                                " -vsync passthrough " + output + " -";
    for (auto _ : state) {
        if (std::system(command.c_str()) != 0) {
            state.SkipWithError("ffmpeg fails");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * kPictures);
}

void ffmpegDecode(benchmark::State &state) { runFfmpeg(state, "-f null"); }

void ffmpegDecodeToRgb(benchmark::State &state) {
    runFfmpeg(state, "-sws_flags neighbor -pix_fmt rgb24 -f null");
}

}  // namespace

BENCHMARK(playVideo)->Args({240, 176})->Args({320, 240})->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ffmpegDecode)->Args({240, 176})->Args({320, 240})->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ffmpegDecodeToRgb)
    ->Args({240, 176})
    ->Args({320, 240})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
