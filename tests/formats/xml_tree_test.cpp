// SPDX-License-Identifier: Zlib
#include "formats/xml_tree.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "formats/xml_check.h"
#include "formats/xml_scan.h"

namespace keltra {
namespace {

// A text as it is given to the reader of trees.
struct Text {
    explicit Text(const std::string &text)
        : bytes(text.begin(), text.end()), lines(text.size() / 3 + 1), size(text.size()) {
        bytes.resize(size + 2);
    }
    bool isMeasured() {
        return MarkupScan(bytes.data(), bytes.data() + size, lines.data(), MarkupScan::kSameLength).run();
    }
    XmlEnd read(TiXmlDocument &document) { return readXmlTree(bytes.data(), lines.data(), document); }

    std::vector<char> bytes;
    std::vector<unsigned int> lines;
    std::size_t size;
};

XmlEnd endOf(const std::string &content) {
    Text text(content);
    EXPECT_TRUE(text.isMeasured()) << content;
    TiXmlDocument document;
    return text.read(document);
}

std::string printed(const TiXmlDocument &document) {
    TiXmlPrinter printer;
    document.Accept(&printer);
    return printer.CStr();
}

std::string repeat(const std::string &text, unsigned count) {
    std::string result;
    for (unsigned i = 0; i < count; ++i) result += text;
    return result;
}

// Pieces in any order: about a third of these texts is good.
std::string anyText(unsigned int seed) {
    static const char *const kPieces[] = {"<b x='1'>",
                                          "</b>",
                                          "<c/>",
                                          "<c x = \"2\" y='&lt;>'/>",
                                          "<b x=1>",
                                          "words ",
                                          "&#x41;&amp;",
                                          "\n",
                                          "<!-- c -->",
                                          "<!---->",
                                          "<![CDATA[</a>]]>",
                                          "<!DOCTYPE z>",
                                          "<\xC3\xA9/>",
                                          "<b x=/>",
                                          "<b x=1/>",
                                          "<b\nx='1'\n>",
                                          "</b >",
                                          "<>",
                                          "<1>",
                                          "</>",
                                          "<b x>",
                                          "<b / >",
                                          "<c x='1' x='1'/>",
                                          "<c x=y'z'/>",
                                          "]]>",
                                          "&#66;"};
    std::mt19937 random(seed);
    std::string text = random() % 8 ? "<a>" : "";
    int open = text.empty() ? 0 : 1;
    for (unsigned int i = random() % 10; i; --i) {
        if (random() % 4 == 0) {
            text += "<a>";
            ++open;
        } else if (open && random() % 5 == 0) {
            text += "</a>";
            --open;
        } else {
            text += kPieces[random() % std::size(kPieces)];
        }
    }
    return text + (random() % 8 ? repeat("</a>", static_cast<unsigned>(open)) : "");
}

TEST(XmlTree, NodesAndErrorsAreThoseOfTheParser) {
    unsigned int good = 0;
    for (unsigned int seed = 0; seed < 20000; ++seed) {
        const std::string content = anyText(seed);
        Text text(content);
        if (!text.isMeasured()) continue;
        TiXmlDocument document, expected;
        expected.SetTabSize(0);
        expected.Parse(content.c_str(), nullptr, TIXML_ENCODING_LEGACY);
        const XmlEnd end = text.read(document);
        ASSERT_EQ(end.error, expected.ErrorId()) << content;
        if (end.error) continue;
        ASSERT_EQ(printed(document), printed(expected)) << content;
        ASSERT_STREQ(text.bytes.data(), content.c_str());
        ++good;
    }
    EXPECT_GT(good, 2000u);
}

TEST(XmlTree, ElementsKnowTheirLines) {
    Text text("<!DOCTYPE a>\n<a x='\n'>\ntext\n<b/>\n</a>\n<c/>");
    ASSERT_TRUE(text.isMeasured());
    TiXmlDocument document;
    ASSERT_EQ(text.read(document).error, 0);
    const TiXmlElement *const a = document.FirstChildElement("a");
    ASSERT_TRUE(a && a->FirstChildElement() && a->NextSiblingElement());
    EXPECT_EQ(xmlLine(*a), 2u);
    EXPECT_EQ(xmlLine(*a->FirstChildElement()), 5u);
    EXPECT_EQ(xmlLine(*a->NextSiblingElement()), 7u);
}

TEST(XmlTree, ErrorsKnowTheirPlaces) {
    const struct {
        const char *text;
        const char *at;  // what is there
        bool isInTag;
    } cases[] = {
        {"<a>t<b x/></a>", "<b x/>", true},  {"<a>t<b x></b></a>", "<b x/>", true},
        {"<a>t</b></a>", "</b></a>", false}, {"<a>t</a b></a>", "b></a>", false},
        {"<a>t<b/>\n ", "", false},
    };
    for (const auto &one : cases) {
        Text text(one.text);
        ASSERT_TRUE(text.isMeasured()) << one.text;
        TiXmlDocument document;
        const XmlEnd end = text.read(document);
        ASSERT_NE(end.error, 0) << one.text;
        ASSERT_NE(end.at, nullptr) << one.text;
        EXPECT_STREQ(end.at, one.at) << one.text;
        EXPECT_EQ(end.isInTag, one.isInTag) << one.text;
    }
    for (const char *whole : {"<a>", "<a>text", "text<a/>", ""})
        EXPECT_TRUE(endOf(whole).error != 0 && !endOf(whole).at) << whole;
}

}  // namespace
}  // namespace keltra
