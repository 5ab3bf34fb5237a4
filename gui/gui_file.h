#ifndef KELTRA_GUI_GUI_FILE_H
#define KELTRA_GUI_GUI_FILE_H

// What the reader of interface descriptions knows, for tools that look at them.

class TiXmlDocument;
class TiXmlElement;

namespace keltra {

constexpr unsigned int kGuiAttributes = 4;  // of a property, at most
constexpr unsigned int kGuiObjects = 8192;  // of a file; those beyond are left out

// The part of a document that is read; null for none, which loads nothing.
const TiXmlElement *guiRoot(const TiXmlDocument &document);
// True for an element that makes a widget or a font.
bool isGuiObject(const char *element);
// Names of the attributes of a property, null behind the last; null for any other element.
const char *const *guiAttributes(const char *element);

}  // namespace keltra

#endif
