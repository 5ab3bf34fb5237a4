// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_LIMITS_H
#define KELTRA_FORMATS_LIMITS_H

// Every limit of the engine and its files, defined once; that of identifiers is in foundation/identifier.h.
// The exported constants are asserted to be equal in the sources of their classes; the tools take theirs from
// here, and messages print them.

#include "foundation/identifier.h"

#include <cstddef>

namespace keltra {

constexpr std::size_t kNameSize = 256;     // of a name or a path, with its end
constexpr unsigned int kMaxCount = 65535;  // what a count of 16 bits in a file can hold

// Scenes.
// The walks keep their path in an array of this length, since the device's stack is 64 KB.
constexpr unsigned int kMaxTreeDepth = 256;
constexpr unsigned int kMaxSkinBones = 100;  // that influences can address
// A bone takes a byte of the file, when its name is empty, and 300 in memory: more bones need a larger file.
constexpr std::size_t kBonesOfAnyScene = 4096;
constexpr std::size_t kSceneBytesPerBone = 8;
constexpr unsigned int kMaxSkins = 16;          // that a frame draws
constexpr unsigned int kMaxElements = 1024;     // that a frame draws
constexpr unsigned int kMaxTextureLevels = 16;  // of a material, and channels

// Animations.
constexpr unsigned int kMaxAnimBones = 128;
constexpr unsigned int kMaxAnimFrames = 1024;

// Textures and films.
constexpr unsigned int kMaxTextureSize = 512;    // pixels in either direction
constexpr unsigned int kVideoMemory = 8u << 20;  // bytes of all textures that are loaded at a time

// Emitters.
constexpr unsigned int kMaxParticles = 512;

// XML. Nested elements are released by destructors that call one another, and the device's stack is 64 KB;
// the parser looks each attribute up among the element's others; and every tag costs it some hundred bytes.
constexpr long kMaxXmlBytes = 4L << 20;
constexpr unsigned int kMaxXmlNesting = 64;
constexpr unsigned int kMaxXmlAttributes = 64;
constexpr unsigned int kMaxXmlTags = 1u << 17;
// A window takes four identifiers and some ten kilobytes; of a larger file the first ones are loaded.
constexpr unsigned int kGuiObjects = 8192;

// Texts of keys and values.
constexpr std::size_t kLineSize = 256;  // of a line, with its end

}  // namespace keltra

#endif
