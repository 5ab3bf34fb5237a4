// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_VALUE_H
#define KELTRA_FORMATS_XML_VALUE_H

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

}  // namespace keltra

#endif
