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

@ Float to 16.16: the mantissa with 32 bits, its first one in r9, shifted by 142 less the exponent. By less
@ than 1 it does not fit.
.macro toFixed value
    mov r12, \value, lsl #1
    subs r12, lr, r12, lsr #24
    ble 2\@f
    orr r8, r9, \value, lsl #8
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
    push {r4-r9, lr}
    mov lr, #142
    mov r9, #0x80000000
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
    pop {r4-r9, pc}
    .size keltraToFixed, . - keltraToFixed

@ Words that begin with the end of a number are read up to that of the last byte.
.macro joined value, next
    mov \value, \value, lsr r10
    orr \value, \value, \next, lsl r11
.endm
function keltraBytesToFixed
    ands r12, r0, #3
    moveq r3, r2
    moveq r2, r1
    beq keltraToFixed
    push {r4-r11, lr}
    mov lr, #142
    mov r9, #0x80000000
    bic r0, r0, #3
    mov r10, r12, lsl #3
    rsb r11, r10, #32
    ldr r7, [r0], #4
1:
    mov r3, r7
    ldmia r0!, {r4, r5, r6, r7}
    joined r3, r4
    joined r4, r5
    joined r5, r6
    joined r6, r7
    toFixed r3
    toFixed r4
    toFixed r5
    toFixed r6
    stmia r1!, {r3, r4, r5, r6}
    subs r2, r2, #1
    bne 1b
    pop {r4-r11, pc}
    .size keltraBytesToFixed, . - keltraBytesToFixed

@ To 1 unless `number` is zero or in the range.
.macro zeroOrInRange number, exponent
    movs \exponent, \number, lsl #1
    beq 9\@f
    sub r12, \exponent, lr
    cmp r12, #0x6d000000
    bhs 1f
9\@:
.endm
@ r0 := r0 + place x, where r0 is 0 at first, stays it for a product by zero, and is it again when the sum is.
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
    addUp r0, r3, r7, r8, r12, 4\@f
    .subsection 1
4\@:
    mov r0, #0
    b 3f
    .subsection 0
    .endif
