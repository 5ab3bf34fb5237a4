// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXPORT_H
#define KELTRA_EXPORT_H

// KT_API marks what leaves the shared library; everything else in it stays hidden.
#if defined(_WIN32)
#if defined(KELTRA_BUILDING)
#define KT_API __declspec(dllexport)
#else
#define KT_API __declspec(dllimport)
#endif
#else
#define KT_API __attribute__((visibility("default")))
#endif

#endif
