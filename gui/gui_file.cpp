// SPDX-License-Identifier: Zlib
#include "gui/gui_file.h"

#include <keltra/box.h>
#include <keltra/button.h>
#include <keltra/font.h>
#include <keltra/label.h>
#include <keltra/scrollbar.h>
#include <keltra/textfield.h>
#include <keltra/texture.h>
#include <keltra/window.h>

#include "formats/gui.h"
#include "formats/limits.h"
#include "formats/xml_check.h"
#include "formats/xml_document.h"
#include "foundation/block.h"
#include "foundation/fault.h"
#include "foundation/name_index.h"
#include "foundation/text.h"
#include "scene/node_class.h"

#include <tinyxml.h>

#include <cstring>
#include <new>

namespace {

// --- objects

template <class Widget>
KTNODE *makeWidget() {
    return new (std::nothrow) Widget;
}

using MakeWidget = KTNODE *(*)();

// In the order of the objects; a font is not a widget.
constexpr MakeWidget kMakers[] = {makeWidget<KTWINDOW>,    makeWidget<KTBUTTON>, makeWidget<KTTEXTFIELD>,
                                  makeWidget<KTLABEL>,     makeWidget<KTBOX>,    makeWidget<KTVSCROLLBAR>,
                                  makeWidget<KTHSCROLLBAR>};
static_assert(sizeof kMakers / sizeof *kMakers == keltra::kGuiFont, "one for each object but the font");

// --- properties

// The textures and fonts that a description names, those of earlier ones and its own.
struct Resources {
    keltra::NameIndex<KTTEXTURE> textures{[](const KTTEXTURE &one) -> const char * { return one.filename; },
                                          KTTEXTURE::findByFilename};
    keltra::NameIndex<KTFONT> fonts{[](const KTFONT &one) -> const char * { return one.name; },
                                    KTFONT::findByName};
};

// What a property applies to. A font takes those of fonts; all others inside it apply to the widget around
// it.
struct Target {
    KTFONT *font;
    KTNODE *widget;
    Resources *resources;

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

void tellUnknownFont(const char *name) {
    keltra::NearestName nearest(name);
    KTFONT *font = keltra::mayCompareNames() ? KTFONT::getFirst() : nullptr;
    for (; font; font = font->getNext()) nearest.offer(font->getName());
    keltra::warnFault(KT_CALL("KELTRA::loadXML"), keltra::unknownName(KT_TEXT("font"), nullptr, nearest));
}

void readFontReference(const TiXmlElement &property, const Target &target) {
    const char *name = property.Attribute("ref");
    if (!name) return;
    KTFONT *font = target.resources->fonts.find(name);
    // A font that is being read may still be renamed, so it is indexed when complete.
    if (!font && target.font && std::strcmp(target.font->name, name) == 0) font = target.font;
    if (!font) tellUnknownFont(name);
    if (KTWINDOW *window = target.as<KTWINDOW>(KT_WINDOW)) window->setFont(font);
    if (KTBUTTON *button = target.as<KTBUTTON>(KT_BUTTON)) button->setFont(font);
    if (KTTEXTFIELD *field = target.as<KTTEXTFIELD>(KT_TEXTFIELD)) field->setFont(font);
    if (KTLABEL *label = target.as<KTLABEL>(KT_LABEL)) label->setFont(font);
}

// A texture stays assigned when its file cannot be read: it is tried again whenever it is drawn.
void readTexture(const TiXmlElement &property, const Target &target) {
    const char *file = property.Attribute("value");
    if (!file || (!target.font && !target.box())) return;
    KTTEXTURE *texture = target.resources->textures.find(file);
    if (!texture) {
        texture = new (std::nothrow) KTTEXTURE;
        if (!texture) return keltra::warnMemory(KT_CALL("KELTRA::loadXML"));
        // Glyphs are drawn pixel by pixel.
        if (target.font) texture->setFilter(false, false, false);
        const keltra::FaultOptional optional;
        texture->load(file);
        target.resources->textures.add(texture);
    }
    if (target.font) {
        target.font->setTexture(texture);
    } else {
        target.box()->setTexture(texture);
    }
}

void readKerning(const TiXmlElement &property, const Target &target) {
    const char *file = property.Attribute("value");
    if (!file || !target.font) return;
    const keltra::FaultOptional optional;
    target.font->loadKerning(file);
}

// The value is a format string from a file, and there are no arguments for it: "%%" is a percent sign, and
// every other conversion is literal text. Few texts have one, and the stack has no room for it: those take a
// block, which is null without memory.
class LiteralText {
   public:
    explicit LiteralText(const char *format) : text(format), block(nullptr) {
        if (!std::strstr(format, "%%")) return;
        text = block = static_cast<char *>(keltra::newBlock(std::strlen(format) + 1));
        if (!block) return;
        char *end = block;
        for (; *format; ++format) {
            *end++ = *format;
            if (format[0] == '%' && format[1] == '%') ++format;
        }
        *end = '\0';
    }
    ~LiteralText() { keltra::releaseBlock(block); }
    LiteralText(const LiteralText &) = delete;
    LiteralText &operator=(const LiteralText &) = delete;
    const char *get() const { return text; }

