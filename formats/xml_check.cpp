// SPDX-License-Identifier: Zlib
#include "formats/xml_check.h"

#include "formats/emitter.h"
#include "formats/fault.h"
#include "formats/gui.h"
#include "formats/limits.h"
#include "formats/xml_document.h"

#include <tinyxml.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace keltra {

namespace {

bool isOneOf(XmlNames name, const char *wanted) {
    while (*name && std::strcmp(name, wanted) != 0) name = nextName(name);
    return *name;
}

// Whether the attributes are those of the names, in their order, as nearly always.
bool isInOrder(const TiXmlAttribute *attribute, XmlNames name) {
    for (; attribute && *name; attribute = attribute->Next(), name = nextName(name))
        if (std::strcmp(attribute->Name(), name) != 0) return false;
    return !attribute && !*name;
}

bool isReal(const char *text) {
    if (isXmlPlainFloat(text)) return true;
    float number;
    int length = 0;
    return std::sscanf(text, "%f%n", &number, &length) == 1 && number - number == 0.0f && !text[length];
}

// What is wrong with the value; nothing when it is of the kind. The range is one of integers.
FaultText flawOf(const char *text, XmlValue kind, long least, long most) {
    switch (kind) {
        case XmlValue::kReal:
        case XmlValue::kSize:
        case XmlValue::kVector:
            return isReal(text) ? FaultText() : KT_TEXT("a number");
        case XmlValue::kShortText:
            return std::strlen(text) < kNameSize ? FaultText() : KT_TEXT("at most 255 characters");
        case XmlValue::kText:
            return {};
        default:
            break;
    }
    const FaultText flaw = integerFlaw(text, least, most);
    const bool isSource = kind == XmlValue::kSourceFactor;
    if (flaw != FaultText() || (!isSource && kind != XmlValue::kDestinationFactor)) return flaw;
    return isBlendFactor(xmlInteger(text), isSource) ? flaw : KT_TEXT("a blend factor of that side");
}

// With `hasLines`, the elements know their lines.
class XmlCheck {
   public:
    explicit XmlCheck(bool hasLines) : hasLines(hasLines) {}

    void unknown(const TiXmlElement &element, const char *found, const char *nearest, FaultText what,
                 const char *whole) const;
    void unknownElement(const TiXmlElement &element, const char *nearest) const;
    // Warns of each attribute that is not one of the names, of those that are missing, and of values that are
    // not of the kind.
    void attributes(const TiXmlElement &element, XmlNames names, XmlValue kind) const;

    void tell(const TiXmlElement &element, KTFAULT &fault) const;

   private:
    void value(const TiXmlElement &element, const char *attribute, const char *text, XmlValue kind) const;

    const bool hasLines;
};

void XmlCheck::tell(const TiXmlElement &element, KTFAULT &fault) const {
    if (hasLines) fault.line = xmlLine(element);
    warnFault({}, fault);
}

void XmlCheck::unknown(const TiXmlElement &element, const char *found, const char *nearest, FaultText what,
                       const char *whole) const {
    tell(element, unknownName(what, whole, found, nearest));
}

void XmlCheck::unknownElement(const TiXmlElement &element, const char *nearest) const {
    const TiXmlNode *parent = element.Parent();
    const bool isInside = parent && parent->ToElement();
    unknown(element, element.Value(), nearest,
            isInside ? KT_TEXT("element of `%s`") : KT_TEXT("root element"), isInside ? parent->Value() : "");
}

void XmlCheck::attributes(const TiXmlElement &element, XmlNames names, XmlValue kind) const {
    const TiXmlAttribute *attribute = element.FirstAttribute();
    if (isInOrder(attribute, names)) {
        for (; attribute; attribute = attribute->Next())
            value(element, attribute->Name(), attribute->Value(), kind);
        return;
    }
    for (; attribute; attribute = attribute->Next()) {
        if (isOneOf(names, attribute->Name())) continue;
        NearestName nearest(attribute->Name());
        for (XmlNames name = names; *name; name = nextName(name)) nearest.offer(name);
        unknown(element, attribute->Name(), nearest.name(), KT_TEXT("attribute of `%s`"), element.Value());
    }
    for (; *names; names = nextName(names)) {
        const char *text = element.Attribute(names);
        if (text) {
            value(element, names, text, kind);
            continue;
        }
        KTFAULT &fault = newFault(KT_FAULT_MISSING);
        setFaultText(fault.field, element.Value());
        writeFaultText(fault.expected, KT_TEXT("attribute `%s`"), names);
        tell(element, fault);
    }
}

void XmlCheck::value(const TiXmlElement &element, const char *attribute, const char *text,
                     XmlValue kind) const {
    const bool isNumber = kind == XmlValue::kNumber, isMaximum = kind == XmlValue::kMaximum;
    const long least = isNumber || isMaximum ? 0 : INT_MIN, most = isNumber ? long{kMaxParticles} : INT_MAX;
    const FaultText expected = flawOf(text, kind, least, most);
    if (expected == FaultText()) return;
    KTFAULT &fault = newFault(KT_FAULT_VALUE);
    std::snprintf(fault.field, sizeof fault.field, "%s %s", element.Value(), attribute);
    setFaultText(fault.found, text);
    writeFaultText(fault.expected, expected, least, most);
    tell(element, fault);
}

class GuiCheck {
   public:
    explicit GuiCheck(bool hasLines) : check(hasLines) {}

