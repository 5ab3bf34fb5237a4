// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATH_SOFT_ARM_MACROS_H
#define KELTRA_MATH_SOFT_ARM_MACROS_H

// The steps that the functions of soft_arm.h are made of, for the assembler: it knows them in each source
// that includes soft_arm.h and then this, behind it.

#if defined(KELTRA_SOFT_ARM)

// clang-format off
asm(R"(
    .syntax unified
    .arm

@ Sets "lower" unless the exponent of `number` is 77 to 185; `least` holds 77 << 24. The next ones are only looked at
@ while all are in the range.
.macro checkFirst number, least, work
    rsb \work, \least, \number, lsl #1
    cmp \work, #0x6d000000
.endm
.macro checkNext number, least, work
    rsb \work, \least, \number, lsl #1
    cmplo \work, #0x6d000000
.endm

@ result := x y, where `x` and `y` are lost. Mantissas of 32 and 24 bits give one of 24 with 32 bits behind it.
.macro multiply result, x, y, exponent, sign, low
    eor \sign, \x, \y
    mov \exponent, \x, lsl #1
    mov \low, \y, lsl #1
    mov \exponent, \exponent, lsr #24
    add \exponent, \exponent, \low, lsr #24
    mov \x, \x, lsl #8
    orr \x, \x, #0x80000000
    bic \y, \y, #0xff000000
    orr \y, \y, #0x00800000
    roundedProduct \result, \x, \y, \exponent, \sign, \low
.endm
.macro roundedProduct result, x, y, exponent, sign, low
    umull \low, \result, \x, \y
    and \sign, \sign, #0x80000000
    cmp \result, #0x00800000
    movlo \result, \result, lsl #1
    orrlo \result, \result, \low, lsr #31
    movlo \low, \low, lsl #1
    sbc \exponent, \exponent, #127
    cmp \low, #0x80000000
    adc \result, \result, \exponent, lsl #23
    biceq \result, \result, #1
    orr \result, \result, \sign
.endm

@ The mantissas of both with 32 bits, the smaller number's shifted by the difference of the exponents. What is shifted
@ out only counts for not being zero.
.macro align sum, other, difference, work
    mov \sum, \sum, lsl #8
    orr \sum, \sum, #0x80000000
    mov \other, \other, lsl #8
    orr \other, \other, #0x80000000
    rsb \work, \difference, #32
    movs \work, \other, lsl \work
    mov \other, \other, lsr \difference
    orrne \other, \other, #1
.endm

@ Rounds the mantissa with 32 bits in `sum` and sets the exponent. `half` may be a register that holds 0x80000000.
.macro roundMantissa sum, exponent, work, half
    .ifb \half
    mov \work, \sum, lsl #24
    cmp \work, #0x80000000
    .else
    cmn \half, \sum, lsl #24
    .endif
    sub \exponent, \exponent, #1
    mov \sum, \sum, lsr #8
    adc \sum, \sum, \exponent, lsl #23
    biceq \sum, \sum, #1
.endm

@ sum := sum - other, of the same signs, up to the rounding. To `zero` when it is zero.
.macro difference sum, other, exponent, difference, work, zero
    subs \difference, \sum, \other
    beq \zero
    sublo \sum, \sum, \difference
    addlo \other, \other, \difference
    mov \exponent, \sum, lsr #23
    sub \difference, \exponent, \other, lsr #23
    eorlo \exponent, \exponent, #0x100
    align \sum, \other, \difference, \work
    sub \sum, \sum, \other
    clz \work, \sum
    mov \sum, \sum, lsl \work
    sub \exponent, \exponent, \work
.endm

@ sum := sum + other, where `other` is lost. To `zero` when the sum is zero. `exponent` has the sign above it. The
@ seldom parts are apart: a carry, and different signs.
.macro addUp sum, other, exponent, difference, work, zero, half
    eors \work, \sum, \other
    bmi 5\@f
    subs \difference, \sum, \other
    sublo \sum, \sum, \difference
    addlo \other, \other, \difference
    mov \exponent, \sum, lsr #23
    sub \difference, \exponent, \other, lsr #23
    align \sum, \other, \difference, \work
    adds \sum, \sum, \other
    bcs 6\@f
8\@:
    roundMantissa \sum, \exponent, \work, \half
    .subsection 1
5\@:
    eor \other, \other, #0x80000000
    difference \sum, \other, \exponent, \difference, \work, \zero
    b 8\@b
6\@:
    movs \sum, \sum, rrx
    orrcs \sum, \sum, #1
    add \exponent, \exponent, #1
    b 8\@b
    .subsection 0
.endm

@ The product with an element, whose mantissa gets 32 bits.
.macro elementProduct result, element, mantissa, exponent, low
    mov \low, \element, lsl #8
    orr \low, \low, #0x80000000
    add \element, \exponent, \element, lsr #23
    umull \low, \result, \mantissa, \low
    cmp \result, #0x00800000
    movlo \result, \result, lsl #1
    orrlo \result, \result, \low, lsr #31
    movlo \low, \low, lsl #1
    sbc \element, \element, #127
    cmp \low, #0x80000000
    adc \result, \result, \element, lsl #23
    biceq \result, \result, #1
.endm
.macro unpackFactor number, exponent
    mov \exponent, \number, lsr #23
    bic \number, \number, #0xff000000
    orr \number, \number, #0x00800000
.endm

.macro function name
    .align 2
    .global \name
    .hidden \name
    .type \name, %function
\name:
.endm
)");
// clang-format on

#endif

#endif
