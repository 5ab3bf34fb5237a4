#ifndef KELTRA_SCENE_SKIN_KERNEL_ARM_H
#define KELTRA_SCENE_SKIN_KERNEL_ARM_H

// The inner loop of skinning in ARM instructions; the formula is in skin_kernel.h. A compiler has too few
// registers for it: its loop takes 150 instructions an influence, this one 63.

#include <cstddef>
#include <cstdint>

#include "math/float_bits.h"

namespace keltra {

class ArmSkin {
   public:
    struct Bone {
        std::int32_t rows[9], translation[3];
    };

    static void encode(const std::int32_t *matrix, Bone &bone) {
        for (int row = 0; row < 3; ++row) {
            for (int column = 0; column < 3; ++column) bone.rows[3 * row + column] = matrix[4 * column + row];
            bone.translation[row] = matrix[12 + row];
        }
    }

    static void run(const SkinJob &job, const Bone *bones, std::size_t boneCount) {
        const std::uint8_t *index = job.bones;
        const float *weight = job.weights;
        const std::int32_t *point = job.positions, *vector = job.normals;
        std::int32_t *position = job.skinnedPositions, *normal = job.skinnedNormals;
        for (const std::int32_t *end = point + 3 * job.vertices; point != end; point += 3, vector += 3) {
            position[0] = position[1] = position[2] = normal[0] = normal[1] = normal[2] = 0;
            for (std::size_t left = job.influences; left;) {
                const std::size_t count = left < kMost ? left : kMost;
                Influence influences[kMost + 1], *next = influences;
                for (const std::uint8_t *last = index + count; index != last; ++index, ++weight) {
                    const std::int32_t w = positiveFixed(*weight);
                    if (w != 0 && *index < boneCount) *next++ = {w, bones + *index};
                }
                next->weight = 0;
                addPoints(influences, point, position);
                addVectors(influences, vector, normal);
                left -= count;
            }
            position += 3;
            normal += 3;
        }
    }

   private:
    struct Influence {
        std::int32_t weight;  // 0 behind the last one
        const Bone *bone;
    };
    static const std::size_t kMost = 8;

    // In 16.16; 0 for what toFixed makes 0 or less, and for what does not fit.
    static std::int32_t positiveFixed(float weight) {
        const std::uint32_t bits = bitsOf(weight), shift = 142 - (bits >> 23);
        return shift - 1 < 31 ? static_cast<std::int32_t>((bits << 8 | kSignBit) >> shift) : 0;
    }

// Row `i` of a matrix at lr, times (r1, r2, r3), in r11 and r10.
#define KELTRA_SKIN_ROW \
    "ldmia lr!, {r7, r8, r9}\n smull r10, r11, r7, r1\n smlal r10, r11, r8, r2\n smlal r10, r11, r9, r3\n"
// The result in r10, times the weight in r12, is added to register `sum`.
#define KELTRA_SKIN_ADD(sum) \
    "smull r7, r8, r10, r12\n add " sum ", " sum ", r7, lsr #16\n add " sum ", " sum ", r8, lsl #16\n"
#define KELTRA_SKIN_POINT(sum, translation)      \
    KELTRA_SKIN_ROW "ldr r7, [lr, #" translation \
                    "]\n add r10, r7, r10, lsr #16\n add r10, r10, r11, lsl #16\n" KELTRA_SKIN_ADD(sum)
#define KELTRA_SKIN_VECTOR(sum) \
    KELTRA_SKIN_ROW "mov r10, r10, lsr #16\n orr r10, r10, r11, lsl #16\n" KELTRA_SKIN_ADD(sum)
#define KELTRA_SKIN_LOOP(first, second, third)                                      \
    asm("push {r2, r4-r11, lr}\n ldmia r2, {r4, r5, r6}\n ldmia r1, {r1, r2, r3}\n" \
        "1: ldmia r0!, {r12, lr}\n cmp r12, #0\n beq 2f\n" first second third       \
        "b 1b\n"                                                                    \
        "2: ldr r2, [sp], #4\n stmia r2, {r4, r5, r6}\n pop {r4-r11, pc}\n")

    // Add the skinned vector to what stands at `sum`.
    __attribute__((naked, noinline)) static void addPoints(const Influence *, const std::int32_t *,
                                                           std::int32_t *) {
        KELTRA_SKIN_LOOP(KELTRA_SKIN_POINT("r4", "24"), KELTRA_SKIN_POINT("r5", "16"),
                         KELTRA_SKIN_POINT("r6", "8"));
    }
    __attribute__((naked, noinline)) static void addVectors(const Influence *, const std::int32_t *,
                                                            std::int32_t *) {
        KELTRA_SKIN_LOOP(KELTRA_SKIN_VECTOR("r4"), KELTRA_SKIN_VECTOR("r5"), KELTRA_SKIN_VECTOR("r6"));
    }
#undef KELTRA_SKIN_ROW
#undef KELTRA_SKIN_ADD
#undef KELTRA_SKIN_POINT
#undef KELTRA_SKIN_VECTOR
#undef KELTRA_SKIN_LOOP
};

}  // namespace keltra

#endif
