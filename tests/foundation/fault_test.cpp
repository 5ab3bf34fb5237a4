// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tests/support/special_files.h"
#include "tests/support/unprivileged.h"

namespace {

using namespace keltra;
using keltra::test::TempFolder;

class FaultTest : public ::testing::Test {
   protected:
    void SetUp() override {
        if (!kFaultTexts) GTEST_SKIP() << "there are no sentences";
        KTFAULTS::clear();
    }
    void TearDown() override { KTFAULTS::setHandler(nullptr, nullptr); }

    static std::string sentenceOf(const KTFAULT *fault) {
        char text[1024];
        KTFAULTS::format(fault, text, sizeof text);
        return text;
    }
    static std::string last() { return sentenceOf(KTFAULTS::getLast()); }

    static KTFAULT unknown() {
        KTFAULT fault = newFault(KT_FAULT_UNKNOWN);
        setFaultText(fault.field, "attribute of `box`");
        setFaultText(fault.found, "colour");
        setFaultText(fault.expected, "color");
        return fault;
    }
};

TEST_F(FaultTest, ThereIsNoneAtFirst) {
    EXPECT_EQ(KTFAULTS::getLast(), nullptr);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
    char text[] = "as it was";
    EXPECT_EQ(KTFAULTS::format(nullptr, text, sizeof text), 0u);
    EXPECT_STREQ(text, "");
}

TEST_F(FaultTest, AnApplicationReportsItsOwn) {
    unsigned int handed = 0;
    KTFAULTS::setHandler([](const KTFAULT *, void *user) { ++*static_cast<unsigned int *>(user); }, &handed);
    KTFAULT own = newFault(KT_FAULT_DATA);
    own.call = "GAME::resume";
    setFaultText(own.field, "checksum");
    setFaultText(own.expected, "another one");
    KTFAULTS::report(nullptr);
    KTFAULTS::report(&own);
    EXPECT_EQ(handed, 1u);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 1u);
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_DATA);
    EXPECT_EQ(last().rfind("GAME::resume: checksum", 0), 0u) << last();
}

// An application may fill in any of them.
TEST_F(FaultTest, PlacesOfAnyNumber) {
    KTFAULT own = newFault(KT_FAULT_OUT_OF_MEMORY);
    own.byte = LONG_MAX;
    EXPECT_EQ(sentenceOf(&own), "byte " + std::to_string(LONG_MAX) + ": out of memory");
    own.byte = 0;
    EXPECT_EQ(sentenceOf(&own), "byte 0: out of memory");
    own.byte = LONG_MIN;
    EXPECT_EQ(sentenceOf(&own), "out of memory");
    own.line = INT_MAX;
    EXPECT_EQ(sentenceOf(&own), "line 2147483647: out of memory");
}

TEST_F(FaultTest, TheLineOfTheFileThatNeedsItFollowsThatFile) {
    KTFAULT own = newFault(KT_FAULT_OUT_OF_MEMORY);
    std::strcpy(own.file, "a.tga");
    own.neededByLine = 3;
    EXPECT_EQ(sentenceOf(&own), "a.tga: out of memory");
    std::strcpy(own.neededBy, "a.xml");
    EXPECT_EQ(sentenceOf(&own), "a.tga (needed by a.xml, line 3): out of memory");
    own.neededByLine = 0;
    EXPECT_EQ(sentenceOf(&own), "a.tga (needed by a.xml): out of memory");
}

TEST_F(FaultTest, ArgumentsAreNamed) {
    EXPECT_FALSE(failNull(KT_CALL("KTNODE::link"), KT_TEXT("parent")));
    EXPECT_EQ(last(), "KTNODE::link: `parent` is null");
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_NULL);
    EXPECT_EQ(KTFAULTS::getLast()->severity, KT_FAULT_ERROR);
    EXPECT_FALSE(
        failValue(KT_CALL("KTMATERIAL::setTexture"), KT_TEXT("level"), 9, KT_TEXT("%ld to %ld"), 0, 7));
    EXPECT_EQ(last(), "KTMATERIAL::setTexture: `level` is 9, expected 0 to 7");
    EXPECT_FALSE(failState(KT_CALL("KELTRA::free"), KT_TEXT("the engine is not active")));
    EXPECT_EQ(last(), "KELTRA::free: the engine is not active");
    EXPECT_FALSE(failMemory(KT_CALL("KTNODE::link")));
    EXPECT_EQ(last(), "KTNODE::link: out of memory");
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 4u);
}

