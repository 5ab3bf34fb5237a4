// SPDX-License-Identifier: Zlib
#include "formats/xml_document.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <new>
#include <random>
#include <string>

#include "formats/xml_check.h"
#include "foundation/file_bytes.h"
#include "tests/support/allocations.h"
#include "tests/support/same_verdict.h"
#include "tests/support/small_stack.h"
#include "tests/support/temp_file.h"

namespace keltra {
namespace {

bool parses(const std::string &text) {
    TiXmlDocument document;
    const bool parsed = parseXmlDocument(text.data(), text.size(), document);
    EXPECT_TRUE(parsed || document.FirstChild() == nullptr) << text.substr(0, 80);
    // An emitter reads none of the contents of this document.
    test::expectSameVerdict("emitter", text, parsed);
    return parsed;
}

std::string repeat(const std::string &text, unsigned count) {
    std::string result;
    for (unsigned i = 0; i < count; ++i) result += text;
    return result;
}

std::string nested(unsigned depth) { return repeat("<a>", depth) + repeat("</a>", depth); }

TEST(XmlDocument, HoldsWhatTheTextSays) {
    const std::string text =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<!-- a <b> --><root>\r\n<item x='1 &lt; "
        "2' y=\"it's\"/>"
        "<![CDATA[<c>]]></root>";
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document));
    const TiXmlElement *root = document.FirstChildElement("root");
    ASSERT_NE(root, nullptr);
    const TiXmlElement *item = root->FirstChildElement("item");
    ASSERT_NE(item, nullptr);
    EXPECT_STREQ(item->Attribute("x"), "1 < 2");
    EXPECT_STREQ(item->Attribute("y"), "it's");
    EXPECT_EQ(item->NextSiblingElement(), nullptr);
    ASSERT_NE(item->NextSibling(), nullptr);
    EXPECT_STREQ(item->NextSibling()->Value(), "<c>");
}

TEST(XmlDocument, BytesBeyondAsciiStayAsTheyAre) {
    const std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a v=\"\xC3\xA9\xFF\"/>";
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document));
    EXPECT_STREQ(document.FirstChildElement()->Attribute("v"), "\xC3\xA9\xFF");
}

// What nobody reads does not reach the parser: comments, instructions and blanks between tags.
TEST(XmlDocument, HoldsElementsAndTheirTextOnly) {
    const std::string text =
        "<!-- one -->\n<a>\n <?skip it?> <b/> two <!-- three --> words <c>\t<!----></c>\r\n<![CDATA[ ]]></a>";
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document));
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    document.Accept(&printer);
    EXPECT_EQ(printer.Str(), "<a><b />two words<c /><![CDATA[ ]]></a>");
}

TEST(XmlDocument, ElementsKnowTheirLines) {
    const std::string text =
        "\r\n<!-- a\r\n<b> -->\r<root at='\n\n'>\r\n\r\n<?x\n?> text\n<item\n/>\n<item/></root>\n<last/>";
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document));
    const TiXmlElement *root = document.FirstChildElement("root");
    ASSERT_NE(root, nullptr);
    const TiXmlElement *item = root->FirstChildElement();
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(xmlLine(*root), 4u);
    EXPECT_EQ(xmlLine(*item), 10u);
    EXPECT_EQ(xmlLine(*item->NextSiblingElement()), 12u);
    EXPECT_EQ(xmlLine(*root->NextSiblingElement()), 13u);
}

// Two bytes that end a line are one in the text that is parsed, from the first on.
TEST(XmlDocument, FaultsKnowTheirBytes) {
    const std::string text = "\r\n\r\n<a>\r\n\r\r\n<b";
    TiXmlDocument document;
    Fault fault;
    ASSERT_FALSE(parseXmlDocument(text.data(), text.size(), document, &fault));
    EXPECT_EQ(fault.offset, text.find("<b"));
    const std::string marked = "\xEF\xBB\xBF" + text;
    ASSERT_FALSE(parseXmlDocument(marked.data(), marked.size(), document, &fault));
    EXPECT_EQ(fault.offset, marked.find("<b"));
}

