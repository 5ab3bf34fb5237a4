// SPDX-License-Identifier: Zlib
#include "formats/gui.h"

#include "formats/limits.h"

#include <tinyxml.h>

#include <cstring>

namespace keltra {

const char *const kGuiObjectNames[kGuiObjectCount] = {"window", "button",  "text",    "label",
                                                      "box",    "vslider", "hslider", "font"};
const GuiProperty kGuiProperties[kGuiPropertyCount] = {
    {"name", XmlValue::kShortText, "value\0"},  {"title", XmlValue::kShortText, "value\0"},
    {"position", XmlValue::kInteger, "x\0y\0"}, {"size", XmlValue::kInteger, "width\0height\0"},
    {"usefont", XmlValue::kText, "ref\0"},      {"texture", XmlValue::kText, "value\0"},
    {"kerning", XmlValue::kText, "value\0"},    {"write", XmlValue::kText, "value\0"},
    {"color", XmlValue::kReal, "r\0g\0b\0a\0"}, {"kind", XmlValue::kText, "value\0"},
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

int guiKind(const char *text) {
    for (int i = 0; i < kGuiKindCount; ++i)
        if (std::strcmp(kGuiKinds[i], text) == 0) return i;
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
