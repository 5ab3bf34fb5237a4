#include <keltra/box.h>
#include <keltra/button.h>
#include <keltra/font.h>
#include <keltra/label.h>
#include <keltra/scrollbar.h>
#include <keltra/textfield.h>
#include <keltra/texture.h>
#include <keltra/window.h>

#include <tinyxml.h>

#include <cstring>
#include <new>

#include "formats/limits.h"
#include "formats/xml_document.h"
#include "foundation/fault.h"
#include "foundation/text.h"
#include "gui/gui_file.h"
#include "scene/node_class.h"

namespace {

// A window takes four of the 65,535 identifiers and some ten kilobytes. A file that asks for more objects
// gives the first ones.
const unsigned int kMaxObjects = keltra::kGuiObjects;

// --- objects

template <class Widget>
KTNODE *makeWidget() {
    return new (std::nothrow) Widget;
}

struct WidgetKind {
    const char *name;
    KTNODE *(*make)();
};

const WidgetKind kWidgetKinds[] = {
    {"window", makeWidget<KTWINDOW>},
    {"button", makeWidget<KTBUTTON>},
    {"text", makeWidget<KTTEXTFIELD>},
    {"label", makeWidget<KTLABEL>},
    {"box", makeWidget<KTBOX>},
    {"vslider", makeWidget<KTVSCROLLBAR>},
    {"hslider", makeWidget<KTHSCROLLBAR>},
};

const char kFontName[] = "font";

const WidgetKind *findWidgetKind(const char *name) {
    for (const WidgetKind &kind : kWidgetKinds) {
        if (std::strcmp(kind.name, name) == 0) return &kind;
    }
    return nullptr;
}

// --- properties

// What a property applies to. A font takes those that are meant for one; all others inside it apply to the
// widget around it.
struct Target {
    KTFONT *font;
    KTNODE *widget;

    bool is(unsigned int type) const { return widget->getType() == type; }
    KTBOX *box() const { return keltra::as<KTBOX>(widget); }
    template <class Widget>
    Widget *as(unsigned int type) const {
        return is(type) ? keltra::as<Widget>(widget) : nullptr;
    }
};

// A value that is to fit an array of 256 characters; null otherwise.
const char *shortText(const TiXmlElement &property, const char *attribute) {
    const char *text = property.Attribute(attribute);
    return text && std::memchr(text, '\0', sizeof KTNODE::name) ? text : nullptr;
}

void readName(const TiXmlElement &property, const Target &target) {
    const char *name = shortText(property, "value");
    if (!name) return;
    if (target.font) {
        target.font->setName(name);
    } else {
        target.widget->setName(name);
    }
}

void readTitle(const TiXmlElement &property, const Target &target) {
    const char *title = shortText(property, "value");
    if (!title) return;
    if (KTWINDOW *window = target.as<KTWINDOW>(KT_WINDOW)) window->setCaption(title);
    if (KTBUTTON *button = target.as<KTBUTTON>(KT_BUTTON)) button->setCaption(title);
}

void readPosition(const TiXmlElement &property, const Target &target) {
    const char *x = property.Attribute("x"), *y = property.Attribute("y");
    if (!x || !y) return;
    target.widget->setPosition(static_cast<float>(keltra::xmlInteger(x)),
                               static_cast<float>(keltra::xmlInteger(y)));
}

void readSize(const TiXmlElement &property, const Target &target) {
    const char *width = property.Attribute("width"), *height = property.Attribute("height");
    if (!width || !height || !target.box()) return;
    const int sizeX = keltra::xmlInteger(width), sizeY = keltra::xmlInteger(height);
    if (KTWINDOW *window = target.as<KTWINDOW>(KT_WINDOW)) {
        window->setSizes(sizeX, sizeY);
    } else {
        target.box()->sizeX = sizeX;
        target.box()->sizeY = sizeY;
    }
}

void readFontReference(const TiXmlElement &property, const Target &target) {
    const char *name = property.Attribute("ref");
    if (!name) return;
    KTFONT *font = KTFONT::findByName(name);
    if (KTWINDOW *window = target.as<KTWINDOW>(KT_WINDOW)) window->setFont(font);
    if (KTBUTTON *button = target.as<KTBUTTON>(KT_BUTTON)) button->setFont(font);
    if (KTTEXTFIELD *field = target.as<KTTEXTFIELD>(KT_TEXTFIELD)) field->setFont(font);
    if (KTLABEL *label = target.as<KTLABEL>(KT_LABEL)) label->setFont(font);
}

// A texture stays assigned when its file cannot be read: it is tried again whenever it is drawn.
void readTexture(const TiXmlElement &property, const Target &target) {
    const char *file = property.Attribute("value");
    if (!file || (!target.font && !target.box())) return;
    KTTEXTURE *texture = KTTEXTURE::findByFilename(file);
    if (!texture) {
        texture = new (std::nothrow) KTTEXTURE;
        if (!texture) return;
        // Glyphs are drawn pixel by pixel.
        if (target.font) texture->setFilter(false, false, false);
        texture->load(file);
    }
    if (target.font) {
        target.font->setTexture(texture);
    } else {
        target.box()->setTexture(texture);
    }
}

void readKerning(const TiXmlElement &property, const Target &target) {
    const char *file = property.Attribute("value");
    if (file && target.font) target.font->loadKerning(file);
}

// The value is a format string from a file, and there are no arguments for it: "%%" stands for a percent
// sign, and every other conversion is what it looks like. What exceeds the array fits no widget either.
void translateFormat(const char *format, char (&text)[4096]) {
    std::size_t length = 0;
    for (; *format && length < sizeof text - 1; ++format) {
        text[length++] = *format;
        if (format[0] == '%' && format[1] == '%') ++format;
    }
    text[length] = '\0';
}

void readText(const TiXmlElement &property, const Target &target) {
    const char *value = property.Attribute("value");
    KTLABEL *label = target.as<KTLABEL>(KT_LABEL);
    KTWINDOW *window = target.as<KTWINDOW>(KT_WINDOW);
    if (!value || (!label && !window)) return;
    char text[4096];
    translateFormat(value, text);
    if (label) {
        label->write("%s", text);
    } else {
        window->clear();
        window->write("%s", text);
        window->format();
    }
}

void readColor(const TiXmlElement &property, const Target &target) {
    const char *const names[] = {"r", "g", "b", "a"};
    float channels[4];
    for (int i = 0; i < 4; ++i) {
        const char *text = property.Attribute(names[i]);
        if (!text) return;
        channels[i] = keltra::xmlFloat(text, 0.0f);
    }
    if (KTBOX *box = target.box()) box->setColor(channels[0], channels[1], channels[2], channels[3]);
}

void readKind(const TiXmlElement &property, const Target &target) {
    const char *const names[] = {"normal", "inverted", "switch"};
    const char *kind = property.Attribute("value");
    KTBUTTON *button = target.as<KTBUTTON>(KT_BUTTON);
    if (!kind || !button) return;
    for (int i = 0; i < 3; ++i) {
        if (std::strcmp(kind, names[i]) == 0) button->setEventType(static_cast<KT_BUTTON_EVENT>(i));
    }
}

struct Property {
    const char *name;
    void (*read)(const TiXmlElement &property, const Target &target);
    const char *attributes[keltra::kGuiAttributes + 1];
};

const Property kProperties[] = {
    {"name", readName, {"value"}},
    {"title", readTitle, {"value"}},
    {"position", readPosition, {"x", "y"}},
    {"size", readSize, {"width", "height"}},
    {"usefont", readFontReference, {"ref"}},
    {"texture", readTexture, {"value"}},
    {"kerning", readKerning, {"value"}},
    {"write", readText, {"value"}},
    {"color", readColor, {"r", "g", "b", "a"}},
    {"kind", readKind, {"value"}},
};

void readProperties(const TiXmlElement &element, const Target &target) {
    for (const TiXmlElement *child = element.FirstChildElement(); child;
         child = child->NextSiblingElement()) {
        for (const Property &property : kProperties) {
            if (std::strcmp(property.name, child->Value()) == 0) property.read(*child, target);
        }
    }
}

// --- the tree

class InterfaceReader {
   public:
    InterfaceReader() : objects(0) {}