TEST_F(FaultTest, TheReasonOfAFileIsFound) {
    const TempFolder folder;
    const std::string empty = folder.write("empty", "");
    FaultScope(KT_CALL("KELTRA::load"), folder.path("none").c_str()).failFile();
    EXPECT_EQ(last(), "KELTRA::load: " + folder.path("none") + ": the file does not exist");
    for (const std::string &path : specialFiles(folder)) {
        FaultScope(KT_CALL("KELTRA::load"), path.c_str()).failFile();
        EXPECT_EQ(last(), "KELTRA::load: " + path + ": not a regular file");
    }
    FaultScope(KT_CALL("KELTRA::load"), empty.c_str()).failFile();
    EXPECT_EQ(last(), "KELTRA::load: " + empty + ": the file is empty");
    FaultScope(KT_CALL("KELTRA::load"), "").failFile();
    EXPECT_EQ(last(), "KELTRA::load: the file name is empty or too long");
    FaultScope(KT_CALL("KELTRA::load")).failFile();
    EXPECT_EQ(last(), "KELTRA::load: `name` is null");
}

TEST_F(FaultTest, AFileThatIsTooLargeNamesTheLimit) {
    const TempFolder folder;
    const std::string file = folder.write("file", "12345");
    FaultScope scope(KT_CALL("KELTRA::load"), file.c_str());
    EXPECT_FALSE(scope.failFile(false, 4));
    EXPECT_EQ(last(), "KELTRA::load: " + file + ": the file is too large: 4 bytes at most");
}

TEST_F(FaultTest, TheOutermostScopeSpeaksAndOnce) {
    FaultScope outer(KT_CALL("KELTRA::load"), "castle.kte");
    {
        FaultScope inner(KT_CALL("KTTEXTURE::load"), "stone.tga");
        EXPECT_FALSE(inner.fail(KT_FAULT_FILE_EMPTY));
        EXPECT_FALSE(inner.fail(KT_FAULT_OUT_OF_MEMORY));
    }
    EXPECT_EQ(last(), "KELTRA::load: stone.tga (needed by castle.kte): the file is empty");
    EXPECT_FALSE(outer.fail(KT_FAULT_OUT_OF_MEMORY));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 1u);
}

TEST_F(FaultTest, WhatALoadCanDoWithoutIsAWarning) {
    FaultScope outer(KT_CALL("KELTRA::loadXML"), "desk.xml");
    outer.setLine(7);
    {
        const FaultOptional optional;
        FaultScope(KT_CALL("KTTEXTURE::load"), "wood.tga").fail(KT_FAULT_FILE_MISSING);
    }
    EXPECT_EQ(KTFAULTS::getLast()->severity, KT_FAULT_WARNING);
    EXPECT_EQ(last(), "KELTRA::loadXML: wood.tga (needed by desk.xml, line 7): the file does not exist");
    EXPECT_FALSE(outer.fail(KT_FAULT_OUT_OF_MEMORY));
    EXPECT_EQ(last(), "KELTRA::loadXML: desk.xml, line 7: out of memory");
}

TEST_F(FaultTest, AFileThatCannotBeReadSaysWhy) {
    FaultScope(KT_CALL("KTTEXTURE::load"), "wood.tga").fail(KT_FAULT_FILE_ACCESS);
    EXPECT_EQ(last(), "KTTEXTURE::load: wood.tga: the file cannot be opened: no permission, or it is locked");
    FaultScope(KT_CALL("KTTEXTURE::load"), "wood.tga").fail(KT_FAULT_FILE_READ);
    EXPECT_EQ(last(), "KTTEXTURE::load: wood.tga: the file cannot be read to its end");
}

TEST_F(FaultTest, AnUnknownNameComesWithTheNearest) {
    KTFAULT fault = unknown();
    fault.line = 3;
    const FaultScope scope(KT_CALL("KELTRA::loadXML"), "desk.xml");
    warnFault({}, fault);
    EXPECT_EQ(last(),
              "KELTRA::loadXML: desk.xml, line 3: `colour`: unknown attribute of `box`; did you mean "
              "`color`?");
}

TEST_F(FaultTest, TheFirstAndTheLastCodeHaveTheirSentences) {
    EXPECT_THAT(sentenceOf(&newFault(KT_FAULT_NULL)), ::testing::HasSubstr("null"));
    KTFAULT fault = newFault(KT_FAULT_START);
    setFaultText(fault.field, "SDL_Init");
    EXPECT_EQ(sentenceOf(&fault), "the step `SDL_Init` of start-up failed");
    fault.code = static_cast<KT_FAULT_CODE>(KT_FAULT_START + 1);
    EXPECT_EQ(sentenceOf(&fault), "") << "of a later engine";
}

