// SPDX-License-Identifier: Zlib
#include "formats/gui.h"

#include "formats/limits.h"

#include <tinyxml.h>

#include <cstring>

namespace keltra {

const char *const kGuiObjectNames[kGuiObjectCount] = {"window", "button",  "text",    "label",
                                                      "box",    "vslider", "hslider", "font"};
const GuiProperty kGuiProperties[kGuiPropertyCount] = {
    {"name", XmlValue::kShortText, {"value"}},
    {"title", XmlValue::kShortText, {"value"}},
    {"position", XmlValue::kInteger, {"x", "y"}},
    {"size", XmlValue::kInteger, {"width", "height"}},
    {"usefont", XmlValue::kText, {"ref"}},
    {"texture", XmlValue::kText, {"value"}},
    {"kerning", XmlValue::kText, {"value"}},
    {"write", XmlValue::kText, {"value"}},
    {"color", XmlValue::kReal, {"r", "g", "b", "a"}},
    {"kind", XmlValue::kText, {"value"}},
};
const char *const kGuiKinds[kGuiKindCount] = {"normal", "inverted", "switch"};

namespace {

// Most names differ in their first letter.
bool isSame(const char *name, const char *other) { return *name == *other && std::strcmp(name, other) == 0; }

}  // namespace

int guiObject(const char *element) {
    for (int i = 0; i < kGuiObjectCount; ++i)
        if (isSame(kGuiObjectNames[i], element)) return i;
    return -1;
}

int guiProperty(const char *element) {
    for (int i = 0; i < kGuiPropertyCount; ++i)
        if (isSame(kGuiProperties[i].name, element)) return i;
    return -1;
}

// Elements only: a comment with the text "root" has that name too.
const TiXmlElement *guiRoot(const TiXmlDocument &document) { return document.FirstChildElement("root"); }

Fault guiRootMissing() {
    Fault fault;
    refuse(&fault, 0, KT_TEXT("root"), KT_TEXT("the document has no element of this name"));
    return fault;
}

}  // namespace keltra