TEST(XmlDocument, FaultsBehindInstructionsKnowTheirBytes) {
    TiXmlDocument document;
    Fault fault, wanted;
    const std::string text = "<a><?skip it?></b></a>", blanks = "<a>           </b></a>";
    ASSERT_FALSE(parseXmlDocument(text.data(), text.size(), document, &fault));
    ASSERT_FALSE(parseXmlDocument(blanks.data(), blanks.size(), document, &wanted));
    EXPECT_GT(wanted.offset, 3u);
    EXPECT_EQ(fault.offset, wanted.offset);
}

TEST(XmlDocument, FaultsSayWhatIsWrongFirst) {
    std::string attributes = "<a";
    for (unsigned i = 0; i <= kMaxXmlAttributes; ++i) attributes += " x" + std::to_string(i) + "=''";
    const struct {
        std::string text;
        FaultText reason;
        long limit;
    } cases[] = {
        {"<a b='1", KT_TEXT("has a quote that is not closed"), 0},
        {"<a b=1", KT_TEXT("does not end"), 0},
        {nested(kMaxXmlNesting + 1), KT_TEXT("nests deeper than %ld elements"), kMaxXmlNesting},
        {attributes + "/>", KT_TEXT("has more than %ld attributes"), kMaxXmlAttributes},
        {"<r>" + repeat("<a/>", kMaxXmlTags), KT_TEXT("more than %ld tags"), kMaxXmlTags},
    };
    for (const auto &one : cases) {
        TiXmlDocument document;
        Fault fault;
        ASSERT_FALSE(parseXmlDocument(one.text.data(), one.text.size(), document, &fault));
        EXPECT_TRUE(fault.reason == one.reason) << one.text.substr(0, 20);
        EXPECT_EQ(fault.limit, one.limit) << one.text.substr(0, 20);
    }
}

TEST(XmlDocument, NamesBeginWithLettersAndWhatIsBeyondAscii) {
    for (const char *name : {"a", "m", "z", "A", "M", "Z", "_", "\x7f", "\x80", "\xff"}) {
        const std::string text = std::string("\n<") + name + "/>";
        TiXmlDocument document;
        ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document)) << name;
        EXPECT_EQ(xmlLine(*document.FirstChildElement()), 2u) << name;
    }
}

TEST(XmlDocument, TextIsHeldWithBlanksAndWithout) {
    const std::string text = "<a>one<b/>\ttwo words\n</a>";
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document));
    TiXmlPrinter printer;
    printer.SetStreamPrinting();
    document.Accept(&printer);
    EXPECT_EQ(printer.Str(), "<a>one<b />two words</a>");
}

// Only comments and text: the parser is given all of it, and takes it.
TEST(XmlDocument, WithoutElementsIsReadAsItIs) {
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument("<!-- a -->", 10, document));
    ASSERT_NE(document.FirstChild(), nullptr);
    EXPECT_NE(document.FirstChild()->ToComment(), nullptr);
}

TEST(XmlDocument, LineEndsBecomeLineFeeds) {
    const std::string text = "<a v='1\r\n2\r3\n4'/>";
    TiXmlDocument document;
    ASSERT_TRUE(parseXmlDocument(text.data(), text.size(), document));
    EXPECT_STREQ(document.FirstChildElement()->Attribute("v"), "1\n2\n3\n4");
}

TEST(XmlDocument, RefusesWhatIsNoXml) {
    EXPECT_FALSE(parses(""));
    EXPECT_FALSE(parses("   "));
    EXPECT_FALSE(parses("text"));
    EXPECT_FALSE(parses("<a><b></a></b>"));
    EXPECT_FALSE(parses("<a x=1'/>"));
    EXPECT_FALSE(parses("<a x='1' x='2'/>"));
    EXPECT_FALSE(parses(std::string("<a/>\0<b/>", 9)));
    TiXmlDocument document;
    EXPECT_FALSE(parseXmlDocument(nullptr, 0, document));
}

