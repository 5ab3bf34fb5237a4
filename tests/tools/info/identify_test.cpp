// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>

#include <string>

#include "tests/formats/tga_bytes.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"
#include "tools/info/inspect.h"

namespace keltra::test {
namespace {

using info::FileKind;
using ::testing::Contains;
using ::testing::Not;

FileKind kindOf(const std::string &contents, const std::string &fileName = "file.bin") {
    return info::identify(fileName, contents.data(), contents.size());
}

FileKind kindOf(const Bytes &bytes) { return info::identify("file.bin", bytes.data(), bytes.size()); }

TEST(KindNames, AreUniqueAndLeadBackToTheirKinds) {
    const std::vector<std::string> names = info::kindNames();
    EXPECT_EQ(names.size(), 8u);
    for (const std::string &name : names) EXPECT_EQ(info::kindName(info::kindOfName(name)), name);
    EXPECT_EQ(info::kindOfName("KTE"), FileKind::kUnknown);
    EXPECT_EQ(info::kindOfName(""), FileKind::kUnknown);
    EXPECT_STREQ(info::kindName(FileKind::kUnknown), "unknown");
    EXPECT_THAT(names, Not(Contains("unknown"))) << "not a kind that --as can ask for";
}

TEST(Identify, KnowsBinaryFilesByTheirFirstBytes) {
    EXPECT_EQ(kindOf(formats::writeKte({}, formats::KteVersion::k15a)), FileKind::kScene);
    EXPECT_EQ(kindOf(formats::writeKta({})), FileKind::kAnimation);
    EXPECT_EQ(kindOf("KTE file v9.9z"), FileKind::kScene) << "a version that the engine refuses";
    EXPECT_EQ(kindOf("KTE fil"), FileKind::kUnknown);
    EXPECT_EQ(kindOf(std::string("\0\0\1\xB3", 4)), FileKind::kVideo);
    EXPECT_EQ(kindOf(std::string("\0\0\1\xBA", 4)), FileKind::kVideo);
    EXPECT_EQ(kindOf(std::string("\0\0\1\xB5", 4)), FileKind::kUnknown);
}

TEST(Identify, KnowsTargasOfAllTypesByTheirHeaders) {
    for (const unsigned char type : {1, 2, 3, 9, 10, 11}) {
        Bytes header = uncompressedTga(2, 2, 24);
        header[2] = type;
        EXPECT_EQ(kindOf(header), FileKind::kTexture) << int{type};
    }
    const struct {
        std::size_t at;
        unsigned char value;
    } wrong[] = {{1, 2}, {2, 0}, {2, 4}, {2, 12}, {12, 0}, {14, 0}, {16, 0}, {16, 12}, {16, 64}};
    for (const auto &[at, value] : wrong) {
        Bytes header = uncompressedTga(2, 2, 24);
        header[at] = value;
        EXPECT_EQ(kindOf(header), FileKind::kUnknown) << at << " is " << int{value};
    }
    Bytes cut = uncompressedTga(2, 2, 24);
    cut.resize(17);
    EXPECT_EQ(kindOf(cut), FileKind::kUnknown);
}

TEST(Identify, KnowsDocumentsByTheirFirstElement) {
    const struct {
        const char *text;
        FileKind kind;
    } cases[] = {
        {"<root/>", FileKind::kInterface},
        {"<root>", FileKind::kInterface},
        {"<root\tid='1'>", FileKind::kInterface},
        {" \r\n\t<emitter>", FileKind::kEmitter},
        {"\xEF\xBB\xBF<emitter/>", FileKind::kEmitter},
        {"<?xml version='1.0'?>\n<root/>", FileKind::kInterface},
        {"<!DOCTYPE root><emitter/>", FileKind::kEmitter},
        {"<!-- <root> --><emitter/>", FileKind::kEmitter},
        {"<!-- > --><!-- <emitter/> --><root/>", FileKind::kInterface},
        {"<rooted/>", FileKind::kUnknown},
        {"<Root/>", FileKind::kUnknown},
        {"<html><root/></html>", FileKind::kUnknown},
        {"<!-- <root/>", FileKind::kUnknown},
        {"<?xml", FileKind::kUnknown},
        {"<", FileKind::kUnknown},
    };
    for (const auto &[text, kind] : cases) EXPECT_EQ(kindOf(text), kind) << text;
}

TEST(Identify, KnowsTextsByTheKeysInThem) {
    EXPECT_EQ(kindOf("KELTRA_windowX = 1"), FileKind::kSettings);
    EXPECT_EQ(kindOf("# comment\n\nKELTRA_gamma"), FileKind::kSettings) << "a key that is not known";
    EXPECT_EQ(kindOf("KELTRA_windowX = 1\nKELTRA_kerning_A = 1"), FileKind::kKerning);
    EXPECT_EQ(kindOf("keltra_windowX = 1"), FileKind::kUnknown);
    EXPECT_EQ(kindOf(std::string("KELTRA_windowX\0", 15)), FileKind::kUnknown) << "a program, not a text";
}

TEST(Identify, LooksAtTheBeginningOnly) {
    EXPECT_EQ(kindOf(std::string(65000, '\n') + "KELTRA_windowX"), FileKind::kSettings);
    EXPECT_EQ(kindOf(std::string(65536, '\n') + "KELTRA_windowX"), FileKind::kUnknown);
}

TEST(Identify, TakesTheExtensionWhenTheContentsSayNothing) {
    const struct {
        const char *name;
        FileKind kind;
    } cases[] = {
        {"a.kte", FileKind::kScene},     {"a.KTA", FileKind::kAnimation}, {"a.Tga", FileKind::kTexture},
        {"a.xml", FileKind::kInterface}, {"a.cfg", FileKind::kSettings},  {"a.ini", FileKind::kSettings},
        {"a.m1v", FileKind::kVideo},     {"a.mpg", FileKind::kVideo},     {"a.mpeg", FileKind::kVideo},
        {"a.m2v", FileKind::kVideo},     {"a.txt", FileKind::kUnknown},   {"a.kte.bak", FileKind::kUnknown},
        {"kte", FileKind::kUnknown},     {".kte", FileKind::kUnknown},    {"a.kte/b", FileKind::kUnknown},
    };
    for (const auto &[name, kind] : cases) {
        EXPECT_EQ(kindOf("nothing", name), kind) << name;
        EXPECT_EQ(info::identify(name, nullptr, 0), kind) << name << ", empty";
    }
    EXPECT_EQ(kindOf("KTA file v1.6a", "a.kte"), FileKind::kAnimation) << "contents come first";
}

}  // namespace
}  // namespace keltra::test
