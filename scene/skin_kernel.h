// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_SKIN_KERNEL_H
#define KELTRA_SCENE_SKIN_KERNEL_H

// The inner loop of skinning, in 16.16. Every influence of a vertex, with its weight w and bone matrix B
// (column-major), is truncated by itself:
//   p' = ((B0 x + B4 y + B8 z) >> 16) + B12, with products in 64 bits and p' in 32; y and z accordingly
//   the skinned vertex gains (w p') >> 16; the normal likewise, without the translation
// Weights of 0 or less add nothing, bones from `boneCount` on neither. 32-bit overflow wraps around. All
// kernels give the same bits. Weights are converted on the way: they belong to the application, which may
// change them between frames.

#include "foundation/wide_registers.h"
#include "math/fixed.h"

#include <cstddef>
#include <cstdint>

#if defined(KELTRA_WIDE_REGISTERS)
#define KELTRA_SKIN_AVX2
#endif

namespace keltra {

struct SkinJob {
    std::size_t vertices;
    std::size_t influences;         // per vertex
    const std::int32_t *positions;  // 3 a vertex, as the arrays below
    const std::int32_t *normals;
    const std::uint8_t *bones;  // `influences` a vertex
    const float *weights;       // `influences` a vertex
    std::int32_t *skinnedPositions;
    std::int32_t *skinnedNormals;
};

// For any processor that multiplies 32 x 32 bits to 64: sums stay in registers, each result is written once.
class ScalarSkin {
   public:
    struct Bone {
        std::int32_t m[12];  // columns X, Y, Z and the translation, without the bottom row
    };

    static void encode(const std::int32_t *matrix, Bone &bone) {
        for (int column = 0; column < 4; ++column)
            for (int row = 0; row < 3; ++row) bone.m[3 * column + row] = matrix[4 * column + row];
    }

    static void run(const SkinJob &job, const Bone *bones, std::size_t boneCount) {
        const std::uint8_t *index = job.bones;
        const float *weight = job.weights;
        for (std::size_t v = 0; v < job.vertices; ++v) {
            const std::int32_t *p = job.positions + 3 * v, *n = job.normals + 3 * v;
            std::uint32_t position[3] = {0, 0, 0}, normal[3] = {0, 0, 0};
            for (std::size_t k = 0; k < job.influences; ++k, ++index, ++weight) {
                const std::int32_t w = toFixed(*weight);
                if (w <= 0 || *index >= boneCount) continue;
                const std::int32_t *m = bones[*index].m;
                for (int row = 0; row < 3; ++row) {
                    position[row] += weighted(turned(m + row, p) + static_cast<std::uint32_t>(m[9 + row]), w);
                    normal[row] += weighted(turned(m + row, n), w);
                }
            }
            for (int row = 0; row < 3; ++row) {
                job.skinnedPositions[3 * v + row] = static_cast<std::int32_t>(position[row]);
                job.skinnedNormals[3 * v + row] = static_cast<std::int32_t>(normal[row]);
            }
        }
    }

   private:
    static std::uint64_t product(std::int32_t a, std::int32_t b) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(a) * b);
    }
    static std::uint32_t turned(const std::int32_t *m, const std::int32_t *v) {
        return static_cast<std::uint32_t>((product(m[0], v[0]) + product(m[3], v[1]) + product(m[6], v[2])) >>
                                          16);
    }
    static std::uint32_t weighted(std::uint32_t value, std::int32_t w) {
        return static_cast<std::uint32_t>(product(static_cast<std::int32_t>(value), w) >> 16);
    }
};

#if defined(KELTRA_SKIN_AVX2)
// Three rows at a time. The multiplication reads the low 32 bits of each 64-bit lane, with their sign, and of
// its result only bits 16 to 47 are ever used: the bits above them do not matter, nor does the kind of shift.
class Avx2Skin {
   public:
    struct alignas(32) Bone {
        // X, Y, Z and the translation, which is stored shifted up by 16 bits and added before the shift.
        std::int64_t columns[4][4];
    };

    static bool isSupported() { return hasAvx2(); }

    static void encode(const std::int32_t *matrix, Bone &bone) {
        for (int column = 0; column < 4; ++column)
            for (int row = 0; row < 4; ++row)
                bone.columns[column][row] =
                    std::int64_t{matrix[4 * column + row]} * (column == 3 ? 65536 : 1);
    }

