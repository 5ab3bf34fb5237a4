// SPDX-License-Identifier: Zlib
#include "math/soft_arm.h"

#include "math/soft_arm_macros.h"

#if defined(KELTRA_SOFT_ARM)

// clang-format off
asm(R"(
.macro sumOfThree
    mov lr, #0x80000000
    multiply r0, r2, r5, r8, r9, r12
    multiply r1, r3, r6, r8, r9, r12
    addUp r0, r1, r8, r9, r12, 1f, lr
    multiply r1, r4, r7, r8, r9, r12
    addUp r0, r1, r8, r9, r12, 1f, lr
.endm

    .text
function keltraSumOfThree
    push {r4-r9, lr}
    ldmia r0, {r2, r3, r4}
    ldr r5, [r1]
    ldr r6, [r1, #16]
    ldr r7, [r1, #32]
    mov lr, #0x4d000000
    checkFirst r2, lr, r12
    checkNext r3, lr, r12
    checkNext r4, lr, r12
    checkNext r5, lr, r12
    checkNext r6, lr, r12
    checkNext r7, lr, r12
    bhs 1f
    sumOfThree
    pop {r4-r9, pc}
1:
    mov r0, #0
    pop {r4-r9, pc}
    .size keltraSumOfThree, . - keltraSumOfThree

@ The factors' mantissas are in r2 to r4, their exponents in r5 to r7; all numbers are looked at first.
function keltraTransform
    push {r0-r2, r4-r11, lr}
    ldmia r0, {r2, r3, r4}
    mov lr, #0x4d000000
    checkFirst r2, lr, r12
    checkNext r3, lr, r12
    checkNext r4, lr, r12
    mov r0, r1
    .rept 4
    ldmia r0!, {r8, r9, r10, r11}
    checkNext r8, lr, r12
    checkNext r9, lr, r12
    checkNext r10, lr, r12
    .endr
    bhs 1f
    unpackFactor r2, r5
    unpackFactor r3, r6
    unpackFactor r4, r7
    mov lr, #0x80000000
    mov r11, #0
6:
    ldr r8, [r1]
    ldr r9, [r1, #16]
    elementProduct r0, r8, r2, r5, r12
    elementProduct r8, r9, r3, r6, r12
    addUp r0, r8, r9, r10, r12, 1f, lr
    ldr r10, [r1, #32]
    elementProduct r8, r10, r4, r7, r12
    addUp r0, r8, r9, r10, r12, 1f, lr
    ldr r8, [r1, #48]
    addUp r0, r8, r9, r10, r12, 1f, lr
    cmp r11, #8
    strne r0, [sp, r11]
    add r1, r1, #4
    add r11, r11, #4
    bne 6b
    pop {r1, r2, r3}
    mov r4, r0
    stmia r3, {r1, r2, r4}
    mov r0, #1
    pop {r4-r11, pc}
1:
    mov r0, #0
    add sp, sp, #12
    pop {r4-r11, pc}
    .size keltraTransform, . - keltraTransform

function keltraSumOfSquares
    push {r4-r9, lr}
    ldmia r0, {r2, r3, r4}
    mov lr, #0x4d000000
    checkFirst r2, lr, r12
    checkNext r3, lr, r12
    checkNext r4, lr, r12
    bhs 1f
    mov r5, r2
    mov r6, r3
    mov r7, r4
    sumOfThree
    pop {r4-r9, pc}
1:
    mov r0, #0
    pop {r4-r9, pc}
    .size keltraSumOfSquares, . - keltraSumOfSquares

@ result := x x, where `x` is lost.
.macro square result, x, exponent, low, half
    mov \exponent, \x, lsl #1
    mov \exponent, \exponent, lsr #24
    mov \exponent, \exponent, lsl #1
    mov \x, \x, lsl #8
    orr \x, \x, #0x80000000
    mov \half, \x, lsr #8
    mov \low, #0
    roundedProduct \result, \x, \half, \exponent, \low, r12
.endm
@ r0 := r0 + x x, where r0 is 0 at first, and x may be.
.macro addSquare x
    movs r12, \x, lsl #1
    beq 3f
    checkFirst \x, lr, r12
    bhs 1f
    square r1, \x, r8, r9, r2
    cmp r0, #0
    moveq r0, r1
    beq 3f
    addUp r0, r1, r8, r9, r12, 1f
3:
.endm
@ x := x - y, where `y` is lost and zeros are accepted.
.macro subtract x, y
    eor \y, \y, #0x80000000
    movs r12, \x, lsl #1
    moveq \x, \y
    beq 3f
    checkFirst \x, lr, r12
    bhs 1f
    movs r12, \y, lsl #1
    beq 3f
    checkFirst \y, lr, r12
    bhs 1f
    addUp \x, \y, r8, r9, r12, 4\@f
    .subsection 1
4\@:
    mov \x, #0
    b 3f
    .subsection 0
3:
.endm
function keltraSquaredDistance
    push {r4-r9, lr}
    ldmia r0, {r2, r3, r4}
    ldmia r1, {r5, r6, r7}
    mov lr, #0x4d000000
    checkFirst r2, lr, r12
    checkNext r3, lr, r12
    checkNext r4, lr, r12
    checkNext r5, lr, r12
    checkNext r6, lr, r12
    checkNext r7, lr, r12
    bhs 10f
    eor r2, r2, #0x80000000
    addUp r5, r2, r8, r9, r12, 4f
5:
    eor r3, r3, #0x80000000
    addUp r6, r3, r8, r9, r12, 6f
7:
    eor r4, r4, #0x80000000
    addUp r7, r4, r8, r9, r12, 8f
9:
@ differences may be far smaller, or zero
    checkFirst r5, lr, r12
    checkNext r6, lr, r12
    checkNext r7, lr, r12
    bhs 2f
    square r0, r5, r8, r9, r2
    square r1, r6, r8, r9, r2
    addUp r0, r1, r8, r9, r12, 1f
    square r1, r7, r8, r9, r2
    addUp r0, r1, r8, r9, r12, 1f
    pop {r4-r9, pc}
4:
    mov r5, #0
    b 5b
6:
    mov r6, #0
    b 7b
8:
    mov r7, #0
    b 9b
10:
    subtract r5, r2
    subtract r6, r3
    subtract r7, r4
2:
    mov r0, #0
    addSquare r5
    addSquare r6
    addSquare r7
    pop {r4-r9, pc}
1:
    mov r0, #0
    pop {r4-r9, pc}
    .size keltraSquaredDistance, . - keltraSquaredDistance

function keltraDifference
    push {r4-r7, lr}
    mov lr, #0x4d000000
    checkFirst r0, lr, r12
    checkNext r1, lr, r12
    checkNext r2, lr, r12
    checkNext r3, lr, r12
    bhs 1f
    multiply r4, r0, r1, r5, r6, r12
    multiply r7, r2, r3, r5, r6, r12
    eor r7, r7, #0x80000000
    addUp r4, r7, r5, r6, r12, 1f
    mov r0, r4
    pop {r4-r7, pc}
1:
    mov r0, #0
    pop {r4-r7, pc}
    .size keltraDifference, . - keltraDifference

function keltraMultiplyAdd
    push {r4, r5, lr}
    mov lr, #0x4d000000
    checkFirst r0, lr, r12
    checkNext r1, lr, r12
    checkNext r2, lr, r12
    bhs 1f
    multiply r3, r0, r1, r4, r5, r12
    addUp r3, r2, r4, r5, r12, 1f
    mov r0, r3
    pop {r4, r5, pc}
1:
    mov r0, #0
    pop {r4, r5, pc}
    .size keltraMultiplyAdd, . - keltraMultiplyAdd

@ The mantissas of x and y get 32 bits, those of c and p 24; each serves two products.
function keltraTurn
    push {r2-r11, lr}
    ldr r4, [r2]
    ldr r5, [r3]
    mov lr, #0x4d000000
    checkFirst r4, lr, r12
    checkNext r5, lr, r12
    checkNext r0, lr, r12
    checkNext r1, lr, r12
    bhs 1f
    mov r6, r0, lsl #1
    mov r6, r6, lsr #24
    mov r7, r1, lsl #1
    mov r7, r7, lsr #24
    eor r12, r0, r1
    bic r2, r0, #0xff000000
    orr r2, r2, #0x00800000
    bic r3, r1, #0xff000000
    orr r3, r3, #0x00800000
    mov r8, r4, lsl #8
    orr r8, r8, #0x80000000
    mov r9, r5, lsl #8
    orr r9, r9, #0x80000000
@ c x in r10, p y in r11
    mov r12, r4, lsl #1
    add r12, r6, r12, lsr #24
    eor lr, r0, r4
    push {r0, r1}
    roundedProduct r10, r8, r2, r12, lr, r0
    mov r12, r5, lsl #1
    add r12, r7, r12, lsr #24
    eor lr, r1, r5
    roundedProduct r11, r9, r3, r12, lr, r0
    addUp r10, r11, r12, lr, r0, 2f
@ c y in r9, -p x in r8
    ldmia sp!, {r0, r1}
    mov r12, r5, lsl #1
    add r12, r6, r12, lsr #24
    eor lr, r0, r5
    roundedProduct r11, r9, r2, r12, lr, r0
    mov r12, r4, lsl #1
    add r12, r7, r12, lsr #24
    eor lr, r1, r4
    eor lr, lr, #0x80000000
    roundedProduct r9, r8, r3, r12, lr, r0
    addUp r11, r9, r12, lr, r0, 1f
    ldmia sp!, {r2, r3}
    str r10, [r2]
    str r11, [r3]
    mov r0, #1
    pop {r4-r11, pc}
2:
    add sp, sp, #8
1:
    mov r0, #0
    add sp, sp, #8
    pop {r4-r11, pc}
    .size keltraTurn, . - keltraTurn
)");
// clang-format on

#endif
