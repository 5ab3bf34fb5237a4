// SPDX-License-Identifier: Zlib
#include "formats/tga_arm.h"

#if defined(KELTRA_TGA_ARM)

// clang-format off
asm(R"(
    .syntax unified
    .arm
@ The next pixel of four bytes, which may lie anywhere.
.macro tgaPixel
    ldrb r4, [r0], #1
    ldrb r5, [r0], #1
    ldrb r6, [r0], #1
    ldrb r7, [r0], #1
    orr r4, r6, r4, lsl #16
    orr r4, r4, r5, lsl #8
    orr r4, r4, r7, lsl #24
.endm

    .text
    .align 2
    .global keltraUnpackShort4
    .hidden keltraUnpackShort4
    .type keltraUnpackShort4, %function
keltraUnpackShort4:
    push {r0, r4-r10, lr}
    ldmia r0, {r0-r3}
1:
    cmp r3, r0
    blo 9f
    ldrb lr, [r0], #1
    subs lr, lr, #127
    ble 5f
@ a run
    subs r2, r2, lr
    blo 7f
    tgaPixel
    subs lr, lr, #8
    bmi 3f
    mov r5, r4
    mov r6, r4
    mov r7, r4
    mov r8, r4
    mov r9, r4
    mov r10, r4
    mov r12, r4
2:
    stmia r1!, {r4-r10, r12}
    subs lr, lr, #8
    bpl 2b
@ up to seven are left, eight less
3:
    mvn lr, lr
    add pc, pc, lr, lsl #2
    nop
    .rept 7
    str r4, [r1], #4
    .endr
    b 1b
@ pixels as they are; many of them are left to the caller
5:
    add lr, lr, #128
    cmp lr, #12
    bhi 8f
    subs r2, r2, lr
    blo 7f
6:
    tgaPixel
    subs lr, lr, #1
    str r4, [r1], #4
    bne 6b
    b 1b
@ more than there is room for
7:
    add r2, r2, lr
8:
    sub r0, r0, #1
9:
    pop {r3}
    stmia r3, {r0-r2}
    pop {r4-r10, pc}
    .size keltraUnpackShort4, . - keltraUnpackShort4
)");
// clang-format on

#endif