3:
.endm
function keltraTranslate
    ldr r2, [r1, #12]
    ldr r3, [r1, #28]
    ldr r12, [r1, #44]
    orr r2, r2, r3
    orr r2, r2, r12
    ldr r3, [r1, #60]
    eor r3, r3, #0x3f800000
    orrs r2, r2, r3
    movne r0, #0
    bxne lr
    push {r0, r1, r4-r11, lr}
    ldr r2, [r0, #8]
    ldr r3, [r1, #4]
    movs r2, r2, lsl #1
    movsne r3, r3, lsl #1
    beq 2f
    add r2, r1, #48
    bl keltraTransform
    cmp r0, #0
    movne r0, #1
    addne sp, sp, #8
    ldmiane sp!, {r4-r11, pc}
@ with zeros
2:
    ldmia sp!, {r0, r1}
    sub sp, sp, #12
    mov lr, #0x4d000000
    ldmia r0, {r4, r5, r6}
    mov r10, r1
    zeroOrInRange r4, r7
    zeroOrInRange r5, r7
    zeroOrInRange r6, r7
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
    addUp r0, r1, r7, r8, r12, 7f
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
7:
    mov r0, #0
    b 6b
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
@ To 1 unless the last row of a matrix is 0 0 0 1.
.macro plainLastRow matrix
    ldr r4, [\matrix, #12]
    ldr r5, [\matrix, #28]
    ldr r6, [\matrix, #44]
    ldr r7, [\matrix, #60]
    orr r4, r4, r5
    orr r4, r4, r6
    eor r7, r7, #0x3f800000
    orrs r4, r4, r7
    bne 1f
.endm
@ To 1 unless three numbers are in the range.
.macro threeInRange
    checkFirst r4, lr, r12
    checkNext r5, lr, r12
    checkNext r6, lr, r12
    bhs 1f
.endm
@ The mantissa with 32 bits, and sign and exponent, go to the stack.
.macro unpackTo number, offset
    mov r8, \number, lsl #8
    orr r8, r8, #0x80000000
    mov r9, \number, lsr #23
    strd r8, [r10, #\offset]
.endm
@ In place: the mantissa with 24 bits, and sign and exponent less 127.
.macro unpack number, exponent
    mov \exponent, \number, lsr #23
    sub \exponent, \exponent, #127
    bic \number, \number, #0xff000000
    orr \number, \number, #0x00800000
.endm
@ The product with the next number on the stack. Signs are added above the exponents.
.macro nextProduct result, number, exponent
    ldmia r10!, {r2, r3}
    umull r12, \result, r2, \number
    add r3, r3, \exponent
    cmp \result, #0x00800000
    movlo \result, \result, lsl #1
    orrlo \result, \result, r12, lsr #31
    movlo r12, r12, lsl #1
    sbc r3, r3, #0
    cmp r12, #0x80000000
    adc \result, \result, r3, lsl #23
    biceq \result, \result, #1
.endm
@ The same for matrices with zeros, which are left out.
    .type multiplyWithZeros, %function
multiplyWithZeros:
    push {r0-r2, r4-r11, lr}
    plainLastRow r0
    plainLastRow r1
    mov lr, #0x4d000000
    mov r11, r2
2:
    ldr r0, [sp]
    ldr r10, [sp, #4]
    ldmia r0!, {r4, r5, r6, r7}
    str r0, [sp]
    zeroOrInRange r4, r7
    zeroOrInRange r5, r7
    zeroOrInRange r6, r7
6:
    mov r0, #0
    addProduct r4, 0
    addProduct r5, 16
    addProduct r6, 32
    ldr r2, [sp, #8]
    ldr r1, [r10, #48]
    add r2, r2, #48
    cmp r11, r2
    bhs 7f
4:
    cmp r0, #0
    beq 8f
5:
    add r10, r10, #4
    str r0, [r11], #4
    ldr r2, [sp, #4]
    add r2, r2, #12
    cmp r10, r2
    bne 6b
    ldr r2, [sp, #8]
    mov r0, #0
    str r0, [r11], #4
    sub r2, r11, r2
    cmp r2, #64
    bne 2b
    mov r0, #0x3f800000
    str r0, [r11, #-4]
    mov r0, #1
    add sp, sp, #12
    pop {r4-r11, pc}
@ the translation of the second one
7:
    movs r8, r1, lsl #1
    beq 4b
    sub r12, r8, lr
    cmp r12, #0x6d000000
    bhs 1f
    cmp r0, #0
    moveq r0, r1
    beq 5b
    addUp r0, r1, r7, r8, r12, 9f
    b 5b
9:
    mov r0, #0
    b 5b
@ a zero: negative when all terms are
8:
    ldr r2, [r10]
    ldr r3, [r10, #16]
    ldr r7, [r10, #32]
    eor r2, r2, r4
    eor r3, r3, r5
    eor r7, r7, r6
    and r1, r1, r2
    and r1, r1, r3
    and r1, r1, r7
    and r0, r1, #0x80000000
    b 5b
1:
    add sp, sp, #12
    mov r0, #0
    pop {r4-r11, pc}
    .size multiplyWithZeros, . - multiplyWithZeros

function keltraMultiply
    push {r0-r2, r4-r11, lr}
    plainLastRow r0
    plainLastRow r1
    mov lr, #0x4d000000
    add r11, r0, #64
2:
    ldmia r0!, {r4, r5, r6, r7}
    threeInRange
    cmp r0, r11
    bne 2b
    sub sp, sp, #72
    mov r10, sp
    add r11, r1, #48
3:
    ldmia r1!, {r4, r5, r6, r7}
    checkFirst r4, lr, r12
    checkNext r5, lr, r12
    checkNext r6, lr, r12
    bhs 8f
    unpackTo r4, 0
    unpackTo r5, 24
    unpackTo r6, 48
    add r10, r10, #8
    cmp r1, r11
    bne 3b
    ldmia r1, {r4, r5, r6}
    checkFirst r4, lr, r12
    checkNext r5, lr, r12
    checkNext r6, lr, r12
    bhs 8f
    ldr r11, [sp, #80]
    mov lr, #0x80000000
9:
    ldr r0, [sp, #72]
    ldmia r0!, {r4, r5, r6, r7}
    str r0, [sp, #72]
    mov r10, sp
    unpack r4, r7
    unpack r5, r8
    unpack r6, r9
6:
    nextProduct r0, r4, r7
    nextProduct r1, r5, r8
    addUp r0, r1, r2, r3, r12, 10f, lr
    nextProduct r1, r6, r9
    addUp r0, r1, r2, r3, r12, 11f, lr
12:
    add r2, sp, #72
    str r0, [r11], #4
    cmp r10, r2
    bne 6b
    mov r0, #0
    str r0, [r11], #4
    ldr r2, [sp, #80]
    sub r2, r11, r2
    cmp r2, #64
    bne 9b
@ the translation of the second one, and the last element
    mov r0, #0x3f800000
    str r0, [r11, #-4]!
    ldr r10, [sp, #76]
    add r10, r10, #48
    sub r11, r11, #12
    mov r4, #3
7:
    ldr r0, [r11]
    ldr r1, [r10], #4
    cmp r0, #0
    moveq r0, r1
    beq 6f
    addUp r0, r1, r2, r3, r12, 5f, lr
6:
    str r0, [r11], #4
    subs r4, r4, #1
    bne 7b
    add sp, sp, #84
    mov r0, #1
    pop {r4-r11, pc}
5:
    mov r0, #0
    b 6b
@ a sum of two products, and of three, that is zero
10:
    nextProduct r0, r6, r9
    b 12b
11:
    mov r0, #0
    b 12b
8:
    add sp, sp, #72
1:
    pop {r0-r2, r4-r11, lr}
    b multiplyWithZeros
    .size keltraMultiply, . - keltraMultiply
)");
// clang-format on

#endif
