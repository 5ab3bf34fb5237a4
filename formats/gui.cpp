// SPDX-License-Identifier: Zlib
#include "formats/gui.h"

#include "formats/limits.h"
#include "formats/xml_check.h"

#include <tinyxml.h>

#include <climits>
#include <cstdio>
#include <cstring>

namespace keltra {

const char *const kGuiObjectNames[kGuiObjectCount] = {"window", "button",  "text",    "label",
                                                      "box",    "vslider", "hslider", "font"};
const GuiProperty kGuiProperties[kGuiPropertyCount] = {
    {"name", {"value"}},           {"title", {"value"}}, {"position", {"x", "y"}},
    {"size", {"width", "height"}}, {"usefont", {"ref"}}, {"texture", {"value"}},
    {"kerning", {"value"}},        {"write", {"value"}}, {"color", {"r", "g", "b", "a"}},
    {"kind", {"value"}},
};
const char *const kGuiKinds[kGuiKindCount] = {"normal", "inverted", "switch"};

namespace {

// Most names differ in their first letter.
bool isSame(const char *name, const char *other) { return *name == *other && std::strcmp(name, other) == 0; }

class GuiCheck {
   public:
    GuiCheck(FaultSink &sink, bool hasLines) : check(sink, hasLines) {}

    void element(const TiXmlElement &element) {
        const int property = guiProperty(element.Value());
        if (property >= 0)
            checkProperty(element, kGuiProperties[property], property);
        else if (guiObject(element.Value()) >= 0)
            checkObject(element);
        else
            checkUnknown(element);
    }

   private:
    // Objects have no attributes: nested elements hold their values.
    void checkObject(const TiXmlElement &element) {
        for (const TiXmlAttribute *attribute = element.FirstAttribute(); attribute;
             attribute = attribute->Next()) {
            NearestName nearest(attribute->Name());
            for (const GuiProperty &property : kGuiProperties) nearest.offer(property.name);
            char tag[32];
            std::snprintf(tag, sizeof tag, "<%s>", nearest.name());
            const bool isElement = std::strcmp(nearest.name(), attribute->Name()) == 0;
            check.unknownAttribute(element, attribute->Name(), isElement ? tag : nearest.name());
        }
    }

    void checkUnknown(const TiXmlElement &element) {
        NearestName nearest(element.Value());
        for (const char *name : kGuiObjectNames) nearest.offer(name);
        for (const GuiProperty &property : kGuiProperties) nearest.offer(property.name);
        check.unknownElement(element, nearest.name());
    }

    void checkProperty(const TiXmlElement &element, const GuiProperty &property, int name) {
        check.attributes(element, property.attributes);
        for (const char *const *attribute = property.attributes; *attribute; ++attribute)
            checkValue(element, *attribute, name);
    }

    void checkValue(const TiXmlElement &element, const char *attribute, int name) {
        const char *text = element.Attribute(attribute);
        if (!text) return check.missing(element, attribute);
        if (name == kGuiPosition || name == kGuiSize)
            return check.integer(element, attribute, INT_MIN, INT_MAX);
        if (name == kGuiColor) return check.real(element, attribute);
        if (name == kGuiKind) return checkKind(element, text);
        const bool isShort = name == kGuiName || name == kGuiTitle;
        if (isShort && std::strlen(text) >= kNameSize)
            check.value(element, attribute, text, faultText("at most 255 characters"));
    }

    void checkKind(const TiXmlElement &element, const char *text) {
        NearestName nearest(text);
        for (const char *kind : kGuiKinds) {
            if (std::strcmp(kind, text) == 0) return;
            nearest.offer(kind);
        }
        check.unknownValue(element, text, "kind", nearest.name());
    }

    XmlCheck check;
};

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
    refuse(&fault, 0, "root", "the document has no element of this name");
    return fault;
}

KTFAULT tooManyObjects(const TiXmlElement &element, bool hasLines) {
    KTFAULT fault = newFault(KT_FAULT_LIMIT);
    fault.severity = KT_FAULT_WARNING;
    setFaultText(fault.field, faultText("objects"));
    if (kFaultTexts) std::snprintf(fault.found, sizeof fault.found, "more than %u", kGuiObjects);
    setFaultText(fault.expected, faultText("the others are left out"));
    if (hasLines) fault.line = xmlLine(element);
    return fault;
}

// Follows the links of the document instead of recursing: the device's stack is small.
void checkGui(const TiXmlNode &top, FaultSink &sink, bool hasLines) {
    GuiCheck check(sink, hasLines);
    for (const TiXmlNode *node = &top; node;) {
        const TiXmlElement *element = node->ToElement();
        const bool isRoot = element && node == &top && std::strcmp(element->Value(), "root") == 0;
        if (element && !isRoot) check.element(*element);
        if (node->FirstChild()) {
            node = node->FirstChild();
            continue;
        }
        while (node != &top && !node->NextSibling()) node = node->Parent();
        node = node == &top ? nullptr : node->NextSibling();
    }
}

}  // namespace keltra
