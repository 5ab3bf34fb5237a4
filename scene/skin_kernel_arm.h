// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_SKIN_KERNEL_ARM_H
#define KELTRA_SCENE_SKIN_KERNEL_ARM_H

// The inner loop of skinning in ARM instructions; the formula is in skin_kernel.h. A compiler has too few
// registers for it: its loop takes 150 instructions an influence, this one 85.

#include "math/float_bits.h"

#include <cstddef>
#include <cstdint>

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
        Vertex vertex = {{job.skinnedNormals, job.skinnedPositions, job.positions, job.normals},
                         job.bones,
                         job.weights,
                         job.influences,
                         bones,
                         boneCount};
        if (job.influences > kMost) {
            for (std::size_t left = job.vertices; left; --left) skinMany(vertex);
            return;
        }
        for (std::size_t left = job.vertices; left; --left) skin(vertex);
    }

   private:
    struct Influence {
        std::int32_t weight;  // 0 behind the last one
        const Bone *bone;
    };
    // Of the current vertex. The order is that of the registers below.
    struct Arrays {
        std::int32_t *normal, *position;
        const std::int32_t *point, *vector;
    };
    // In one place and advanced there: in the registers of a loop there is no room for so many pointers.
    struct Vertex {
        Arrays at;
        const std::uint8_t *index;
        const float *weight;
        std::size_t influences;
        const Bone *bones;
        std::size_t boneCount;
    };
    static constexpr std::size_t kMost = 8;

    // Skins a vertex and moves on to the next.
    __attribute__((noinline)) static void skin(Vertex &vertex) {
        const std::uint8_t *index = vertex.index;
        const float *weight = vertex.weight, *end = weight + vertex.influences;
        const Bone *bones = vertex.bones;
        const std::size_t boneCount = vertex.boneCount;
        vertex.index = index + vertex.influences;
        vertex.weight = end;
        if (isRigid(weight, end) && *index < boneCount) return move(bones + *index, vertex.at);
        Influence influences[kMost + 1], *next = influences;
        do {
            std::size_t bone;  // *index++, which a compiler makes two instructions of
            asm("ldrb %0, [%1], #1" : "=&r"(bone), "+r"(index) : : "memory");
            const std::int32_t w = positiveFixed(*weight);
            if (w == 0 || bone >= boneCount) continue;
            next->weight = w;
            next->bone = bones + bone;
            ++next;
        } while (++weight != end);
        next->weight = 0;
        add(influences, vertex.at);
    }

    static void skinMany(Vertex &vertex) {
        const std::uint8_t *index = vertex.index;
        const float *weight = vertex.weight, *end = weight + vertex.influences;
        vertex.index = index + vertex.influences;
        vertex.weight = end;
        if (isRigid(weight, end) && *index < vertex.boneCount) return move(vertex.bones + *index, vertex.at);
        blendMany(vertex, index, weight);
    }

    // One whole influence, the first: nine of ten vertices of a character.
    static bool isRigid(const float *weight, const float *end) {
        if (bitsOf(*weight) != kOneBits) return false;
        std::uint32_t others = 0;
        while (++weight != end) others |= bitsOf(*weight);
        return others << 1 == 0;
    }

    // A file may have any number of influences; more than a few are slow.
    __attribute__((noinline)) static void blendMany(Vertex &vertex, const std::uint8_t *index,
                                                    const float *weight) {
        std::uint32_t normal[3] = {0, 0, 0}, position[3] = {0, 0, 0};
        for (std::size_t i = 0; i < vertex.influences; ++i) {
            std::int32_t results[6];
            Vertex one = {{results, results + 3, vertex.at.point, vertex.at.vector},
                          index + i,
                          weight + i,
                          1,
                          vertex.bones,
                          vertex.boneCount};
            skin(one);
            for (int row = 0; row < 3; ++row) {
                normal[row] += static_cast<std::uint32_t>(results[row]);
                position[row] += static_cast<std::uint32_t>(results[3 + row]);
            }
        }
        for (int row = 0; row < 3; ++row) {
            *vertex.at.normal++ = static_cast<std::int32_t>(normal[row]);
            *vertex.at.position++ = static_cast<std::int32_t>(position[row]);
        }
        vertex.at.point += 3;
        vertex.at.vector += 3;
    }

    // In 16.16; 0 for what toFixed makes 0 or less, and for what does not fit.
    static std::int32_t positiveFixed(float weight) {
        const std::uint32_t bits = bitsOf(weight), shift = 142 - (bits >> 23);
        return shift - 1 < 31 ? static_cast<std::int32_t>((bits << 8 | kSignBit) >> shift) : 0;
    }

// clang-format off
// Three products of the row at `rows`, which moves on, with the vector in three registers: the sum in r11 and r10.
#define KELTRA_SKIN_ROW(rows, x, y, z)      \
    "ldmia " rows "!, {r7, r8, r9}      \n" \
    KELTRA_SKIN_TURN(x, y, z)
#define KELTRA_SKIN_TURN(x, y, z)           \
    "smull r10, r11, r7, " x "          \n" \
    "smlal r10, r11, r8, " y "          \n" \
    "smlal r10, r11, r9, " z "          \n"
