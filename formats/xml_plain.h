// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_PLAIN_H
#define KELTRA_FORMATS_XML_PLAIN_H

class TiXmlDocument;

namespace keltra {

// Makes the nodes of a document that has nothing but elements, attributes, comments and blanks, in a third of
// the instructions that the parser takes. False for any other text, with faults or without: the parser reads
// it, and the document is to be cleared first. The nodes are those that the parser makes of the text without
// comments; elements know their lines. `text` has a zero byte at `end`, and is lost. May throw
// std::bad_alloc.
bool readPlainXml(char *text, const char *end, TiXmlDocument &document);

}  // namespace keltra

#endif
