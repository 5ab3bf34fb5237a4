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

// Whether the attributes are those of the names, in their order, as nearly always.
bool isInOrder(const TiXmlAttribute *attribute, XmlNames name) {
    for (; attribute && *name; attribute = attribute->Next(), name = nextName(name))
        if (std::strcmp(attribute->Name(), name) != 0) return false;
    return !attribute && !*name;
}

// The one behind `node` in the document's order, within `top`; null at the end. Follows the links of the
// document instead of recursing: the device's stack is small.
const TiXmlNode *nextNode(const TiXmlNode *node, const TiXmlNode *top) {
    if (node->FirstChild()) return node->FirstChild();
    while (node != top && !node->NextSibling()) node = node->Parent();
    return node == top ? nullptr : node->NextSibling();
}

// Checks one element after the other. With `hasLines`, they know their lines.
class XmlCheck {
   public:
    explicit XmlCheck(bool hasLines) : hasLines(hasLines), element(nullptr) {}

    void gui(const TiXmlElement &checked);
    void emitter(const TiXmlElement &checked);
    void emitterRoot(const TiXmlElement &root);

   private:
    void unknownElement(const NearestName &name) const;
    KTFAULT &unknownAttribute(const NearestName &name) const {
        return unknownName(KT_TEXT("attribute of `%s`"), element->Value(), name);
    }
    void guiObjectAttributes() const;
    void guiKind() const;
    // Warns of each attribute that is not one of the names, of those that are missing, and of values that are
    // not of the kind.
    void attributes(XmlNames names, XmlValue kind) const;
    void value(const char *attribute, const char *text, XmlValue kind) const;
    void tell(KTFAULT &fault) const;

    const bool hasLines;
    const TiXmlElement *element;
};

void XmlCheck::tell(KTFAULT &fault) const {
    if (hasLines) fault.line = xmlLine(*element);
    warnFault({}, fault);
}

void XmlCheck::unknownElement(const NearestName &name) const {
    const TiXmlNode *parent = element->Parent();
    const bool isInside = parent && parent->ToElement();
    tell(unknownName(isInside ? KT_TEXT("element of `%s`") : KT_TEXT("root element"),
                     isInside ? parent->Value() : nullptr, name));
}

void XmlCheck::attributes(XmlNames names, XmlValue kind) const {
    const TiXmlAttribute *attribute = element->FirstAttribute();
    if (isInOrder(attribute, names)) {
        for (; attribute; attribute = attribute->Next()) value(attribute->Name(), attribute->Value(), kind);
        return;
    }
    for (; attribute; attribute = attribute->Next()) {
        NearestName nearest(attribute->Name());
        for (XmlNames name = names; *name; name = nextName(name)) nearest.offer(name);
        if (!nearest.isKnown()) tell(unknownAttribute(nearest));
    }
    for (; *names; names = nextName(names)) {
        const char *text = element->Attribute(names);
        if (text) {
            value(names, text, kind);
            continue;
        }
        KTFAULT &fault = newFault(KT_FAULT_MISSING, {}, {}, KT_TEXT("attribute `%s`"), names);
        setFaultText(fault.field, element->Value());
        tell(fault);
    }
}

void XmlCheck::value(const char *attribute, const char *text, XmlValue kind) const {
    FaultText flaw = {};
    long least = 0, most = 0;  // of an integer
    switch (kind) {
        case XmlValue::kReal:
        case XmlValue::kSize:
        case XmlValue::kVector:
            if (!isXmlFloat(text)) flaw = KT_TEXT("a number");
            break;
        case XmlValue::kShortText:
            if (std::strlen(text) >= kNameSize) flaw = KT_TEXT("at most 255 characters");
            break;
        case XmlValue::kText:
            break;
        default:
            most = kind == XmlValue::kNumber ? kMaxParticles : INT_MAX;
            if (kind != XmlValue::kNumber && kind != XmlValue::kMaximum) least = INT_MIN;
            flaw = integerFlaw(text, least, most);
            if (flaw == FaultText() && kind >= XmlValue::kSourceFactor &&
                !isBlendFactor(xmlInteger(text), kind == XmlValue::kSourceFactor))
                flaw = KT_TEXT("a blend factor of that side");
    }
    if (flaw == FaultText()) return;
    KTFAULT &fault = newFault(KT_FAULT_VALUE, {}, {}, flaw, least, most);
    std::snprintf(fault.field, sizeof fault.field, "%s %s", element->Value(), attribute);
    setFaultText(fault.found, text);
    tell(fault);
}

void XmlCheck::gui(const TiXmlElement &checked) {
    element = &checked;
    const char *const name = checked.Value();
    const int property = guiProperty(name);
    if (property >= 0) {
        attributes(kGuiProperties[property].attributes, kGuiProperties[property].kind);
        if (property == kGuiKind) guiKind();
    } else if (guiObject(name) >= 0) {
        guiObjectAttributes();
    } else {
        NearestName nearest(name);
        nearest.offerAll(kGuiObjectNames, kGuiObjectCount);
        nearest.offerAll(kGuiProperties, kGuiPropertyCount);
        unknownElement(nearest);
    }
}

// Objects have no attributes: nested elements hold their values.
void XmlCheck::guiObjectAttributes() const {
    for (const TiXmlAttribute *attribute = element->FirstAttribute(); attribute;
         attribute = attribute->Next()) {
        NearestName nearest(attribute->Name());
        nearest.offerAll(kGuiProperties, kGuiPropertyCount);
        KTFAULT &fault = unknownAttribute(nearest);
        if (nearest.isKnown()) std::snprintf(fault.expected, sizeof fault.expected, "<%s>", nearest.name());
        tell(fault);
    }
}

void XmlCheck::guiKind() const {
    const char *kind = element->Attribute("value");
    if (!kind || keltra::guiKind(kind) >= 0) return;
    NearestName nearest(kind);
    nearest.offerAll(kGuiKinds, kGuiKindCount);
    tell(unknownName(KT_TEXT("kind"), nullptr, nearest));
}

void XmlCheck::emitter(const TiXmlElement &checked) {
    element = &checked;
    if (const EmitterSetting *setting = findEmitterSetting(checked.Value()))
        return attributes(emitterAttributes(setting->kind), setting->kind);
    NearestName nearest(checked.Value());
    for (const EmitterSetting &known : kEmitterSettings) nearest.offer(known.name);
    unknownElement(nearest);
}

void XmlCheck::emitterRoot(const TiXmlElement &root) {
    element = &root;
    NearestName nearest(root.Value());
    nearest.take(kEmitterRoot);
    unknownElement(nearest);
}

}  // namespace

unsigned int xmlLine(const TiXmlElement &element) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(element.GetUserData()));
}

KTFAULT &tooManyObjects() {
    return newFault(KT_FAULT_LIMIT, KT_TEXT("objects"), KT_TEXT("more than %u"),
                    KT_TEXT("the others are left out"), kGuiObjects);
}

void checkGui(const TiXmlNode &top, bool hasLines) {
    XmlCheck check(hasLines);
    for (const TiXmlNode *node = &top; node; node = nextNode(node, &top)) {
        const TiXmlElement *element = node->ToElement();
        const bool isRoot = element && node == &top && std::strcmp(element->Value(), "root") == 0;
        if (element && !isRoot) check.gui(*element);
    }
}

void checkEmitter(const TiXmlDocument &document) {
    XmlCheck check(true);
    const TiXmlElement *root = emitterRoot(document);
    if (!root) {
        if (document.RootElement()) check.emitterRoot(*document.RootElement());
        return;
    }
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement())
        check.emitter(*child);
}

}  // namespace keltra
