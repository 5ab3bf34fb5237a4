// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_HIDDEN_H
#define KELTRA_FOUNDATION_HIDDEN_H

// A table that is defined in another source of the library: read directly, not through the list of addresses
// that a program may replace.
#ifdef _WIN32
#define KT_HIDDEN
#else
#define KT_HIDDEN [[gnu::visibility("hidden")]]
#endif

#endif