// The parser looks for the semicolon in all that follows, and would find other tags than those that were
// counted: nested as deeply as the file is long.
TEST(XmlDocument, NoReferenceReachesBeyondItsDigits) {
    const std::string deep = repeat("<a>", 200000);
    const std::string texts[] = {"<r a=\"&#x\" 'x41;\">" + deep + "'>text</r>",
                                 "<r a=\"&#x\" b='x41;\">" + deep + "'>text</r>",
                                 "<r>text &#x<b c='x41;" + deep + "'/></r>",
                                 "<r>text &#<b c='#65;" + deep + "'/></r>",
                                 "<a x='&#6'><b>#66;'</b></a>",
                                 "<a>&#x4g;</a>",
                                 "<a x='&#'/>",
                                 "text &#"};
    for (const std::string &text : texts) {
        TiXmlDocument document;
        Fault fault;
        EXPECT_FALSE(parseXmlDocument(text.data(), text.size(), document, &fault)) << text.substr(0, 40);
        EXPECT_LT(fault.offset, 16u) << text.substr(0, 40);
    }
    for (const char *text : {"<a x='&#65;&#x4a;'>&#66;&amp;</a>", "<a>R&D</a>", "<a x='&'/>"}) {
        TiXmlDocument document;
        EXPECT_TRUE(parseXmlDocument(text, std::strlen(text), document)) << text;
    }
}

TEST(XmlDocument, NoEntityReachesAcrossWhatIsLeftOut) {
    for (const char *between : {"<!-- c -->", "<?p i?>", "<!-- c --><!-- d -->"}) {
        TiXmlDocument document;
        const std::string text = std::string("<a>&#12") + between + "6;</a>";
        EXPECT_FALSE(parseXmlDocument(text.data(), text.size(), document)) << text;
        const std::string words = std::string("<a>one") + between + "two</a>";
        EXPECT_TRUE(parseXmlDocument(words.data(), words.size(), document)) << words;
    }
}

TEST(XmlDocument, EveryTruncationIsRefusedOrWhole) {
    const std::string text =
        "<?xml version='1.0'?><!-- c --><!DOCTYPE r><r a=\"&#x41;&amp;\" b='\xC3\xA9'><![CDATA[x]]>t<s/></r>";
    ASSERT_TRUE(parses(text));
    for (std::size_t size = 0; size < text.size(); ++size) {
        const std::string cut = text.substr(0, size);
        // A text that ends before the first element is a document without one.
        if (cut.find("<r") == std::string::npos) {
            parses(cut);
        } else {
            EXPECT_FALSE(parses(cut)) << size;
        }
    }
}

TEST(XmlDocument, EveryChangedByteEnds) {
    const std::string text =
        "<?xml version='1.0'?><!-- c --><r a=\"&#x41;&amp;\" b='\xC3\xA9'><![CDATA[x]]>t<s/></r>";
    for (std::size_t at = 0; at < text.size(); ++at) {
        for (int value = 1; value < 256; ++value) {
            std::string changed = text;
            changed[at] = static_cast<char>(value);
            parses(changed);
        }
    }
}

TEST(XmlDocument, NestingIsLimited) {
    EXPECT_TRUE(parses(nested(kMaxXmlNesting)));
    EXPECT_FALSE(parses(nested(kMaxXmlNesting + 1)));
    EXPECT_TRUE(parses("<r>" + repeat("<a></a><b/>", 200) + "</r>"));
}

// What does not close an element for the parser must not lower the count.
TEST(XmlDocument, NestingIsCountedAsTheParserMeetsIt) {
    for (const char *decoy : {"<!-- </a> -->", "<![CDATA[</a>]]>", "<? </a> ?>", "<a x='</a>'/>",
                              "<a x=\"/>\"/>", "&lt;/a>", "<a y='/'>x</a>"}) {
        EXPECT_TRUE(parses(repeat(std::string("<a>") + decoy, 40) + repeat("</a>", 40))) << decoy;
        EXPECT_FALSE(parses(repeat(std::string("<a>") + decoy, 90) + repeat("</a>", 90))) << decoy;
    }
    EXPECT_FALSE(parses("<?xml version='?>" + nested(90)));
    EXPECT_FALSE(parses("<?xml version='>'" + nested(90) + "'?>"));
}

TEST(XmlDocument, TheDeepestStandsOnTheDevicesStack) {
    for (unsigned depth : {kMaxXmlNesting, 300u, 100000u}) {
        bool parsed = false;
        ASSERT_TRUE(test::runOnSmallStack([&] { parsed = parses(nested(depth)); }));
        EXPECT_EQ(parsed, depth == kMaxXmlNesting);
    }
}