    __attribute__((target("avx2"))) static void run(const SkinJob &job, const Bone *bones,
                                                    std::size_t boneCount) {
        const std::uint8_t *index = job.bones;
        const float *weight = job.weights;
        for (std::size_t v = 0; v < job.vertices; ++v) {
            const std::int32_t *p = job.positions + 3 * v, *n = job.normals + 3 * v;
            const __m256i px = _mm256_set1_epi32(p[0]), py = _mm256_set1_epi32(p[1]),
                          pz = _mm256_set1_epi32(p[2]);
            const __m256i nx = _mm256_set1_epi32(n[0]), ny = _mm256_set1_epi32(n[1]),
                          nz = _mm256_set1_epi32(n[2]);
            __m256i position = _mm256_setzero_si256(), normal = position;
            for (std::size_t k = 0; k < job.influences; ++k, ++index, ++weight) {
                const std::int32_t fixedWeight = toFixed(*weight);
                if (fixedWeight <= 0 || *index >= boneCount) continue;
                const __m256i w = _mm256_set1_epi32(fixedWeight);
                const __m256i *m = reinterpret_cast<const __m256i *>(bones[*index].columns);
                __m256i a = _mm256_add_epi64(_mm256_mul_epi32(m[0], px), _mm256_mul_epi32(m[1], py));
                __m256i b = _mm256_add_epi64(_mm256_mul_epi32(m[0], nx), _mm256_mul_epi32(m[1], ny));
                a = _mm256_add_epi64(a, _mm256_add_epi64(_mm256_mul_epi32(m[2], pz), m[3]));
                b = _mm256_add_epi64(b, _mm256_mul_epi32(m[2], nz));
                a = _mm256_mul_epi32(_mm256_srli_epi64(a, 16), w);
                b = _mm256_mul_epi32(_mm256_srli_epi64(b, 16), w);
                position = _mm256_add_epi64(position, _mm256_srli_epi64(a, 16));
                normal = _mm256_add_epi64(normal, _mm256_srli_epi64(b, 16));
            }
            store(position, job.skinnedPositions + 3 * v);
            store(normal, job.skinnedNormals + 3 * v);
        }
    }

   private:
    // The low halves of the first three lanes; the next vertex begins right behind them.
    __attribute__((target("avx2"))) static void store(__m256i sum, std::int32_t *skinned) {
        const __m256i lowHalves = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
        const __m128i rows = _mm256_castsi256_si128(_mm256_permutevar8x32_epi32(sum, lowHalves));
        _mm_storel_epi64(reinterpret_cast<__m128i *>(skinned), rows);
        skinned[2] = _mm_extract_epi32(rows, 2);
    }
};

// The same with position and normal in one register: rows 0 to 3 of the one are followed by those of the
// other.
class Avx512Skin {
   public:
    struct alignas(64) Bone {
        std::int64_t columns[4][8];  // a normal has no translation
    };

    static bool isSupported() { return hasAvx512(); }

    static void encode(const std::int32_t *matrix, Bone &bone) {
        for (int column = 0; column < 4; ++column) {
            for (int row = 0; row < 4; ++row) {
                const std::int64_t value = matrix[4 * column + row];
                bone.columns[column][row] = value * (column == 3 ? 65536 : 1);
                bone.columns[column][4 + row] = column == 3 ? 0 : value;
            }
        }
    }

    __attribute__((target("avx512f"))) static void run(const SkinJob &job, const Bone *bones,
                                                       std::size_t boneCount) {
        const std::uint8_t *index = job.bones;
        const float *weight = job.weights;
        for (std::size_t v = 0; v < job.vertices; ++v) {
            const std::int32_t *p = job.positions + 3 * v, *n = job.normals + 3 * v;
            const __m512i x = both(p[0], n[0]), y = both(p[1], n[1]), z = both(p[2], n[2]);
            __m512i sum = _mm512_setzero_si512();
            for (std::size_t k = 0; k < job.influences; ++k, ++index, ++weight) {
                const std::int32_t fixedWeight = toFixed(*weight);
                if (fixedWeight <= 0 || *index >= boneCount) continue;
                const __m512i *m = reinterpret_cast<const __m512i *>(bones[*index].columns);
                __m512i turned = _mm512_add_epi64(_mm512_mul_epi32(m[0], x), _mm512_mul_epi32(m[1], y));
                turned = _mm512_add_epi64(turned, _mm512_add_epi64(_mm512_mul_epi32(m[2], z), m[3]));
                turned = _mm512_mul_epi32(_mm512_srli_epi64(turned, 16), _mm512_set1_epi32(fixedWeight));
                sum = _mm512_add_epi64(sum, _mm512_srli_epi64(turned, 16));
            }
            const __m256i rows = _mm512_cvtepi64_epi32(sum);
            store(_mm256_castsi256_si128(rows), job.skinnedPositions + 3 * v);
            store(_mm256_extracti128_si256(rows, 1), job.skinnedNormals + 3 * v);
        }
    }

   private:
    __attribute__((target("avx512f"))) static __m512i both(std::int32_t position, std::int32_t normal) {
        return _mm512_inserti64x4(_mm512_set1_epi32(position), _mm256_set1_epi32(normal), 1);
    }
    __attribute__((target("avx512f"))) static void store(__m128i rows, std::int32_t *skinned) {
        _mm_storel_epi64(reinterpret_cast<__m128i *>(skinned), rows);
        skinned[2] = _mm_extract_epi32(rows, 2);
    }
};
#endif

}  // namespace keltra

#if defined(__arm__) && !defined(__thumb__) && defined(__GNUC__)
#define KELTRA_SKIN_ARM
#include "scene/skin_kernel_arm.h"
#endif

#endif