TEST_F(FaultTest, SilenceTellsNothing) {
    const FaultSilence silence;
    EXPECT_FALSE(failNull(KT_CALL("KELTRA::load"), KT_TEXT("name")));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

TEST_F(FaultTest, SentencesAreCutToTheBufferAndCounted) {
    KTFAULT fault = unknown();
    char text[10] = "";
    const unsigned int length = KTFAULTS::format(&fault, nullptr, 0);
    EXPECT_EQ(KTFAULTS::format(&fault, text, sizeof text), length);
    EXPECT_STREQ(text, "`colour`:");
    EXPECT_EQ(length, std::string("`colour`: unknown attribute of `box`; did you mean `color`?").size());
}

TEST_F(FaultTest, ControlCharactersOfAFileAreNotPassedOn) {
    KTFAULT fault = unknown();
    setFaultText(fault.found, "a\x1b[2J\nb");
    EXPECT_EQ(sentenceOf(&fault).find("`a?[2J?b`"), 0u);
}

TEST_F(FaultTest, OfALongPathTheEndIsKept) {
    const std::string path = std::string(300, 'd') + "/castle.kte";
    FaultScope(KT_CALL("KELTRA::load"), path.c_str()).failFile();
    const std::string file = KTFAULTS::getLast()->file;
    EXPECT_EQ(file.size(), 255u);
    EXPECT_EQ(file.substr(0, 4), "...d");
    EXPECT_EQ(file.substr(file.size() - 10), "castle.kte");
}

struct Received {
    std::vector<std::string> sentences;
};

TEST_F(FaultTest, TheHandlerReceivesEach) {
    Received received;
    KTFAULTS::setHandler(
        [](const KTFAULT *fault, void *user) {
            static_cast<Received *>(user)->sentences.push_back(sentenceOf(fault));
        },
        &received);
    failNull(KT_CALL("KELTRA::load"), KT_TEXT("first"));
    failNull(KT_CALL("KELTRA::load"), KT_TEXT("last"));
    EXPECT_THAT(received.sentences,
                testing::ElementsAre("KELTRA::load: `first` is null", "KELTRA::load: `last` is null"));
}

TEST_F(FaultTest, AHandlerMayFailItselfWithoutBeingCalledAgain) {
    static int calls;
    calls = 0;
    KTFAULTS::setHandler(
        [](const KTFAULT *fault, void *) {
            ++calls;
            EXPECT_TRUE(isInFaultHandler());
            FaultScope inner(KT_CALL("KTTEXTURE::load"), "other.tga");
            inner.fail(KT_FAULT_FILE_MISSING);
            EXPECT_EQ(last(), "KTTEXTURE::load: other.tga: the file does not exist");
            EXPECT_EQ(sentenceOf(fault), "KELTRA::load: castle.kte: out of memory");
        },
        nullptr);
    FaultScope outer(KT_CALL("KELTRA::load"), "castle.kte");
    outer.fail(KT_FAULT_OUT_OF_MEMORY);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(isInFaultHandler());
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 2u);
}

#ifndef _WIN32  // the engine asks no environment there
TEST_F(FaultTest, TheEnvironmentPrintsThem) {
    // A process of its own, since the variable is read once.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("KELTRA_FAULTS", "1", 1);
            failNull(KT_CALL("KTNODE::link"), KT_TEXT("parent"));
            std::exit(0);
        },
        testing::ExitedWithCode(0), "keltra: error: KTNODE::link: `parent` is null");
}
#endif

TEST_F(FaultTest, WithoutHandlerAndEnvironmentNothingIsPrinted) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    failNull(KT_CALL("KTNODE::link"), KT_TEXT("parent"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(FaultCodesTest, ACodeAndWhatWasFoundAreThereInAnyBuild) {
    KTFAULTS::clear();
    failNull(KT_CALL("KTNODE::link"), KT_TEXT("parent"));
    char text[256];
    KTFAULTS::format(KTFAULTS::getLast(), text, sizeof text);
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_NULL);
    EXPECT_STREQ(KTFAULTS::getLast()->call, "KTNODE::link");
    EXPECT_STREQ(text, kFaultTexts ? "KTNODE::link: `parent` is null" : "KTNODE::link: fault 1");
}

}  // namespace
