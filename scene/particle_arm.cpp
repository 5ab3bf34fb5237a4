// SPDX-License-Identifier: Zlib
#include "scene/particle_arm.h"

#include "math/soft_arm_macros.h"

#if defined(KELTRA_SOFT_ARM)

namespace keltra {
namespace {

std::uint32_t mantissaOf(std::uint32_t bits) { return bits << 8 | kSignBit; }

}  // namespace

bool ArmParticleFrame::set(const float *colorDelta, const float *colorEnd, const float *gravity,
                           float seconds, float energyLoss) {
    const std::uint32_t time = bitsOf(seconds);
    // From 2^-14 seconds.
    bool fits = time - (113u << 23) < 20u << 23;
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t delta = bitsOf(colorDelta[i]), end = bitsOf(colorEnd[i]),
                            step = bitsOf(gravity[i]);
        const bool changes = delta << 1 != 0;
        fits &= changes ? isInParticleRange(delta) : delta == 0;
        fits &= !changes || end << 1 == 0 || isInParticleRange(end);
        fits &= step << 1 == 0 || isInParticleRange(step);
        axes[i] = {changes ? mantissaOf(delta) : 0, (delta ^ kSignBit) >> 23,     end,
                   step << 1 == 0 ? 0 : step,       (time & 0x7fffff) | 0x800000, (time >> 23) - 127};
    }
    loss = bitsOf(energyLoss);
    return fits && isInParticleRange(loss);
}

bool ArmParticleSquare::set(const float *right, const float *up) {
    for (int i = 0; i < 3; ++i) {
        const std::uint32_t r = bitsOf(right[i]), u = bitsOf(up[i]);
        const bool rightIsLarger = r << 1 > u << 1;
        const std::uint32_t large = rightIsLarger ? r : u, small = rightIsLarger ? u : r;
        if (!isInParticleRange(large) || !(small << 1 == 0 || isInParticleRange(small)) ||
            large << 1 == small << 1)
            return false;
        const bool sameSigns = ((r ^ u) & kSignBit) == 0;
        // Right plus up belongs to the third corner at 32, right minus up to the second at 16. A negative one
        // is added to the opposite corner.
        const std::uint32_t sum = sameSigns ? 32u : 16u, difference = 48u - sum;
        const std::uint32_t signOfSum = sameSigns ? u : r;
        const std::uint32_t signOfDifference = sameSigns && !rightIsLarger ? ~large : large;
        axes[i] = {
            mantissaOf(large),      (large << 1 >> 24) - 1,       small << 1 == 0 ? 0 : mantissaOf(small),
            (small << 1 >> 24) - 1, sum ^ (signOfSum >> 31 << 5), difference ^ (signOfDifference >> 31 << 5)};
    }
    return true;
}

}  // namespace keltra

