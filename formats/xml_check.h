// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_CHECK_H
#define KELTRA_FORMATS_XML_CHECK_H

// Warnings of the elements and attributes of a document, each in the same words whatever it describes. They
// are reported without a call of their own.

#include <keltra/fault.h>

class TiXmlDocument;
class TiXmlElement;
class TiXmlNode;

namespace keltra {

// Warns of what has no effect in the elements nested in `top` and, unless it is the root, in `top` itself.
// With `hasLines`, the document was given its lines by `parseXmlDocument`.
void checkGui(const TiXmlNode &top, bool hasLines);
// Warns of what has no effect in a document with lines, whatever its root is.
void checkEmitter(const TiXmlDocument &document);

// Of the first object beyond the limit; it has no line.
KTFAULT &tooManyObjects();

// The line of an element, from 1; 0 when the document was not given lines.
unsigned int xmlLine(const TiXmlElement &element);

}  // namespace keltra

#endif
