// SPDX-License-Identifier: Zlib
#include "formats/xml_check.h"

#include "formats/plain_integer.h"
#include "formats/xml_document.h"

#include <tinyxml.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace keltra {

namespace {

KTFAULT warning(KT_FAULT_CODE code, const char *found, const char *expected) {
    KTFAULT fault = newFault(code);
    fault.severity = KT_FAULT_WARNING;
    setFaultText(fault.found, found);
    setFaultText(fault.expected, expected);
    return fault;
}

// "attribute of `box`".
template <std::size_t kSize>
void setMember(char (&field)[kSize], const char *what, const char *whole) {
    if (kFaultTexts) std::snprintf(field, sizeof field, "%s of `%s`", what, whole);
}

bool isOneOf(const char *const *names, const char *wanted) {
    for (; *names; ++names)
        if (**names == *wanted && std::strcmp(*names, wanted) == 0) return true;
    return false;
}

}  // namespace

unsigned int xmlLine(const TiXmlElement &element) {
    return static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(element.GetUserData()));
}

void XmlCheck::tell(const TiXmlElement &element, KTFAULT &fault) {
    if (hasLines) fault.line = xmlLine(element);
    sink.warn(fault);
}

void XmlCheck::unknownElement(const TiXmlElement &element, const char *nearest) {
    KTFAULT fault = warning(KT_FAULT_UNKNOWN, element.Value(), nearest);
    const TiXmlNode *parent = element.Parent();
    const bool isInside = parent && parent->ToElement();
    if (isInside)
        setMember(fault.field, "element", parent->Value());
    else
        setFaultText(fault.field, faultText("root element"));
    tell(element, fault);
}

void XmlCheck::unknownAttribute(const TiXmlElement &element, const char *attribute, const char *nearest) {
    KTFAULT fault = warning(KT_FAULT_UNKNOWN, attribute, nearest);
    setMember(fault.field, "attribute", element.Value());
    tell(element, fault);
}

void XmlCheck::attributes(const TiXmlElement &element, const char *const *names) {
    for (const TiXmlAttribute *attribute = element.FirstAttribute(); attribute;
         attribute = attribute->Next()) {
        if (isOneOf(names, attribute->Name())) continue;
        NearestName nearest(attribute->Name());
        for (const char *const *name = names; *name; ++name) nearest.offer(*name);
        unknownAttribute(element, attribute->Name(), nearest.name());
    }
}

void XmlCheck::missing(const TiXmlElement &element, const char *attribute) {
    KTFAULT fault = warning(KT_FAULT_MISSING, "", "");
    setFaultText(fault.field, element.Value());
    setExpected(fault, kFaultTexts ? "attribute `%s`" : "%s", attribute);
    tell(element, fault);
}

void XmlCheck::value(const TiXmlElement &element, const char *attribute, const char *found,
                     const char *expected) {
    KTFAULT fault = warning(KT_FAULT_VALUE, found, expected);
    std::snprintf(fault.field, sizeof fault.field, "%s %s", element.Value(), attribute);
    tell(element, fault);
}

void XmlCheck::unknownValue(const TiXmlElement &element, const char *found, const char *what,
                            const char *nearest) {
    KTFAULT fault = warning(KT_FAULT_UNKNOWN, found, nearest);
    setFaultText(fault.field, faultText(what));
    tell(element, fault);
}

void XmlCheck::integer(const TiXmlElement &element, const char *attribute, long least, long most) {
    const char *text = element.Attribute(attribute);
    if (!text) return missing(element, attribute);
    long plain;
    if (plainInteger(text, plain) && plain >= least && plain <= most) return;
    char *end = nullptr;
    errno = 0;
    const long number = std::strtol(text, &end, 10);
    if (end == text || *end) return value(element, attribute, text, faultText("a whole number"));
    if (errno == 0 && number >= least && number <= most) return;
    char range[64];
    std::snprintf(range, sizeof range, "%ld to %ld", least, most);
    value(element, attribute, text, range);
}

void XmlCheck::real(const TiXmlElement &element, const char *attribute) {
    const char *text = element.Attribute(attribute);
    if (!text) return missing(element, attribute);
    float number;
    if (xmlPlainFloat(text, number)) return;
    int length = 0;
    const bool isNumber = std::sscanf(text, "%f%n", &number, &length) == 1 && number - number == 0.0f;
    if (!isNumber || text[length]) value(element, attribute, text, faultText("a number"));
}

}  // namespace keltra
