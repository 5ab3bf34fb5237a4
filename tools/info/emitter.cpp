#include "scene/emitter_file.h"

#include <tinyxml.h>

#include <algorithm>
#include <cstring>

#include "formats/xml_document.h"
#include "tools/info/kinds.h"

namespace keltra::info {

namespace {

const EmitterSetting *findSetting(const char *name) {
    for (const EmitterSetting &setting : kEmitterSettings)
        if (std::strcmp(setting.name, name) == 0) return &setting;
    return nullptr;
}

const char *attributesOf(EmitterValue kind) {
    if (kind == EmitterValue::kSize) return "xy";
    return kind == EmitterValue::kVector ? "xyz" : "";
}

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
    const char *components = attributesOf(kind);
    if (!*components) return valueOf(kind, element.Attribute("value"));
    Fields values = Fields::array();
    for (; *components; ++components) {
        const char name[] = {*components, '\0'};
        values.push_back(valueOf(kind, element.Attribute(name)));
    }
    return values;
}

void noteAttributes(const TiXmlElement &element, EmitterValue kind, Inspection &result) {
    const char *components = attributesOf(kind);
    for (const TiXmlAttribute *attribute = element.FirstAttribute(); attribute;
         attribute = attribute->Next()) {
        const std::string name = attribute->Name();
        const bool isComponent = name.size() == 1 && std::strchr(components, name[0]);
        if (*components ? !isComponent : name != "value")
            note(result, "the attribute " + quoted(name) + " of " + quoted(element.Value()) + " is not read");
    }
}

void describe(const TiXmlElement &element, const Source &source, Inspection &result, Fields &settings) {
    const EmitterSetting *setting = findSetting(element.Value());
    if (!setting)
        return note(result, "the element " + quoted(element.Value()) + " is not known and is skipped");
    const Fields value = valueOf(element, setting->kind);
    noteAttributes(element, setting->kind, result);
    const bool isSource = setting->kind == EmitterValue::kSourceFactor;
    const bool isFactor = isSource || setting->kind == EmitterValue::kDestinationFactor;
    if (isFactor && value.is_number() && !isBlendFactor(value.get<int>(), isSource))
        note(result, std::string(setting->name) + " is no blend factor of that side and is skipped");
    if (setting->kind == EmitterValue::kText && value.is_string())
        noteMissing(result, source, "the texture", value.get<std::string>());
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
    const TiXmlElement *root = emitterRoot(document);
    if (!root) return note(result, "the root is not \"emitter\": nothing is loaded");
    Fields settings = Fields::array();
    for (const TiXmlElement *child = root->FirstChildElement(); child; child = child->NextSiblingElement())
        describe(*child, source, result, settings);
    result.fields["settings"] = std::move(settings);
}

}  // namespace keltra::info