   private:
    const char *text;
    char *block;
};

void readText(const TiXmlElement &property, const Target &target) {
    const char *value = property.Attribute("value");
    KTLABEL *label = target.as<KTLABEL>(KT_LABEL);
    KTWINDOW *window = target.as<KTWINDOW>(KT_WINDOW);
    if (!value || (!label && !window)) return;
    const LiteralText text(value);
    if (!text.get()) return void(keltra::failMemory(KT_CALL("KELTRA::loadXML")));
    if (label) {
        label->write("%s", text.get());
    } else {
        window->clear();
        window->write("%s", text.get());
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
    const char *kind = property.Attribute("value");
    KTBUTTON *button = target.as<KTBUTTON>(KT_BUTTON);
    if (!kind || !button) return;
    const int event = keltra::guiKind(kind);
    if (event >= 0) button->setEventType(static_cast<KT_BUTTON_EVENT>(event));
}

using ReadProperty = void (*)(const TiXmlElement &property, const Target &target);

// In the order of the properties.
constexpr ReadProperty kReaders[] = {readName,    readTitle,   readPosition, readSize,  readFontReference,
                                     readTexture, readKerning, readText,     readColor, readKind};
static_assert(sizeof kReaders / sizeof *kReaders == keltra::kGuiPropertyCount, "one for each property");

// --- the tree

class InterfaceReader {
   public:
    // The lines of the elements are used when the scope has a file.
    explicit InterfaceReader(keltra::FaultScope &scope) : scope(scope), objects(0) {}

    // Reads `top` and what is nested in it. The path is kept in an array: the device's stack is small.
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
        Target target = {nullptr, parent, &resources};
        const int object = keltra::guiObject(element.Value());
        if (object >= 0) {
            if (!hasRoom(element)) return nullptr;
            if (object == keltra::kGuiFont) {
                resources.fonts.fill();
                target.font = new (std::nothrow) KTFONT;
            } else {
                target.widget = makeLinked(kMakers[object], parent);
            }
            if (!target.widget || (object == keltra::kGuiFont && !target.font))
                return keltra::warnMemory({}), nullptr;
        }
        readProperties(element, target);
        if (target.font) resources.fonts.add(target.font);
        return target.widget;
    }

    bool hasRoom(const TiXmlElement &element) {
        if (objects++ < keltra::kGuiObjects) return true;
        scope.setLine(keltra::xmlLine(element));
        if (objects == keltra::kGuiObjects + 1) keltra::warnFault({}, keltra::tooManyObjects());
        return false;
    }

    void readProperties(const TiXmlElement &element, const Target &target) {
        for (const TiXmlElement *child = element.FirstChildElement(); child;
             child = child->NextSiblingElement()) {
            const int property = keltra::guiProperty(child->Value());
            scope.setLine(keltra::xmlLine(*child));
            if (property >= 0) kReaders[property](*child, target);
        }
    }

    static KTNODE *makeLinked(MakeWidget make, KTNODE *parent) {
        KTNODE *widget = make();
        if (!widget || widget->link(parent)) return widget;
        delete widget;
        return nullptr;
    }

    keltra::FaultScope &scope;
    unsigned int objects;
    Resources resources;  // last: what lies behind it is far away
};

}  // namespace

namespace keltra {

// Named first: properties at the top of the description apply to the root.
KTNODE *buildInterface(const TiXmlElement &description, const char *name, FaultScope &scope) {
    KTNODE *root = new (std::nothrow) KTNODE;
    if (!root) return scope.fail(KT_FAULT_OUT_OF_MEMORY), nullptr;
    {
        const FaultOptional optional;
        root->setName(name);
    }
    checkGui(description, true);
    InterfaceReader reader(scope);
    for (const TiXmlNode *node = description.FirstChild(); node; node = node->NextSibling())
        reader.read(root, node);
    return root;
}

void buildWidgets(KTNODE *parent, const TiXmlNode *node) {
    FaultScope scope(KT_CALL("KELTRA::recursiveLoadXML"));
    if (!parent || !node) {
        scope.failNull(parent ? KT_TEXT("node") : KT_TEXT("parent"));
        return;
    }
    checkGui(*node, false);
    InterfaceReader(scope).read(parent, node);
}

}  // namespace keltra