TEST(XmlDocument, AFaultInATagHasItsPlace) {
    for (const std::string text :
         {"<root>\n<box a='1'\n b='2' &/></root>", "<root><box a='1' b &='2'/></root>"}) {
        TiXmlDocument document;
        Fault fault = {};
        EXPECT_FALSE(parseXmlDocument(text.data(), text.size(), document, &fault));
        EXPECT_EQ(fault.offset, text.find('&')) << text;
    }
}

TEST(XmlDocument, AttributesTagsAndBytesAreLimited) {
    std::string element = "<a";
    for (unsigned i = 0; i < kMaxXmlAttributes; ++i) element += " x" + std::to_string(i) + "='='";
    EXPECT_TRUE(parses(element + "/>"));
    EXPECT_FALSE(parses(element + " y=''/>"));
    EXPECT_TRUE(parses("<r>" + repeat("<a/>", kMaxXmlTags / 2) + "</r>"));
    EXPECT_FALSE(parses("<r>" + repeat("<a/>", kMaxXmlTags) + "</r>"));
    const std::string large(static_cast<std::size_t>(kMaxXmlBytes) - 9, 'x');
    EXPECT_TRUE(parses("<a v='" + large + "'/>"));
    EXPECT_FALSE(parses("<a v='" + large + "x'/>"));
}

// MinGW's runtime takes blocks for the first exceptions and keeps them. Without memory for the mutex of its
// reserve it calls itself without end.
void prepareExceptions() {
#ifdef _WIN32
    for (long nth = 0; nth < 2; ++nth) {  // with memory, and out of the reserve
        test::Allocations::failNth(nth);
        EXPECT_THROW(throw std::bad_alloc(), std::bad_alloc);
        test::Allocations::clear();
    }
#endif
}

