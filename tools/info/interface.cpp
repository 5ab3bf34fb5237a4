// SPDX-License-Identifier: Zlib
#include "formats/gui.h"
#include "formats/limits.h"
#include "formats/xml_check.h"
#include "formats/xml_document.h"
#include "tools/info/kinds.h"

#include <tinyxml.h>

namespace keltra::info {

namespace {

class Description {
   public:
    Description(const Source &source, Inspection &result) : source(source), result(result) {}

    // Documents nest 64 deep at most.
    void read(const TiXmlNode *parent, unsigned int level) {
        for (const TiXmlElement *element = parent->FirstChildElement(); element;
             element = element->NextSiblingElement()) {
            add(*element, level);
            read(element, level + 1);
        }
    }

    void finish() {
        result.fields["totals"] = {{"objects", objects}, {"properties", properties}, {"bytes", source.size}};
        result.fields["elements"] = std::move(elements);
    }

   private:
    void add(const TiXmlElement &element, unsigned int level) {
        Fields attributes = Fields::object();
        for (const TiXmlAttribute *attribute = element.FirstAttribute(); attribute;
             attribute = attribute->Next())
            attributes[attribute->Name()] = attribute->Value();
        const bool isProperty = guiProperty(element.Value()) >= 0;
        const bool isObject = guiObject(element.Value()) >= 0;
        if (isObject && ++objects == kGuiObjects + 1) {
            const Faults faults(result);
            KTFAULT &fault = tooManyObjects();
            fault.line = xmlLine(element);
            warnFault({}, fault);
        }
        properties += isProperty;
        if (isProperty) addFiles(element);
        elements.push_back({{"level", level},
                            {"element", element.Value()},
                            {"kind", isObject     ? "object"
                                     : isProperty ? "property"
                                                  : "unknown"},
                            {"attributes", std::move(attributes)}});
    }

    void addFiles(const TiXmlElement &element) {
        const int property = guiProperty(element.Value());
        const char *file = element.Attribute("value");
        if (file && (property == kGuiTexture || property == kGuiKerning))
            addMissing(result, source, file, xmlLine(element));
    }

    const Source &source;
    Inspection &result;
    std::size_t objects = 0, properties = 0;
    Fields elements = Fields::array();
};

}  // namespace

void inspectInterface(const Source &source, Inspection &result) {
    TiXmlDocument document;
    Fault fault;
    if (!parseXmlDocument(source.bytes, source.size, document, &fault))
        return setTextFlaw(result, source, fault);
    const TiXmlElement *root = guiRoot(document);
    if (!root) return setTextFlaw(result, source, guiRootMissing());
    result.good = true;
    const Faults faults(result);
    checkGui(*root, true);
    Description description(source, result);
    description.read(root, 0);
    description.finish();
}

}  // namespace keltra::info
