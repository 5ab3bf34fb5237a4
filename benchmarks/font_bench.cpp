// SPDX-License-Identifier: Zlib
// Text: glyphs queued by a string, and word wrapping, against a plain copy of the same text.

#include <benchmark/benchmark.h>
#include <keltra/font.h>
#include <keltra/texture.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

constexpr unsigned int kLineWidth = 220;

std::string words(std::size_t length) {
    std::mt19937 random(1);
    std::string text;
    while (text.size() < length) {
        for (unsigned int letters = 1 + random() % 9; letters; --letters)
            text += static_cast<char>('a' + random() % 26);
        text += ' ';
    }
    text.resize(length);
    return text;
}

void setNarrow(KTFONT &font) {
    std::mt19937 random(2);
    for (char c = 'a'; c <= 'z'; ++c) font.setKerning(c, static_cast<signed char>(4 + random() % 8));
    font.setKerning(' ', 11);
}

void putString(benchmark::State &state) {
    const GlRecorder::Stub stub;
    GlRecorder::setRecording(false);
    KTFONT::init();
    KTTEXTURE texture;
    texture.create(16, 16, 4);
    KTFONT font;
    setNarrow(font);
    font.setTexture(&texture);
    const std::string text = words(static_cast<std::size_t>(state.range(0)));
    if (!font.putString(0, 0, "%s", text.c_str()) || KTFONT::fontCachedVertex[5] != 0 ||
        KTFONT::fontCachedTexCoord[5] != (16 - ((text[0] - 32) >> 4)) * 4096)
        state.SkipWithError("wrong glyphs");
    for (auto _ : state) {
        benchmark::DoNotOptimize(font.putString(0, 0, "%s", text.c_str()));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    KTFONT::free();
}

void stringLength(benchmark::State &state) {
    KTFONT font;
    const std::string text = words(1000);
    if (font.stringLength(text.c_str()) != 16000) state.SkipWithError("wrong length");
    setNarrow(font);
    for (auto _ : state) benchmark::DoNotOptimize(font.stringLength(text.c_str()));
    state.SetItemsProcessed(state.iterations() * 1000);
}

void format(benchmark::State &state) {
    KTFONT font;
    setNarrow(font);
    const std::string text = words(3900);
    std::vector<char> out(2 * text.size() + 1);
    const int height = font.format(text.c_str(), out.data(), kLineWidth, 0);
    if (height < 50 * 16 || std::strlen(out.data()) < text.size()) state.SkipWithError("wrong lines");
    for (auto _ : state) {
        benchmark::DoNotOptimize(font.format(text.c_str(), out.data(), kLineWidth, 0));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void copyText(benchmark::State &state) {
    const std::string text = words(3900);
    std::vector<char> out(text.size() + 1);
    for (auto _ : state) {
        std::strcpy(out.data(), text.c_str());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

}  // namespace

BENCHMARK(putString)->Arg(20)->Arg(1000)->Name("text/putString");
BENCHMARK(stringLength)->Name("text/stringLength");
BENCHMARK(format)->Name("text/format");
BENCHMARK(copyText)->Name("text/copy");
