// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VERSION_H
#define KELTRA_VERSION_H

/** @file
 *
 * Versions are MAJOR.MINOR.PATCH. A program runs with every library of the same MAJOR whose MINOR and PATCH
 * are not lower than those that it was built with. */

#include <keltra/export.h>

/** Version of these headers. */
#define KELTRA_VERSION_MAJOR 1
#define KELTRA_VERSION_MINOR 6
#define KELTRA_VERSION_PATCH 6
#define KELTRA_VERSION_STRING "1.6.6"
/** As one number that can be compared: 10606 is 1.6.6. */
#define KELTRA_VERSION_NUMBER \
    (KELTRA_VERSION_MAJOR * 10000 + KELTRA_VERSION_MINOR * 100 + KELTRA_VERSION_PATCH)

/** Version of the library that the program runs with. Both calls are possible before `KELTRA::init`. */
class KT_API KTVERSION {
   public:
    /** As "1.6.6"; a literal. */
    static const char *getString();
    /** As `KELTRA_VERSION_NUMBER`. */
    static int getNumber();
};

#endif
