// SPDX-License-Identifier: Zlib
#include "formats/xml_plain.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <iterator>
#include <random>
#include <string>

#include "formats/limits.h"
#include "formats/xml_check.h"

namespace keltra {
namespace {

bool isPlain(std::string text) {
    TiXmlDocument document;
    return readPlainXml(text.data(), text.data() + text.size(), document);
}

std::string printed(const TiXmlDocument &document) {
    TiXmlPrinter printer;
    document.Accept(&printer);
    return printer.CStr();
}

// A text, and the same without what no node is made of.
struct Text {
    explicit Text(unsigned int seed) : random(seed) {
        for (unsigned int i = random() % 3 + 1; i; --i) element(random() % 5);
        blank();
    }

    void blank() {
        const char *const blanks[] = {"", "", "\n", "  ", "\t\r\n\n", "<!-- <a>\n & -->", "<?p <b\n?>"};
        all += blanks[random() % std::size(blanks)];
    }
    void add(const std::string &part) {
        all += part;
        bare += part;
    }
    void element(unsigned int deeper) {
        const char *const names[] = {"a", "window", "_x", "B.c-d:e", "z9"};
        const char *const attributes[] = {"x", "y", "value", "_9", "a.b-c:d"};
        const std::string values[] = {"",
                                      "0.5",
                                      "a b",
                                      "&#10;x&#126;",
                                      "&amp;&lt;&gt;&quot;&apos;",
                                      "a\nb ",
                                      "/><a ",
                                      "<!--",
                                      "\xC3\xA9\xFF",
                                      "&#1;\t",
                                      "=",
                                      "?>",
                                      "long" + std::string(40, 'x')};
        blank();
        const std::string name = names[random() % std::size(names)];
        add("<" + name);
        for (unsigned int i = random() % 4, first = random(); i; --i) {
            add(random() % 3 ? " " : "\n\t");
            const std::string quote = random() % 2 ? "'" : "\"";
            add(std::string(attributes[(first + i) % std::size(attributes)]) + "=" + quote);
            add(values[random() % std::size(values)] + quote);
        }
        if (random() % 3 == 0) return add(random() % 2 ? "/>" : " />");
        add(">");
        for (unsigned int i = deeper ? random() % 4 : 0; i; --i) element(deeper - 1);
        blank();
        add("</" + name + (random() % 4 ? ">" : "\n>"));
    }

    std::mt19937 random;
    std::string all, bare;
};

TEST(XmlPlain, NodesAreThoseOfTheParser) {
    for (unsigned int seed = 0; seed < 5000; ++seed) {
        const Text text(seed);
        std::string lost = text.all;
        TiXmlDocument document, expected;
        ASSERT_TRUE(readPlainXml(lost.data(), lost.data() + lost.size(), document)) << text.all;
        expected.SetTabSize(0);
        expected.Parse(text.bare.c_str(), nullptr, TIXML_ENCODING_LEGACY);
        ASSERT_FALSE(expected.Error()) << text.bare;
        ASSERT_EQ(printed(document), printed(expected)) << text.all;
    }
}

TEST(XmlPlain, ElementsKnowTheirLines) {
    std::string text = "<?a\n?><!--\n-->\n<b x='1\n&#10;\n'\ny='2'>\n<c/></b\n><d/>";
    TiXmlDocument document;
    ASSERT_TRUE(readPlainXml(text.data(), text.data() + text.size(), document));
    const TiXmlElement *const b = document.FirstChildElement("b");
    ASSERT_TRUE(b && b->FirstChildElement() && b->NextSiblingElement());
    EXPECT_EQ(xmlLine(*b), 4u);
    EXPECT_EQ(xmlLine(*b->FirstChildElement()), 8u);
    EXPECT_EQ(xmlLine(*b->NextSiblingElement()), 9u);
}

TEST(XmlPlain, OtherTextsAreLeftToTheParser) {
    const char *const others[] = {"",
                                  " ",
                                  "<!-- only -->",
                                  "a",
                                  "<a/>b",
                                  "<a>b</a>",
                                  "<a><![CDATA[b]]></a>",
                                  "<!DOCTYPE a><a/>",
                                  "<",
                                  "<a",
                                  "<a/",
                                  "<a>",
                                  "<a></a",
                                  "<a></b>",
                                  "<a></ab>",
                                  "</a>",
                                  "<a/></a>",
                                  "<a / >",
                                  "<1/>",
                                  "<a;/>",
                                  "<\xC3\xA9/>",
                                  "<!-->",
                                  "<!-- <a/>",
                                  "<? <a/>",
                                  "<a x/>",
                                  "<a x=1/>",
                                  "<a x ='1'/>",
                                  "<a x= '1'/>",
                                  "<a x='1/>",
                                  "<a x='1\"/>",
                                  "<a x='1' x='2'/>",
                                  "<a ='1'/>",
                                  "<a x='&'/>",
                                  "<a x='&#10'/>",
                                  "<a x='&#0;'/>",
                                  "<a x='&#;'/>",
                                  "<a x='&#x41;'/>",
                                  "<a x='&#233;'/>",
                                  "<a x='&#1234;'/>",
                                  "<a x='&nbsp;'/>",
                                  "<a x='&amp'/>"};
    for (const char *other : others) EXPECT_FALSE(isPlain(other)) << other;
    // Ends of lines that the parser does not know, and a byte that no text has.
    EXPECT_TRUE(isPlain("<!--\r\n--><a\r\nx='1'/>\r\n"));
    EXPECT_FALSE(isPlain("\r<a/>"));
    EXPECT_FALSE(isPlain("<!--\r--><a/>"));
    EXPECT_FALSE(isPlain("<a x='\r\n'/>"));
    EXPECT_FALSE(isPlain("<a x='&amp;\r\n'/>"));
    EXPECT_FALSE(isPlain(std::string("<a/>\0<b/>", 9)));
    EXPECT_FALSE(isPlain(std::string("<!-- \0 --><a/>", 14)));
}

TEST(XmlPlain, LimitsAreThoseOfDocuments) {
    std::string open, close, tags = "<r>";
    for (unsigned int i = 0; i < kMaxXmlNesting; ++i) {
        open += "<a>";
        close += "</a>";
    }
    EXPECT_TRUE(isPlain(open + close));
    EXPECT_FALSE(isPlain("<a>" + open + close + "</a>"));
    for (unsigned int i = 2; i < kMaxXmlTags; ++i) tags += "<a/>";
    EXPECT_TRUE(isPlain(tags + "</r>"));
    EXPECT_FALSE(isPlain(tags + "<a/></r>"));
}

}  // namespace
}  // namespace keltra
