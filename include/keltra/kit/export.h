// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_EXPORT_H
#define KELTRA_KIT_EXPORT_H

// KTKIT_API marks what leaves the kit's library, as KT_API does for the engine's.
#if defined(_WIN32)
#if defined(KELTRA_KIT_BUILDING)
#define KTKIT_API __declspec(dllexport)
#else
#define KTKIT_API __declspec(dllimport)
#endif
#else
#define KTKIT_API __attribute__((visibility("default")))
#endif

#endif
