// SPDX-License-Identifier: Zlib
#include "scene/particle_arm.h"

#include "math/soft_arm_macros.h"

#if defined(KELTRA_SOFT_ARM)

namespace keltra {

// A zero has no mantissa, and an exponent with which all its products are positive and less than 2^-44. Such
// a number changes no sum of 2^-12 or more, and the kernel leaves it when an element is smaller.
bool ArmParticleTurn::set(const float *axisOfTurn, const float *right, const float *up) {
    constexpr std::uint32_t kOfAxis = 80, kOfVector = 0u - 114;
    bool fits = true;
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t a = bitsOf(axisOfTurn[i]), sides[2] = {bitsOf(right[i]), bitsOf(up[i])};
        fits &= a << 1 == 0 || (isInParticleRange(a) && a << 1 < 128u << 24);
        axis[i].mantissa = a << 1 == 0 ? 0 : a << 8 | kSignBit;
        axis[i].exponent = a << 1 == 0 ? kOfAxis : a >> 23;
        for (int side = 0; side < 2; ++side) {
            const std::uint32_t number = sides[side];
            fits &= number << 1 == 0 || isInParticleRange(number);
            vectors[side].mantissas[i] = number << 1 == 0 ? 0 : (number & 0x7fffff) | 0x800000;
            vectors[side].exponents[i] = number << 1 == 0 ? kOfVector : (number >> 23) - 127;
        }
    }
    return fits;
}

}  // namespace keltra

