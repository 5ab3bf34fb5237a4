// SPDX-License-Identifier: Zlib
#include "formats/emitter.h"
#include "formats/xml_check.h"
#include "formats/xml_document.h"
#include "tools/info/kinds.h"

#include <tinyxml.h>

#include <algorithm>

namespace keltra::info {

namespace {

// What the engine takes from one attribute. Null for one that is missing, which leaves its value.
Fields valueOf(EmitterValue kind, const char *text) {
    if (!text) return nullptr;
    switch (kind) {
        case EmitterValue::kMaximum:
            return std::max(xmlInteger(text), 0);
        case EmitterValue::kReal:
        case EmitterValue::kSize:
        case EmitterValue::kVector:
            return number(xmlFloat(text, 0.0f));
        case EmitterValue::kText:
            return text;
        default:
            return xmlInteger(text);
    }
}

Fields valueOf(const TiXmlElement &element, EmitterValue kind) {
    XmlNames name = emitterAttributes(kind);
    if (!*nextName(name)) return valueOf(kind, element.Attribute(name));
    Fields values = Fields::array();
    for (; *name; name = nextName(name)) values.push_back(valueOf(kind, element.Attribute(name)));
    return values;
}

void describe(const TiXmlElement &element, const Source &source, Inspection &result, Fields &settings) {
    const EmitterSetting *setting = findEmitterSetting(element.Value());
    if (!setting) return;
    const Fields value = valueOf(element, setting->kind);
    if (setting->kind == EmitterValue::kText && value.is_string())
        addMissing(result, source, value.get<std::string>(), xmlLine(element));
    settings.push_back({{"setting", setting->name}, {"value", value}});
}

}  // namespace

void inspectEmitter(const Source &source, Inspection &result) {
    TiXmlDocument document;
    Fault fault;
    if (!parseXmlDocument(source.bytes, source.size, document, &fault))
        return setTextFlaw(result, source, fault);
    result.good = true;
    result.fields["bytes"] = source.size;
    const Faults faults(result);
    checkEmitter(document);
    const TiXmlElement *root = emitterRoot(document);
    if (!root) return;
    Fields settings = Fields::array();
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement())
        describe(*child, source, result, settings);
    result.fields["settings"] = std::move(settings);
}

}  // namespace keltra::info
