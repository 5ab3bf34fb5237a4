// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_VALUE_H
#define KELTRA_FORMATS_XML_VALUE_H

#include <cstring>

namespace keltra {

// What an attribute holds.
enum class XmlValue : unsigned char {
    kInteger,
    kNumber,   // an integer from 0 to the most particles of an emitter, clamped
    kMaximum,  // an integer of which a negative one counts as 0
    kReal,
    kSize,
    kVector,
    kText,
    kShortText,  // of less than 256 characters
    kSourceFactor,
    kDestinationFactor,
};

// Names one behind the other, each with its zero, and an empty one behind the last.
using XmlNames = const char *;
inline XmlNames nextName(XmlNames name) { return name + std::strlen(name) + 1; }

}  // namespace keltra

#endif