// clang-format off
asm(R"(
@ result := the product of a mantissa with 32 bits and one with 24; `exponent` is the sum of theirs, one less 127.
.macro turnProduct result, x, y, exponent
    umull r12, \result, \x, \y
    cmp \result, #0x00800000
    movlo \result, \result, lsl #1
    orrlo \result, \result, r12, lsr #31
    movlo r12, r12, lsl #1
    sbc \exponent, \exponent, #0
    cmp r12, #0x80000000
    adc \result, \result, \exponent, lsl #23
    biceq \result, \result, #1
.endm
@ In place: the mantissa with 24 bits, and sign and exponent less 127.
.macro turnUnpack number, exponent
    mov \exponent, \number, lsr #23
    sub \exponent, \exponent, #127
    bic \number, \number, #0xff000000
    orr \number, \number, #0x00800000
.endm
@ r1 := u a b, of two components of the axis; u a is on the stack. r9 is behind the axis.
.macro turnElement a, b
    ldrd r0, [r9, #8 * \b - 24]
    ldrd r2, [sp, #8 * \a]
    add r3, r3, r1
    turnProduct r1, r0, r2, r3
.endm
@ The product of the next element and a vector's component.
.macro turnNext result, mantissa, exponent
    ldmia lr!, {r2, r3}
    add r3, r3, \exponent
    turnProduct \result, r2, \mantissa, r3
.endm

    .text
@ The sum of r0 and r1 is the next element, from 2^-12 to 4: it goes unpacked to r10.
    .type turnSum, %function
turnSum:
    addUp r0, r1, r2, r3, r12, 9f, r11
    mov r2, r0, lsl #1
    sub r2, r2, #0x73000000
    cmp r2, #0x0e000000
    bhs 9f
    mov r2, r0, lsl #8
    orr r2, r2, r11
    mov r3, r0, lsr #23
    stmia r10!, {r2, r3}
    mov pc, lr
    .size turnSum, . - turnSum

@ On the stack: u a and s a for each component of the axis, where s is the sine and u is 1 - c; from #40 on the nine
@ elements, rows first; from #112 on the two vectors that were turned; at #136 the result's place.
function keltraTurnSquare
    push {r3-r11, lr}
    sub sp, sp, #136
    mov r9, r0
    mov r6, r2
    mov r7, r1
    mov r11, #0x80000000
    mov lr, #0x61000000
    rsb r12, lr, r1, lsl #1
    cmp r12, #0x1f000000
    rsblo r12, lr, r2, lsl #1
    cmplo r12, #0x1f000000
    bhs 9f
    mov r0, #0x3f800000
    eor r1, r2, r11
    addUp r0, r1, r2, r3, r12, 9f, r11
    mov r4, r0
    turnUnpack r4, r5
    turnUnpack r7, r8
    mov r10, sp
    add lr, sp, #24
1:
    ldmia r9!, {r0, r1}
    add r3, r1, r5
    turnProduct r2, r0, r4, r3
    turnUnpack r2, r3
    stmia r10!, {r2, r3}
    add r3, r1, r8
    turnProduct r2, r0, r7, r3
    str r2, [lr], #4
    add r12, sp, #24
    cmp r10, r12
    bne 1b
    add r10, sp, #40
    turnElement 0, 0
    mov r0, r6
    bl turnSum
    turnElement 0, 1
    ldr r0, [sp, #32]
    eor r0, r0, r11
    bl turnSum
    turnElement 2, 0
    mov r4, r1
    ldr r0, [sp, #28]
    bl turnSum
    turnElement 1, 0
    ldr r0, [sp, #32]
    bl turnSum
    turnElement 1, 1
    mov r0, r6
    bl turnSum
    turnElement 2, 1
    mov r5, r1
    ldr r0, [sp, #24]
    eor r0, r0, r11
    bl turnSum
    mov r1, r4
    ldr r0, [sp, #28]
    eor r0, r0, r11
    bl turnSum
    mov r1, r5
    ldr r0, [sp, #24]
    bl turnSum
    turnElement 2, 2
    mov r0, r6
    bl turnSum
@ the vectors
    str r9, [sp]
    add r9, sp, #112
2:
    ldr r0, [sp]
    ldmia r0!, {r4-r8, r10}
    str r0, [sp]
    add lr, sp, #40
3:
    turnNext r0, r4, r7
    turnNext r1, r5, r8
    addUp r0, r1, r2, r3, r12, 9f, r11
    turnNext r1, r6, r10
    addUp r0, r1, r2, r3, r12, 9f, r11
    str r0, [r9], #4
    add r12, sp, #112
    cmp lr, r12
    bne 3b
    add r12, sp, #136
    cmp r9, r12
    bne 2b
@ the square: r0 is the vector to the right, r1 the one upward; then the larger of them and the smaller
    add r10, sp, #112
    ldr r9, [sp, #136]
4:
    ldr r1, [r10, #12]
    ldr r0, [r10], #4
    mov r2, r0, lsl #1
    mov r3, r1, lsl #1
    sub r12, r2, #0x61000000
    cmp r12, #0x44000000
    sublo r12, r3, #0x61000000
    cmplo r12, #0x44000000
    bhs 9f
    and r6, r0, r11
    eors r7, r0, r1
    movpl r4, #32
    movmi r4, #16
    rsb r5, r4, #48
    eor r4, r4, r6, lsr #26
    cmp r2, r3
    beq 9f
    eorlo r6, r6, r11
    eor r5, r5, r6, lsr #26
    movlo r7, r0
    movlo r0, r1
    movlo r1, r7
    mov r2, r1, lsl #8
    orr r2, r2, r11
    mov r3, r1, lsl #1
    mov r3, r3, lsr #24
    sub r3, r3, #1
    mov r1, r0, lsl #1
    mov r1, r1, lsr #24
    sub r1, r1, #1
    mov r0, r0, lsl #8
    orr r0, r0, r11
    stmia r9!, {r0-r5}
    add r12, sp, #124
    cmp r10, r12
    bne 4b
    mov r0, #1
    add sp, sp, #140
    pop {r4-r11, pc}
9:
    mov r0, #0
    add sp, sp, #140
    pop {r4-r11, pc}
    .size keltraTurnSquare, . - keltraTurnSquare
)");
// clang-format on

#endif
