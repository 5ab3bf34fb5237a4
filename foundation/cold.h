// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_COLD_H
#define KELTRA_FOUNDATION_COLD_H

// KELTRA_COLD before the definition of a function that no frame calls, in a file that is built fast: it is
// built small, on ARM with instructions of two bytes, which the assembly in math/fixed.h is not of: not for
// functions that convert to fixed point.
#if defined(__arm__) && defined(__GNUC__) && !defined(__clang__)
#define KELTRA_COLD __attribute__((cold, target("thumb")))
#elif defined(__GNUC__)
#define KELTRA_COLD __attribute__((cold))
#else
#define KELTRA_COLD
#endif

#endif
