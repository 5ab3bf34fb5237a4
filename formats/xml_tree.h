// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_TREE_H
#define KELTRA_FORMATS_XML_TREE_H

class TiXmlDocument;

namespace keltra {

// Where the nodes of a text end.
struct XmlEnd {
    int error;     // the parser's number, 0 at the end of the document
    char *at;      // what is wrong; null when that is the whole text
    bool isInTag;  // whether that is a tag; the text then ends behind it
};

// Makes the nodes that the parser makes of a text, tag by tag: its stack does not grow with their depth. A
// `MarkupScan` has found the text to end, and the line of each element. One byte behind the zero at the end
// of the text is written too. May throw std::bad_alloc.
XmlEnd readXmlTree(char *text, const unsigned int *lines, TiXmlDocument &document);

}  // namespace keltra

#endif