// Every allocation of a load fails once; what the parser had made by then is released.
TEST(XmlDocument, NothingIsLostWhenMemoryRunsOut) {
    if (!test::Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    prepareExceptions();
    const std::string text =
        "<?xml version='1.0'?><!-- a comment that is no short text --><root><a_rather_long_element_name "
        "an_attribute_name_beyond_small_strings='a value that is longer than small strings are'/>"
        "<another_element_with_a_long_name with='a value that is longer than small strings are'/>"
        "<box><name value='b'/>text that is longer than small strings are<![CDATA[and some more of such]]>"
        "</box></root>";
    const std::string wrong = text + "<one></other>";
    const std::string plain =
        "<root>" +
        repeat(
            "<a_rather_long_element_name an_attribute_name_beyond_small_strings='a value that is longer "
            "than small strings are' and='two'><name value='b'/></a_rather_long_element_name>",
            3) +
        "</root>";
    for (const std::string &tried : {text, wrong, plain}) {
        long nth = 0;
        for (bool failed = true; failed && nth < 1000;) {
            Fault fault = {};
            bool parsed;
            test::Allocations::failNth(++nth);
            {
                TiXmlDocument document;
                parsed = parseXmlDocument(tried.data(), tried.size(), document, &fault);
                EXPECT_EQ(parsed, document.FirstChild() != nullptr) << nth;
            }
            failed = test::Allocations::hasFailed();
            EXPECT_EQ(test::Allocations::live(), 0) << "failure " << nth;
            test::Allocations::clear();
            EXPECT_EQ(parsed, !failed && tried != wrong) << "failure " << nth;
            if (failed && tried != wrong) {
                EXPECT_EQ(fault.code, KT_FAULT_OUT_OF_MEMORY) << nth;
            }
        }
        EXPECT_GT(nth, 20);
    }
}

// Lets `left` allocations succeed and none after them.
class MemoryEnds final : public test::AllocationWatch {
   public:
    explicit MemoryEnds(long left) : left(left) { test::AllocationWatch::install(this); }
    ~MemoryEnds() { test::AllocationWatch::install(nullptr); }
    bool mustFail(const void *) override { return left-- <= 0; }
    void allocated(void *, const void *) override {}
    void released(void *) override {}

   private:
    long left;
};

// What is released in need fails too, when it is asked for again.
TEST(XmlDocument, IsRefusedWhenMemoryIsOutForGood) {
    if (!test::Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    prepareExceptions();
    const std::string plain =
        "<root><a_rather_long_element_name an_attribute_name_beyond_small_strings='a "
        "value that is longer than small strings are'/></root>";
    for (const std::string &tried : {plain, plain + "<r><![CDATA[more]]></r>"}) {
        long refused = 0;
        for (bool parsed = false; !parsed && refused < 1000;) {
            Fault fault;
            TiXmlDocument document;
            {
                const MemoryEnds end(refused);
                parsed = parseXmlDocument(tried.data(), tried.size(), document, &fault);
            }
            EXPECT_EQ(parsed, document.FirstChild() != nullptr) << refused;
            if (parsed) break;
            EXPECT_EQ(fault.code, KT_FAULT_OUT_OF_MEMORY) << refused;
            ++refused;
        }
        EXPECT_GT(refused, 5);
        EXPECT_LT(refused, 1000);
    }
}

TEST(XmlDocument, ComesFromAFile) {
    const test::TempFolder folder;
    TiXmlDocument document;
    EXPECT_TRUE(loadXmlDocument(folder.write("a.xml", "<a/>").c_str(), document));
    EXPECT_FALSE(loadXmlDocument(folder.path("missing.xml").c_str(), document));
    EXPECT_EQ(document.FirstChild(), nullptr);
    EXPECT_FALSE(loadXmlDocument(folder.write("empty.xml", "").c_str(), document));
    EXPECT_FALSE(loadXmlDocument(folder.path("").c_str(), document));
    EXPECT_FALSE(loadXmlDocument(nullptr, document));
    const std::string large =
        folder.write("large.xml", std::string(static_cast<std::size_t>(kMaxXmlBytes) + 1, ' '));
    EXPECT_FALSE(loadXmlDocument(large.c_str(), document));
    EXPECT_EQ(FileBytes(large.c_str(), kMaxXmlBytes).data(), nullptr);
    EXPECT_NE(FileBytes(large.c_str(), kMaxXmlBytes + 1).data(), nullptr);
}

TEST(XmlValues, IntegersAreClamped) {
    EXPECT_EQ(xmlInteger("12px"), 12);
    EXPECT_EQ(xmlInteger(" -7"), -7);
    EXPECT_EQ(xmlInteger("x"), 0);
    EXPECT_EQ(xmlInteger(""), 0);
    EXPECT_EQ(xmlInteger(nullptr), 0);
    EXPECT_EQ(xmlInteger("99999999999999999999"), INT_MAX);
    EXPECT_EQ(xmlInteger("2147483648"), INT_MAX);
    EXPECT_EQ(xmlInteger("-99999999999999999999"), INT_MIN);
}

TEST(XmlValues, PlainFloatsAreThoseOfTheCLibrary) {
    std::mt19937 random(1);
    unsigned int plain = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string text(random() % 8 == 0 ? "-" : "");
        for (unsigned int left = random() % 9 + 1; left; --left)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 4) text += '.';
        for (unsigned int left = random() % 5; left; --left) text += static_cast<char>('0' + random() % 10);
        if (random() % 8 == 0) text += ".-e1x"[random() % 5];
        float value = 0.0f, expected = 0.0f;
        const bool isPlain = xmlPlainFloat(text.c_str(), value);
        ASSERT_EQ(isXmlPlainFloat(text.c_str()), isPlain) << text;
        if (!isPlain) continue;
        int length = 0;
        ASSERT_EQ(std::sscanf(text.c_str(), "%f%n", &expected, &length), 1) << text;
        ASSERT_EQ(length, int(text.size())) << text;
        ASSERT_EQ(std::memcmp(&value, &expected, sizeof value), 0) << text;
        ++plain;
    }
    EXPECT_GT(plain, 50000u);
    for (const char *text : {"", "-", ".5", "+1", " 1", "1e2", "0x1", "inf", "1.2.3", "16777217", "1,5"}) {
        float value;
        EXPECT_FALSE(xmlPlainFloat(text, value)) << text;
    }
}

TEST(XmlValues, FloatsAreFinite) {
    EXPECT_EQ(xmlFloat("0.5", 1.0f), 0.5f);
    EXPECT_EQ(xmlFloat("-2e1 and more", 1.0f), -20.0f);
    for (const char *text : {"x", "", "nan", "inf", "-inf", "1e99"})
        EXPECT_EQ(xmlFloat(text, 3.0f), 3.0f) << text;
    EXPECT_EQ(xmlFloat(nullptr, 3.0f), 3.0f);
}

}  // namespace
}  // namespace keltra
