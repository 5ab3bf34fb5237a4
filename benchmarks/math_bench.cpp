// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/matrix.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "math/fixed.h"

namespace {

constexpr std::size_t kMatrices = 256;
constexpr std::size_t kFloats = 4096;

std::vector<R3XMATRIX> randomMatrices() {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> any(-1.0f, 1.0f);
    std::vector<R3XMATRIX> matrices(kMatrices);
    for (R3XMATRIX &matrix : matrices)
        for (float &element : matrix.m) element = any(random);
    return matrices;
}

std::vector<float> randomFloats() {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> any(-1000.0f, 1000.0f);
    std::vector<float> values(kFloats);
    for (float &value : values) value = any(random);
    return values;
}

R3XMATRIX productByLoops(const R3XMATRIX &a, const R3XMATRIX &b) {
    R3XMATRIX result;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            float sum = 0.0f;
            for (int k = 0; k < 4; ++k) sum += a.m[4 * i + k] * b.m[4 * k + j];
            result.m[4 * i + j] = sum;
        }
    return result;
}

template <class Product>
void runProducts(benchmark::State &state, Product product) {
    const std::vector<R3XMATRIX> matrices = randomMatrices();
    const R3XMATRIX first = product(matrices[0], matrices[1]);
    if (!std::equal(first.m, first.m + 16, productByLoops(matrices[0], matrices[1]).m))
        return state.SkipWithError("the product is wrong");
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(product(matrices[i], matrices[kMatrices - 1 - i]));
        i = (i + 1) % kMatrices;
    }
    state.SetItemsProcessed(state.iterations());
}

void matrixProduct(benchmark::State &state) {
    runProducts(state, [](const R3XMATRIX &a, const R3XMATRIX &b) { return a * b; });
}
BENCHMARK(matrixProduct);

void matrixProductByLoops(benchmark::State &state) { runProducts(state, productByLoops); }
BENCHMARK(matrixProductByLoops);

void matrixInverse(benchmark::State &state) {
    const std::vector<R3XMATRIX> matrices = randomMatrices();
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(matrices[i].inverse());
        i = (i + 1) % kMatrices;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(matrixInverse);

// The argument is the step of the angle: 0 rotates by zero, the case of most nodes of a scene.
void matrixSetRotation(benchmark::State &state) {
    const float step = float(state.range(0));
    R3XMATRIX matrix;
    matrix.setRotation(0.0f, 0.0f, 0.0f, 1.0f);
    if (matrix.m[0] != 1.0f || matrix.m[1] != 0.0f)
        return state.SkipWithError("the rotation by zero is wrong");
    float angle = 0.0f;
    for (auto _ : state) {
        matrix.setRotation(angle, 0.0f, 0.0f, 1.0f);
        benchmark::DoNotOptimize(matrix);
        angle += step;
        if (angle >= 360.0f) angle -= 360.0f;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(matrixSetRotation)->Arg(0)->Arg(1);

template <class Convert>
void runConversion(benchmark::State &state, Convert convert) {
    const std::vector<float> values = randomFloats();
    std::vector<std::int32_t> fixed(kFloats);
    convert(values.data(), fixed.data(), kFloats);
    for (std::size_t i = 0; i < kFloats; ++i)
        if (fixed[i] != std::int32_t(values[i] * 65536.0f))
            return state.SkipWithError("the conversion is wrong");
    for (auto _ : state) {
        convert(values.data(), fixed.data(), kFloats);
        benchmark::DoNotOptimize(fixed.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(kFloats));
}

void floatToFixedArray(benchmark::State &state) {
    runConversion(state, [](const float *values, std::int32_t *fixed, std::size_t count) {
        keltra::toFixed(values, fixed, count);
    });
}
BENCHMARK(floatToFixedArray);

void floatToFixedOneByOne(benchmark::State &state) {
    runConversion(state, [](const float *values, std::int32_t *fixed, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) fixed[i] = keltra::toFixed(values[i]);
    });
}
BENCHMARK(floatToFixedOneByOne);

void floatToFixedByIntegers(benchmark::State &state) {
    runConversion(state, [](const float *values, std::int32_t *fixed, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) fixed[i] = keltra::toFixedByIntegers(values[i]);
    });
}
BENCHMARK(floatToFixedByIntegers);

void floatToFixedByCast(benchmark::State &state) {
    runConversion(state, [](const float *values, std::int32_t *fixed, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) fixed[i] = std::int32_t(values[i] * 65536.0f);
    });
}
BENCHMARK(floatToFixedByCast);

}  // namespace
