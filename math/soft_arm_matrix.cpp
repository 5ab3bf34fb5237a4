// SPDX-License-Identifier: Zlib
#include "math/soft_arm.h"

#include "math/soft_arm_macros.h"

#if defined(KELTRA_SOFT_ARM)

// clang-format off
asm(R"(
    .text
@ Four words of each; the flags say whether all of them and those before are the same.
.macro compareFour also
    ldmia r0!, {r3, r4, r5, r6}
    ldmia r2!, {r7, r8, r9, r10}
    teq\also r3, r7
    teqeq r4, r8
    teqeq r5, r9
    teqeq r6, r10
.endm
function keltraSameWords
    push {r4-r10, lr}
    mov r2, r1
    compareFour
    compareFour eq
    compareFour eq
    compareFour eq
    moveq r0, #1
    movne r0, #0
    pop {r4-r10, pc}
    .size keltraSameWords, . - keltraSameWords

function keltraCopySame
    push {r4-r10, lr}
    compareFour
    stmia r1!, {r3, r4, r5, r6}
    compareFour eq
    stmia r1!, {r3, r4, r5, r6}
    compareFour eq
    stmia r1!, {r3, r4, r5, r6}
    compareFour eq
    stmia r1!, {r3, r4, r5, r6}
    moveq r0, #1
    movne r0, #0
    pop {r4-r10, pc}
    .size keltraCopySame, . - keltraCopySame

.macro copyEight more:vararg
    ldmia r0!, {r3-r10}
    stmia r1!, {r3-r10}
    \more
.endm
function keltraCopyWords
    push {r4-r10, lr}
    copyEight
    copyEight
    pop {r4-r10, pc}
    .size keltraCopyWords, . - keltraCopyWords

function keltraCopyTwice
    push {r4-r10, lr}
    copyEight stmia r2!, {r3-r10}
    copyEight stmia r2!, {r3-r10}
    pop {r4-r10, pc}
    .size keltraCopyTwice, . - keltraCopyTwice

@ Float to 16.16: the mantissa with 32 bits, shifted by 142 less the exponent. By less than 1 it does not fit.
.macro toFixed value
    mov r12, \value, lsl #1
    subs r12, lr, r12, lsr #24
    ble 2\@f
    mov r8, \value, lsl #8
    orr r8, r8, #0x80000000
    mov r8, r8, lsr r12
    eor r8, r8, \value, asr #31
    sub \value, r8, \value, asr #31
3\@:
    .subsection 1
2\@:
    mov \value, #0x80000000
    b 3\@b
    .subsection 0
.endm
function keltraToFixed
    push {r4-r8, lr}
    mov lr, #142
1:
    ldmia r0!, {r4, r5, r6, r7}
    stmia r1!, {r4, r5, r6, r7}
    toFixed r4
    toFixed r5
    toFixed r6
    toFixed r7
    stmia r2!, {r4, r5, r6, r7}
    subs r3, r3, #1
    bne 1b
    pop {r4-r8, pc}
    .size keltraToFixed, . - keltraToFixed

@ To 1 unless `number` is zero or in the range.
.macro zeroOrInRange number, exponent
    movs \exponent, \number, lsl #1
    beq 9\@f
    sub r12, \exponent, lr
    cmp r12, #0x6d000000
    bhs 1f
9\@:
.endm
@ r0 := r0 + place x, where r0 is 0 at first, and stays it for a product by zero.
.macro addProduct place, offset
    ldr r1, [r10, #\offset]
    movs r8, r1, lsl #1
    beq 3f
    sub r12, r8, lr
    cmp r12, #0x6d000000
    bhs 1f
    movs r7, \place, lsl #1
    beq 3f
    eor r9, \place, r1
    mov r7, r7, lsr #24
    add r7, r7, r8, lsr #24
    mov r1, r1, lsl #8
    orr r1, r1, #0x80000000
    bic r2, \place, #0xff000000
    orr r2, r2, #0x00800000
    .ifc \offset, 0
    roundedProduct r0, r1, r2, r7, r9, r12
    .else
    roundedProduct r3, r1, r2, r7, r9, r12
    cmp r0, #0
    moveq r0, r3
    beq 3f
    addUp r0, r3, r7, r8, r12, 1f
    .endif
3:
.endm
function keltraTranslate
    push {r4-r11, lr}
    sub sp, sp, #12
    mov lr, #0x4d000000
    ldmia r0, {r4, r5, r6}
    mov r10, r1
    zeroOrInRange r4, r7
    zeroOrInRange r5, r7
    zeroOrInRange r6, r7
    ldr r7, [r1, #12]
    ldr r8, [r1, #28]
    ldr r9, [r1, #44]
    ldr r12, [r1, #60]
    orr r7, r7, r8
    orr r7, r7, r9
    eor r12, r12, #0x3f800000
    orrs r7, r7, r12
    bne 1f
    mov r11, #0
4:
    mov r0, #0
    addProduct r4, 0
    addProduct r5, 16
    addProduct r6, 32
    ldr r1, [r10, #48]
    movs r8, r1, lsl #1
    beq 5f
    sub r12, r8, lr
    cmp r12, #0x6d000000
    bhs 1f
    cmp r0, #0
    moveq r0, r1
    beq 6f
    addUp r0, r1, r7, r8, r12, 1f
6:
    str r0, [sp, r11]
    add r10, r10, #4
    add r11, r11, #4
    cmp r11, #12
    bne 4b
    pop {r0, r1, r2}
    str r0, [r10, #36]
    str r1, [r10, #40]
    str r2, [r10, #44]
    mov r0, #1
    pop {r4-r11, pc}
@ a zero is left out of the sum; a positive one stays it, a negative one may not
5:
    cmp r0, #0
    cmpeq r1, #0x80000000
    bne 6b
1:
    mov r0, #0
    add sp, sp, #12
    pop {r4-r11, pc}
    .size keltraTranslate, . - keltraTranslate
)");
// clang-format on

#endif
