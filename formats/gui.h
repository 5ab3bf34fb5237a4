// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_GUI_H
#define KELTRA_FORMATS_GUI_H

// What interface descriptions are made of: the names of objects, properties, attributes and kinds.

#include "formats/fault.h"
#include "formats/xml_value.h"
#include "foundation/hidden.h"

#include <cstddef>

class TiXmlDocument;
class TiXmlElement;
class TiXmlNode;

namespace keltra {

enum GuiObject { kGuiWindow, kGuiButton, kGuiText, kGuiLabel, kGuiBox, kGuiVSlider, kGuiHSlider, kGuiFont };
constexpr int kGuiObjectCount = 8;
KT_HIDDEN extern const char *const kGuiObjectNames[kGuiObjectCount];

enum GuiPropertyName {
    kGuiName,
    kGuiTitle,
    kGuiPosition,
    kGuiSize,
    kGuiUseFont,
    kGuiTexture,
    kGuiKerning,
    kGuiWrite,
    kGuiColor,
    kGuiKind
};
constexpr int kGuiPropertyCount = 10;

struct GuiProperty {
    const char *name;
    XmlValue kind;
    XmlNames attributes;  // without all of them it is skipped
};
KT_HIDDEN extern const GuiProperty kGuiProperties[kGuiPropertyCount];

constexpr int kGuiKindCount = 3;
KT_HIDDEN extern const char *const kGuiKinds[kGuiKindCount];

// Index of the name; -1 for another one.
int guiObject(const char *element);
int guiProperty(const char *element);
int guiKind(const char *text);

// The part of a document that is read; null for none, which loads nothing.
const TiXmlElement *guiRoot(const TiXmlDocument &document);
// The reason why a document without it is refused.
Fault guiRootMissing();

}  // namespace keltra

#endif
