// SPDX-License-Identifier: Zlib
#include "math/soft_arm.h"

#include "math/soft_arm_macros.h"

#if defined(KELTRA_SOFT_ARM)

// clang-format off
asm(R"(
@ To `end` unless three numbers are from 2^`least` x 2^-127 on, and `range` exponents.
.macro inverseCheck a, b, c, least, range, end
    mov lr, #\least
    rsb r12, lr, \a, lsl #1
    cmp r12, #\range
    rsblo r12, lr, \b, lsl #1
    cmplo r12, #\range
    rsblo r12, lr, \c, lsl #1
    cmplo r12, #\range
    bhs \end
.endm

    .text
@ r2 := r0 d + r1 c, of two elements and two factors: the mantissas are in r4 and r5, the exponents in r6 and r7.
    .type minorSum, %function
minorSum:
    elementProduct r2, r0, r4, r6, r12
    elementProduct r0, r1, r5, r7, r12
    addUp r2, r0, r1, r3, r12, 9f, r11
    mov pc, lr
    .size minorSum, . - minorSum

.macro minorFactors d, c
    ldr r4, [r8, #4 * \d]
    ldr r5, [r8, #4 * \c]
    unpackFactor r4, r6
    unpackFactor r5, r7
.endm
@ m[a] d - m[b] c, or the negative of it.
.macro minor target, a, b
    ldr r0, [r8, #4 * \a]
    ldr r1, [r8, #4 * \b]
    eor r1, r1, r11
    bl minorSum
    str r2, [r9, #4 * \target]
.endm
.macro negativeMinor target, a, b
    ldr r0, [r8, #4 * \a]
    ldr r1, [r8, #4 * \b]
    eor r0, r0, r11
    bl minorSum
    str r2, [r9, #4 * \target]
.endm
function keltraMinors
    push {r4-r9, r11, lr}
    mov r8, r0
    mov r9, r1
    mov r11, #0x80000000
    mov r4, #3
1:
    ldmia r0!, {r1, r2, r3, r5}
    inverseCheck r1, r2, r3, 0x6f000000, 0x21000000, 9f
    subs r4, r4, #1
    bne 1b
    minorFactors 5, 6
    minor 0, 10, 9
    minorFactors 4, 6
    negativeMinor 4, 10, 8
    minorFactors 4, 5
    minor 8, 9, 8
    minorFactors 1, 2
    negativeMinor 1, 10, 9
    minor 2, 6, 5
    minorFactors 0, 2
    minor 5, 10, 8
    negativeMinor 6, 6, 4
    minorFactors 0, 1
    negativeMinor 9, 9, 8
    minor 10, 5, 4
    mov r0, #1
    pop {r4-r9, r11, pc}
9:
    mov r0, #0
    pop {r4-r9, r11, pc}
    .size keltraMinors, . - keltraMinors

function keltraScaleRotation
    push {r4-r6, lr}
    inverseCheck r0, r0, r0, 0x6b000000, 0x29000000, 9f
    unpackFactor r0, r6
    mov r5, #3
1:
    ldmia r1, {r2, r3, r4}
    elementProduct lr, r2, r0, r6, r12
    str lr, [r1], #4
    elementProduct lr, r3, r0, r6, r12
    str lr, [r1], #4
    elementProduct lr, r4, r0, r6, r12
    str lr, [r1], #8
    subs r5, r5, #1
    bne 1b
    mov r0, #1
    pop {r4-r6, pc}
9:
    mov r0, #0
    pop {r4-r6, pc}
    .size keltraScaleRotation, . - keltraScaleRotation

function keltraMoveBack
    push {r4-r11, lr}
    ldmia r0, {r2, r3, r4}
    inverseCheck r2, r3, r4, 0x6b000000, 0x29000000, 9f
    unpackFactor r2, r5
    unpackFactor r3, r6
    unpackFactor r4, r7
    mov lr, #0x80000000
    mov r11, #3
1:
    ldr r8, [r1, #32]
    elementProduct r0, r8, r4, r7, r12
    ldr r9, [r1, #16]
    elementProduct r8, r9, r3, r6, r12
    addUp r0, r8, r9, r10, r12, 9f, lr
    ldr r9, [r1], #4
    elementProduct r8, r9, r2, r5, r12
    addUp r0, r8, r9, r10, r12, 9f, lr
    eor r0, r0, lr
    str r0, [r1, #44]
    subs r11, r11, #1
    bne 1b
    mov r0, #1
    pop {r4-r11, pc}
9:
    mov r0, #0
    pop {r4-r11, pc}
    .size keltraMoveBack, . - keltraMoveBack
)");
// clang-format on

#endif
