#include <tinyxml.h>

#include <cstring>

#include "formats/xml_document.h"
#include "gui/gui_file.h"
#include "tools/info/kinds.h"

namespace keltra::info {

namespace {

bool isOneOf(const char *name, const char *const *names) {
    for (; *names; ++names)
        if (std::strcmp(name, *names) == 0) return true;
    return false;
}

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
        if (objects > kGuiObjects)
            note(result, std::to_string(objects) + " objects; those beyond " + std::to_string(kGuiObjects) +
                             " are left out");
    }

   private:
    void add(const TiXmlElement &element, unsigned int level) {
        Fields attributes = Fields::object();
        for (const TiXmlAttribute *attribute = element.FirstAttribute(); attribute;
             attribute = attribute->Next())
            attributes[attribute->Name()] = attribute->Value();
        const char *const *known = guiAttributes(element.Value());
        const bool isObject = isGuiObject(element.Value());
        objects += isObject;
        properties += known != nullptr;
        if (known) {
            noteAttributes(element, attributes, known);
            noteFiles(element);
        } else {
            if (!isObject)
                note(result, "the element " + quoted(element.Value()) + " is not known and makes nothing");
            for (const auto &attribute : attributes.items())
                note(result, "the attribute " + quoted(attribute.key()) + " of " + quoted(element.Value()) +
                                 " is not read");
        }
        elements.push_back({{"level", level},
                            {"element", element.Value()},
                            {"kind", isObject ? "object"
                                     : known  ? "property"
                                              : "unknown"},
                            {"attributes", std::move(attributes)}});
    }

    void noteAttributes(const TiXmlElement &element, const Fields &attributes, const char *const *known) {
        for (const auto &attribute : attributes.items())
            if (!isOneOf(attribute.key().c_str(), known))
                note(result, "the attribute " + quoted(attribute.key()) + " of " + quoted(element.Value()) +
                                 " is not read");
        for (; *known; ++known)
            if (!element.Attribute(*known))
                note(result, quoted(element.Value()) + " is skipped without its attribute " + quoted(*known));
    }

    void noteFiles(const TiXmlElement &element) {
        const char *file = element.Attribute("value");
        if (!file) return;
        if (std::strcmp(element.Value(), "texture") == 0) noteMissing(result, source, "the texture", file);
        if (std::strcmp(element.Value(), "kerning") == 0)
            noteMissing(result, source, "the kerning file", file);
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
    if (!root) return setTextFlaw(result, source, {0, "root", "the document has no element of this name"});
    result.good = true;
    Description description(source, result);
    description.read(root, 0);
    description.finish();
}

}  // namespace keltra::info