// Bits 16 to 47 of the sum; of a point with the translation, which stands behind the rows.
#define KELTRA_SKIN_VECTOR                  \
    "mov r10, r10, lsr #16              \n" \
    "orr r10, r10, r11, lsl #16         \n"
#define KELTRA_SKIN_POINT(translation)      \
    "ldr r7, [" translation "]          \n" \
    "add r10, r7, r10, lsr #16          \n" \
    "add r10, r10, r11, lsl #16         \n"
// Times the weight in r12.
#define KELTRA_SKIN_ADD(sum)                \
    "smull r7, r8, r10, r12             \n" \
    "add " sum ", " sum ", r7, lsr #16  \n" \
    "add " sum ", " sum ", r8, lsl #16  \n"
#define KELTRA_SKIN_ADD_POINT(sum, translation) \
    KELTRA_SKIN_ROW("lr", "r1", "r2", "r3") KELTRA_SKIN_POINT(translation) KELTRA_SKIN_ADD(sum)
#define KELTRA_SKIN_ADD_VECTOR(sum) \
    KELTRA_SKIN_ROW("lr", "r1", "r2", "r3") KELTRA_SKIN_VECTOR KELTRA_SKIN_ADD(sum)

    // Sums up the influences of a vertex, writes the results and moves on to the next vertex.
    __attribute__((naked, noinline)) static void add(const Influence *, Arrays &) {
        asm("push {r0, r1, r4-r11, lr}   \n"
            "ldr r12, [r1, #8]           \n"
            "add lr, r12, #12            \n"
            "str lr, [r1, #8]            \n"
            "ldmia r12, {r1, r2, r3}     \n"
            "mov r4, #0                  \n"
            "mov r5, #0                  \n"
            "mov r6, #0                  \n"
            "ldmia r0!, {r12, lr}        \n"
            "cmp r12, #0                 \n"
            "beq 2f                      \n"
            "1:                          \n"
            KELTRA_SKIN_ADD_POINT("r4", "lr, #24") KELTRA_SKIN_ADD_POINT("r5", "lr, #16")
            KELTRA_SKIN_ADD_POINT("r6", "lr, #8")
            "ldmia r0!, {r12, lr}        \n"
            "cmp r12, #0                 \n"
            "bne 1b                      \n"
            "2: ldmia sp, {r0, r12}      \n"
            "ldr lr, [r12, #4]           \n"
            "stmia lr!, {r4, r5, r6}     \n"
            "str lr, [r12, #4]           \n"
            "ldr lr, [r12, #12]          \n"
            "ldmia lr!, {r1, r2, r3}     \n"
            "str lr, [r12, #12]          \n"
            "mov r4, #0                  \n"
            "mov r5, #0                  \n"
            "mov r6, #0                  \n"
            "ldmia r0!, {r12, lr}        \n"
            "cmp r12, #0                 \n"
            "beq 4f                      \n"
            "3:                          \n"
            KELTRA_SKIN_ADD_VECTOR("r4") KELTRA_SKIN_ADD_VECTOR("r5") KELTRA_SKIN_ADD_VECTOR("r6")
            "ldmia r0!, {r12, lr}        \n"
            "cmp r12, #0                 \n"
            "bne 3b                      \n"
            "4: pop {r1, r12}            \n"
            "ldr lr, [r12]               \n"
            "stmia lr!, {r4, r5, r6}     \n"
            "str lr, [r12]               \n"
            "pop {r4-r11, pc}            \n");
    }

    // The same for one influence with a weight of 1, which changes nothing. The vector comes first in each row: the
    // point's translation takes a register of it.
#define KELTRA_SKIN_MOVE(translation)                                                 \
    KELTRA_SKIN_ROW("r0", "r3", "r12", "lr") KELTRA_SKIN_VECTOR "str r10, [r1], #4\n" \
    KELTRA_SKIN_TURN("r4", "r5", "r6") KELTRA_SKIN_POINT(translation) "str r10, [r2], #4\n"
    __attribute__((naked, noinline)) static void move(const Bone *, Arrays &) {
        asm("push {r1, r4-r11, lr}       \n"
            "add r12, r1, #8             \n"
            "ldmia r1, {r1, r2, r7, r8}  \n"
            "ldmia r7!, {r4, r5, r6}     \n"
            "ldmia r8!, {r3, r9, lr}     \n"
            "stmia r12, {r7, r8}         \n"
            "mov r12, r9                 \n"
            KELTRA_SKIN_MOVE("r0, #24") KELTRA_SKIN_MOVE("r0, #16") KELTRA_SKIN_MOVE("r0, #8")
            "ldr r0, [sp], #4            \n"
            "stmia r0, {r1, r2}          \n"
            "pop {r4-r11, pc}            \n");
    }
#undef KELTRA_SKIN_MOVE
#undef KELTRA_SKIN_ADD_VECTOR
#undef KELTRA_SKIN_ADD_POINT
#undef KELTRA_SKIN_ADD
#undef KELTRA_SKIN_POINT
#undef KELTRA_SKIN_VECTOR
#undef KELTRA_SKIN_TURN
#undef KELTRA_SKIN_ROW
    // clang-format on
};

}  // namespace keltra

#endif