// clang-format off
asm(R"(
@ The product, rounded to 24 bits, with the leading one where it is; `exponent` is one too small, for the addition.
.macro particleProduct result, x, y, exponent, low, more:vararg
    umull \low, \result, \x, \y
    cmp \result, #0x00800000
    movlo \result, \result, lsl #1
    orrlo \result, \result, \low, lsr #31
    movlo \low, \low, lsl #1
    sbc \exponent, \exponent, #0
    cmp \low, #0x80000000
    adc \result, \result, \more
    biceq \result, \result, #1
.endm

@ Rounds a sum of mantissas with 31 bits; `exponent` is shifted to its place.
.macro roundSum sum, exponent, work
    clz \work, \sum
    mov \sum, \sum, lsl \work
    sub \work, \exponent, \work, lsl #23
    cmn lr, \sum, lsl #24
    adc \sum, \work, \sum, lsr #8
    biceq \sum, \sum, #1
.endm

@ number := number shifted right; what is shifted out only counts for not being zero.
.macro shiftSticky number, by, work
    rsb \work, \by, #32
    movs \work, \number, lsl \work
    mov \number, \number, lsr \by
    orrne \number, \number, #1
.endm

@ Stores place plus and minus `offset`, whose exponent is one too small: the place is the mantissa r6 with the exponent
@ r9, in r10 shifted to its place and with the sign; r12 is 256 when it is negative.
.macro storeCorners offset
    subs r5, r9, \offset, lsr #23
    ble 5\@f
    mov r7, \offset, lsl #8
    orr r7, r7, #0x80000000
    shiftSticky r7, r5, r11
    add \offset, r7, r6, lsl #7
    rsbs r7, r7, r6, lsl #7
    bls 6\@f
    roundSum \offset, r10, r5
    roundSum r7, r10, r5
7\@:
    ldr r5, [r2], #4
    eor r5, r5, r12, lsr #3
    str \offset, [r3, r5]
    eor r5, r5, #32
    str r7, [r3, r5]
    .subsection 1
@ the place is the smaller one
5\@:
    rsb r5, r5, #1
    mov r7, r6, lsl #7
    shiftSticky r7, r5, r11
    mov r11, \offset, lsr #23
    add r11, r11, #1
    mov r11, r11, lsl #23
    orr r11, r11, r12, lsl #23
    mov \offset, \offset, lsl #8
    orr \offset, \offset, #0x80000000
    rsbs r7, r7, \offset, lsr #1
    rsb \offset, r7, \offset
    bne 8\@f
    b 9\@f
@ the same exponents
6\@:
    rsbs r7, r7, #0
    mov r11, r10
    bne 8\@f
9\@:
    roundSum \offset, r11, r5
    mov r7, #0
    b 7\@b
8\@:
    roundSum \offset, r11, r5
    eor r11, r11, #0x80000000
    roundSum r7, r11, r5
    b 7\@b
    .subsection 0
.endm

@ The low byte of the truncated product of `number`, which is positive, and 255, before those in r11. r10 is 150.
.macro addByte number, work
    mov \work, \number, lsl #8
    orr \work, \work, #0x80000000
    subs \work, \work, \work, lsr #8
    addpl \work, \work, #0x40
    addmi \work, \work, #0x80
    sub \number, r10, \number, lsr #23
    mov \work, \work, lsr \number
    mov \work, \work, lsl #24
    orr r11, \work, r11, lsr #8
.endm

@ On the stack: mantissa and exponent of a square's size, and of the ratio; the particle, its place and velocity; the run.
@ The particle's members from the spin on go to r4 to r8. To `end` when there is none.
.macro nextParticle end
    ldr r12, [sp, #48]
    ldmia r12, {r0-r6}
    cmp r5, r6
    beq \end
    ldr r6, [r5]
    cmp r6, #1024
    bhs \end
    add r0, r0, r6, lsl #6
    ldmia r0, {r4-r9}
    add r12, sp, #16
    stmia r12, {r0, r4-r9}
    add r8, r0, #40
    ldmia r8, {r4-r8}
.endm

    .text
function keltraMoveTurned
    push {r0, r4-r11, lr}
    sub sp, sp, #48
    mov lr, #0x80000000
    nextParticle 26f
    b 27f
    .size keltraMoveTurned, . - keltraMoveTurned

function keltraMoveParticles
    push {r0, r4-r11, lr}
    sub sp, sp, #48
    mov lr, #0x80000000
25:
    nextParticle 26f
    orrs r4, r4, r5
    bne 26f
27:
    sub r9, r8, #0x35800000
    cmp r9, #0x18000000
    sublo r9, r7, #0x35800000
    cmplo r9, #0x18000000
    bhs 26f
@ the ratio, as in quotient.cpp
    ldr r5, 24f
    mov r4, r7, lsl #8
    orr r4, r4, #0x80000000
    sub r5, r5, r4, lsr #1
    .rept 3
    umull r10, r9, r4, r5
    rsb r9, r9, #0x80000000
    umull r10, r11, r5, r9
    mov r5, r11, lsl #2
    .endr
    mov r11, r8, lsr #23
    sub r11, r11, r7, lsr #23
    bic r9, r8, #0xff000000
    orr r9, r9, #0x00800000
    mov r10, r4, lsr #8
    cmp r9, r10
    movlo r9, r9, lsl #1
    sbc r11, r11, #0
    mov r4, r9, lsl #2
    umull r12, r7, r4, r5
    mul r12, r7, r10
    rsbs r12, r12, r9, lsl #24
    submi r7, r7, #1
    cmppl r12, r10
    addpl r7, r7, #1
    add r7, r7, #1
    mov r10, r7, lsr #1
    strd r10, [sp, #8]
@ the square's size is that of the particle less its energy, which is enough for one without a size
    sub r9, r6, #0x35800000
    cmp r9, #0x18000000
    bhs 21f
    difference r6, r8, r4, r5, r9, 26f
22:
    cmn lr, r6, lsl #24
    mov r8, r6, lsr #8
    adc r8, r8, #0
    biceq r8, r8, #1
    and r9, r4, #0xff
    sub r9, r9, #126
    strd r8, [sp]
1:
@ the colour
    ldmia r1!, {r4, r5, r6, r7}
    cmp r4, #0
    beq 12f
    ldrd r8, [sp, #8]
    add r5, r5, r9
    particleProduct r9, r4, r8, r5, r10, r5, lsl #23
    addUp r6, r9, r5, r8, r10, 3f, lr
2:
    str r6, [r0, #24]
@ the velocity
    ldr r4, [r0, #12]
    ldmia r1!, {r8, r9}
    mov r11, #0x71000000
    cmp r7, #0
    beq 4f
    addUp r4, r7, r5, r6, r10, 20f, lr
    str r4, [r0, #12]
4:
@ the place
    mov r5, r4, lsl #8
    orr r5, r5, #0x80000000
    add r9, r9, r4, lsr #23
    particleProduct r10, r5, r8, r9, r6, r9, lsl #23
    ldr r9, [r0]
    addUp r9, r10, r5, r6, r8, 5f, lr
    rsb r6, r11, r4, lsl #1
    cmp r6, #0x34000000
    rsblo r6, r11, r9, lsl #1
    cmplo r6, #0x34000000
    bhs 5f
    str r9, [r0], #4
6:
@ the square: sum in r4 and difference in r8
    ldmia r2!, {r4, r5, r7, r8}
    ldrd r10, [sp]
    add r5, r5, r11
    particleProduct r6, r4, r10, r5, r12, #0
    add r8, r8, r11
    particleProduct r4, r7, r10, r8, r12, #0
    sub r8, r5, r8
    mov r7, r4, lsl #7
    shiftSticky r7, r8, r12
    add r4, r7, r6, lsl #7
    rsbs r8, r7, r6, lsl #7
    beq 20f
    mov r5, r5, lsl #23
    roundSum r4, r5, r12
    roundSum r8, r5, r12
@ its middle
    mov r5, r9, lsl #8
    orr r5, r5, #0x80000000
    add r9, r11, r9, lsr #23
    particleProduct r6, r5, r10, r9, r11, #0
    mov r10, r9, lsl #23
    and r12, r9, #0x100
    sub r9, r9, r12
    storeCorners r4
    storeCorners r8
    add r3, r3, #4
    b 1b
@ the colour as bytes, and the energy
9:
    add r4, r0, #12
    ldmia r4, {r4, r5, r7}
    ldr r9, [r0, #44]
    orr r8, r4, r5
    orr r8, r8, r7
    orr r8, r8, r9
    cmp r8, #0x40000000
    bhs 20f
    mov r8, r9
    difference r8, r6, r10, r11, r12, 10f
    roundMantissa r8, r10, r12, lr
11:
    str r9, [r0, #24]
    str r8, [r0, #44]
    mov r10, #150
    addByte r4, r6
    addByte r5, r6
    addByte r7, r6
    addByte r9, r6
    ldr r12, [sp, #48]
    ldrd r4, [r12, #16]
    mov r6, r11
    mov r7, r11
    mov r9, r11
    stmia r4!, {r6, r7, r9, r11}
    mov r6, #0x3f800000
    str r6, [r3]
    str r6, [r3, #16]
    str r6, [r3, #32]
    str r6, [r3, #48]
    add r3, r3, #52
    add r5, r5, #4
    str r3, [r12, #12]
    strd r4, [r12, #16]
    cmp r8, #0
    bgt 25b
    mov r0, #1
    add sp, sp, #52
    pop {r4-r11, pc}
12:
    cmp r5, #1
    bne 2b
    b 9b
3:
    mov r6, #0
    b 2b
@ without a velocity the place stays as it is; one that is zero is too small to change a sum
5:
    ldr r9, [r0], #4
    cmp r4, #0
    cmpeq r9, #0
    beq 6b
    cmp r4, #0
    bne 20f
    rsb r6, r11, r9, lsl #1
    cmp r6, #0x34000000
    blo 6b
20:
    add r12, sp, #16
    ldmia r12, {r0, r4-r9}
    stmia r0, {r4-r9}
26:
    mov r0, #0
    add sp, sp, #52
    pop {r4-r11, pc}
21:
    cmp r6, #0
    bne 26b
    mov r6, r8, lsl #8
    orr r6, r6, #0x80000000
    mov r4, r8, lsr #23
    b 22b
10:
    mov r8, #0
    b 11b
24:
    .word 0xba827999
    .size keltraMoveParticles, . - keltraMoveParticles
)");
// clang-format on

#endif
