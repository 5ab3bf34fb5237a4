#ifndef KELTRA_GUI_GUI_FILE_H
#define KELTRA_GUI_GUI_FILE_H

// Builds interfaces from their descriptions, and what it knows of them, for tools that look at them.

class KTNODE;
class TiXmlDocument;
class TiXmlElement;
class TiXmlNode;

namespace keltra {

constexpr unsigned int kGuiAttributes = 4;  // of a property, at most

// The part of a document that is read; null for none, which loads nothing.
const TiXmlElement *guiRoot(const TiXmlDocument &document);
// True for an element that makes a widget or a font.
bool isGuiObject(const char *element);
// Names of the attributes of a property, null behind the last; null for any other element.
const char *const *guiAttributes(const char *element);

// A new node of that name with the widgets of the description below it; null when out of memory.
KTNODE *buildInterface(const TiXmlElement &description, const char *name);
// Makes what an element asks for, and all that is nested in it, below `parent`. Nothing for null and for
// nodes that are no elements.
void buildWidgets(KTNODE *parent, const TiXmlNode *node);

}  // namespace keltra

#endif
