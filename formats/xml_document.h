// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_DOCUMENT_H
#define KELTRA_FORMATS_XML_DOCUMENT_H

#include "formats/fault.h"
#include "formats/limits.h"

#include <cstddef>

class TiXmlDocument;

namespace keltra {

// The one way in which documents reach the parser: both measure the text first and are false, with the
// document empty, for a file that cannot be read, text beyond a limit, and text that is not XML.
// Declarations, comments and blanks between tags are skipped, and text is taken as bytes whatever encoding
// they name. `fault`, which may be null, receives where in `bytes` the text is wrong; `scope` reports why a
// file cannot be read. The elements of a document that is parsed know their lines (`xmlLine`).
bool loadXmlDocument(const char *path, TiXmlDocument &document, FaultScope *scope = nullptr);
bool parseXmlDocument(const char *bytes, std::size_t size, TiXmlDocument &document, Fault *fault = nullptr);

// `atoi` with a defined result for every text: numbers beyond the type are clamped, and null is 0.
int xmlInteger(const char *text);
// What `sscanf` reads with "%f"; `otherwise` when it reads nothing, infinity or not-a-number, and for null.
// True for digits, with a minus sign and a point at most, that a float division gives as `sscanf` would.
bool xmlPlainFloat(const char *text, float &value);
bool isXmlPlainFloat(const char *text);
float xmlFloat(const char *text, float otherwise);
// Whether the whole text is a finite number, as "%f" reads it.
bool isXmlFloat(const char *text);

}  // namespace keltra

#endif
