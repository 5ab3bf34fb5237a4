// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_CHECK_H
#define KELTRA_FORMATS_XML_CHECK_H

// Warnings of the elements and attributes of a document, each in the same words whatever it describes.

#include <cstddef>

#include "formats/fault.h"

class TiXmlElement;

namespace keltra {

class XmlCheck {
   public:
    // With `hasLines`, the document was given its lines by `parseXmlDocument`.
    XmlCheck(FaultSink &sink, bool hasLines) : sink(sink), hasLines(hasLines) {}

    void unknownElement(const TiXmlElement &element, const char *nearest);
    void unknownAttribute(const TiXmlElement &element, const char *attribute, const char *nearest);
    // Warns of each attribute that is not one of the names, a list with null behind the last.
    void attributes(const TiXmlElement &element, const char *const *names);
    void missing(const TiXmlElement &element, const char *attribute);
    void value(const TiXmlElement &element, const char *attribute, const char *found, const char *expected);
    void unknownValue(const TiXmlElement &element, const char *found, const char *what, const char *nearest);
    // Warns unless the whole text is a number; a missing attribute is reported as missing.
    void integer(const TiXmlElement &element, const char *attribute, long least, long most);
    void real(const TiXmlElement &element, const char *attribute);

   private:
    void tell(const TiXmlElement &element, KTFAULT &fault);

    FaultSink &sink;
    bool hasLines;
};

// The line of an element, from 1; 0 when the document was not given lines.
unsigned int xmlLine(const TiXmlElement &element);

}  // namespace keltra

#endif