    // Reads `top` and what is nested in it. The path stands in an array: the device's stack is small.
    void read(KTNODE *parent, const TiXmlNode *top) {
        KTNODE *widgets[keltra::kMaxXmlNesting];
        unsigned int depth = 0;
        for (const TiXmlNode *node = top; node;) {
            const TiXmlElement *element = depth < keltra::kMaxXmlNesting ? node->ToElement() : nullptr;
            KTNODE *widget = element ? enter(*element, depth ? widgets[depth - 1] : parent) : nullptr;
            if (widget && node->FirstChild()) {
                widgets[depth++] = widget;
                node = node->FirstChild();
                continue;
            }
            for (; node != top && !node->NextSibling(); --depth) node = node->Parent();
            node = node == top ? nullptr : node->NextSibling();
        }
    }

   private:
    // Makes what the element asks for and returns the widget that its nested elements belong to; null when
    // there is no room.
    KTNODE *enter(const TiXmlElement &element, KTNODE *parent) {
        Target target = {nullptr, parent};
        const WidgetKind *kind = findWidgetKind(element.Value());
        if (kind || std::strcmp(element.Value(), kFontName) == 0) {
            if (objects++ >= kMaxObjects) return nullptr;
            if (kind) {
                target.widget = makeLinked(*kind, parent);
            } else {
                target.font = new (std::nothrow) KTFONT;
            }
            if (!target.widget || (!kind && !target.font)) return nullptr;
        }
        readProperties(element, target);
        return target.widget;
    }

    static KTNODE *makeLinked(const WidgetKind &kind, KTNODE *parent) {
        KTNODE *widget = kind.make();
        if (!widget || widget->link(parent)) return widget;
        delete widget;
        return nullptr;
    }

    unsigned int objects;
};

}  // namespace

namespace keltra {

bool isGuiObject(const char *element) {
    return findWidgetKind(element) || std::strcmp(element, kFontName) == 0;
}

const char *const *guiAttributes(const char *element) {
    for (const Property &property : kProperties)
        if (std::strcmp(property.name, element) == 0) return property.attributes;
    return nullptr;
}

// Elements only: a comment that says nothing but "root" has that name too.
const TiXmlElement *guiRoot(const TiXmlDocument &document) { return document.FirstChildElement("root"); }

// Named first: properties at the top of the description apply to the root.
KTNODE *buildInterface(const TiXmlElement &description, const char *name) {
    KTNODE *root = new (std::nothrow) KTNODE;
    if (!root) return nullptr;
    {
        const FaultOptional optional;
        root->setName(name);
    }
    InterfaceReader reader;
    for (const TiXmlNode *node = description.FirstChild(); node; node = node->NextSibling())
        reader.read(root, node);
    return root;
}

void buildWidgets(KTNODE *parent, const TiXmlNode *node) {
    if (parent && node) InterfaceReader().read(parent, node);
}

}  // namespace keltra