    void element(const TiXmlElement &element) const {
        const int property = guiProperty(element.Value());
        if (property >= 0) {
            check.attributes(element, kGuiProperties[property].attributes, kGuiProperties[property].kind);
            const char *kind = property == kGuiKind ? element.Attribute("value") : nullptr;
            if (kind) checkKind(element, kind);
        } else if (guiObject(element.Value()) >= 0) {
            checkObject(element);
        } else {
            checkUnknown(element);
        }
    }

   private:
    // Objects have no attributes: nested elements hold their values.
    void checkObject(const TiXmlElement &element) const {
        for (const TiXmlAttribute *attribute = element.FirstAttribute(); attribute;
             attribute = attribute->Next()) {
            NearestName nearest(attribute->Name());
            nearest.offerAll(kGuiProperties, kGuiPropertyCount);
            char tag[32];
            std::snprintf(tag, sizeof tag, "<%s>", nearest.name());
            const bool isElement = std::strcmp(nearest.name(), attribute->Name()) == 0;
            check.unknown(element, attribute->Name(), isElement ? tag : nearest.name(),
                          KT_TEXT("attribute of `%s`"), element.Value());
        }
    }

    void checkUnknown(const TiXmlElement &element) const {
        NearestName nearest(element.Value());
        nearest.offerAll(kGuiObjectNames, kGuiObjectCount);
        nearest.offerAll(kGuiProperties, kGuiPropertyCount);
        check.unknownElement(element, nearest.name());
    }

    void checkKind(const TiXmlElement &element, const char *text) const {
        for (const char *kind : kGuiKinds)
            if (std::strcmp(kind, text) == 0) return;
        NearestName nearest(text);
        nearest.offerAll(kGuiKinds, kGuiKindCount);
        check.unknown(element, text, nearest.name(), KT_TEXT("kind"), "");
    }

    const XmlCheck check;
};

void checkElement(const XmlCheck &check, const TiXmlElement &element) {
    if (const EmitterSetting *setting = findEmitterSetting(element.Value()))
        return check.attributes(element, emitterAttributes(setting->kind), setting->kind);
    NearestName nearest(element.Value());
    for (const EmitterSetting &known : kEmitterSettings) nearest.offer(known.name);
    check.unknownElement(element, nearest.name());
}

}  // namespace

unsigned int xmlLine(const TiXmlElement &element) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(element.GetUserData()));
}

void warnOfObjects(const TiXmlElement &element, bool hasLines) {
    XmlCheck(hasLines).tell(element, beyondLimit(KT_TEXT("objects"), KT_TEXT("more than %u"), kGuiObjects,
                                                 KT_TEXT("the others are left out")));
}

// Follows the links of the document instead of recursing: the device's stack is small.
void checkGui(const TiXmlNode &top, bool hasLines) {
    const GuiCheck check(hasLines);
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

void checkEmitter(const TiXmlDocument &document) {
    const XmlCheck check(true);
    const TiXmlElement *root = emitterRoot(document);
    if (!root) {
        if (document.RootElement()) check.unknownElement(*document.RootElement(), kEmitterRoot);
        return;
    }
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement())
        checkElement(check, *child);
}

}  // namespace keltra
