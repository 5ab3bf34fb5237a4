// SPDX-License-Identifier: Zlib
// Failures of the foundation's calls.

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

// All timers and identifiers are free again.
void restart() { EXPECT_TRUE(vnfOpenLog(nullptr)); }

void withLog(Folder folder, const std::function<void()> &body) {
    EXPECT_TRUE(vnfOpenLog(folder.path("run.txt").c_str()));
    body();
    vnfCloseLog();
    restart();
}

TEST_F(FaultTableTest, RunLog) {
    check({
        {"vnfOpenLog",
         [](Folder folder) {
             withLog(folder, [&] { EXPECT_FALSE(vnfOpenLog(folder.path("other.txt").c_str())); });
         },
         kError, KT_FAULT_STATE, "vnfOpenLog: a log is open already"},
        {"vnfOpenLog", [](Folder folder) { EXPECT_FALSE(vnfOpenLog(folder.path("none/run.txt").c_str())); },
         kError, KT_FAULT_FILE_WRITE, "vnfOpenLog: %Dnone/run.txt: the file cannot be written"},
        {"vnfLog", [](Folder) { EXPECT_FALSE(vnfLog(nullptr)); }, kError, KT_FAULT_NULL,
         "vnfLog: `format` is null"},
#ifndef _WIN32  // whose C library writes such a character in another form
        {"vnfLog", [](Folder folder) { withLog(folder, [] { EXPECT_FALSE(vnfLog("%ls", L"\u0100")); }); },
         kError, KT_FAULT_ARGUMENT, "vnfLog: `format` is not to be written"},
#endif
    });
}

TEST_F(FaultTableTest, Timers) {
    const auto freed = [](bool (*call)(int)) {
        restart();
        EXPECT_FALSE(call(0));
    };
    check({
        {"vnfNewTimer",
         [](Folder) {
             while (vnfNewTimer(1.0f) >= 0) {
             }
             restart();
         },
         kError, KT_FAULT_FULL, "vnfNewTimer: timers, 8 at most: full"},
        {"vnfFreeTimer", [](Folder) { EXPECT_FALSE(vnfFreeTimer(8)); }, kError, KT_FAULT_ARGUMENT,
         "vnfFreeTimer: `timer` is 8, expected 0 to 7"},
        {"vnfFreeTimer", [&](Folder) { freed(vnfFreeTimer); }, kError, KT_FAULT_STATE,
         "vnfFreeTimer: the timer is free"},
        {"vnfAdjournTimer", [](Folder) { EXPECT_FALSE(vnfAdjournTimer(-1)); }, kError, KT_FAULT_ARGUMENT,
         "vnfAdjournTimer: `timer` is -1, expected 0 to 7"},
        {"vnfAdjournTimer", [&](Folder) { freed(vnfAdjournTimer); }, kError, KT_FAULT_STATE,
         "vnfAdjournTimer: the timer is free"},
    });
}

TEST_F(FaultTableTest, Identifiers) {
    check({
        {"vnfNewId",
         [](Folder) {
             while (vnfNewId()) {
             }
             restart();
         },
         kError, KT_FAULT_FULL, "vnfNewId: identifiers, 65535 at most: full"},
        {"vnfNewId",
         [](Folder) {
             vnfCloseLog();
             EXPECT_EQ(vnfNewId(), 0u);
             restart();
         },
         kError, KT_FAULT_STATE, "vnfNewId: the foundation is not started"},
        {"releaseId", [](Folder) { EXPECT_FALSE(releaseId(0)); }, kError, KT_FAULT_ARGUMENT,
         "releaseId: `id` is 0, expected 1 to 65535"},
        {"releaseId", [](Folder) { EXPECT_FALSE(releaseId(65536)); }, kError, KT_FAULT_ARGUMENT,
         "releaseId: `id` is 65536, expected 1 to 65535"},
        {"releaseId", [](Folder) { EXPECT_FALSE(releaseId(65535)); }, kError, KT_FAULT_STATE,
         "releaseId: the identifier is free already"},
    });
}

// The engine gives identifiers and its timer back after a log was opened, which has freed them: that is no
// failure of the application.
TEST_F(FaultTableTest, ALogThatIsOpenedWhileTheEngineRunsMakesNoFault) {
    KTFAULTS::clear();
    KTNODE *node = new KTNODE;
    restart();
    delete node;
    frame3D(nullptr, [] {});
    EXPECT_TRUE(KELTRA::free());
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

TEST_F(FaultTableTest, ParsersThatOpenNothing) {
    static vnfParser parser;
    check({
        {"vnfOpenParser", [](Folder) { EXPECT_FALSE(vnfOpenParser(nullptr, nullptr)); }, kError,
         KT_FAULT_NULL, "vnfOpenParser: `path` is null"},
        {"vnfOpenParser", [](Folder) { EXPECT_FALSE(vnfOpenParser(&parser, nullptr)); }, kError,
         KT_FAULT_NULL, "vnfOpenParser: `path` is null"},
        {"vnfOpenParser",
         [](Folder folder) { EXPECT_FALSE(vnfOpenParser(nullptr, folder.write("a", "text").c_str())); },
         kError, KT_FAULT_NULL, "vnfOpenParser: %Da: `parser` is null"},
        {"vnfOpenParser",
         [](Folder folder) { EXPECT_FALSE(vnfOpenParser(&parser, folder.path("b").c_str())); }, kError,
         KT_FAULT_FILE_MISSING, "vnfOpenParser: %Db: the file does not exist"},
        {"vnfOpenParser",
         [](Folder folder) { EXPECT_FALSE(vnfOpenParser(&parser, folder.write("c", "").c_str())); }, kError,
         KT_FAULT_FILE_EMPTY, "vnfOpenParser: %Dc: the file is empty"},
        {"vnfOpenParser",
         [](Folder folder) { EXPECT_FALSE(vnfOpenParser(&parser, folder.path(".").c_str())); }, kError,
         KT_FAULT_FILE_KIND, "vnfOpenParser: %D.: not a regular file"},
        {"vnfCloseParser", [](Folder) { EXPECT_FALSE(vnfCloseParser(nullptr)); }, kError, KT_FAULT_NULL,
         "vnfCloseParser: `parser` is null"},
        {"vnfCloseParser", [](Folder) { EXPECT_FALSE(vnfCloseParser(&parser)); }, kError, KT_FAULT_STATE,
         "vnfCloseParser: the parser holds no text"},
    });
}

TEST_F(FaultTableTest, ParsersWithoutATextOrAnArgument) {
    static vnfParser empty, parser;
    ASSERT_TRUE(vnfOpenParser(&parser, folder.write("text", "a = 1\n").c_str()));
    check({
        {"vnfRemoveComments", [](Folder) { EXPECT_FALSE(vnfRemoveComments(nullptr, '#')); }, kError,
         KT_FAULT_NULL, "vnfRemoveComments: `parser` is null"},
        {"vnfRemoveComments", [](Folder) { EXPECT_FALSE(vnfRemoveComments(&empty, '#')); }, kError,
         KT_FAULT_STATE, "vnfRemoveComments: the parser holds no text"},
        {"vnfReadLine",
         [](Folder) {
             char line[256];
             EXPECT_FALSE(vnfReadLine(&empty, line));
         },
         kError, KT_FAULT_STATE, "vnfReadLine: the parser holds no text"},
        {"vnfReadLine", [](Folder) { EXPECT_FALSE(vnfReadLine(&parser, nullptr)); }, kError, KT_FAULT_NULL,
         "vnfReadLine: `line` is null"},
        {"vnfParseInt",
         [](Folder) {
             int value;
             EXPECT_FALSE(vnfParseInt(nullptr, "a", &value));
         },
         kError, KT_FAULT_NULL, "vnfParseInt: `parser` is null"},
        {"vnfParseInt",
         [](Folder) {
             int value;
             EXPECT_FALSE(vnfParseInt(&parser, nullptr, &value));
         },
         kError, KT_FAULT_NULL, "vnfParseInt: `key` is null"},
        {"vnfParseInt", [](Folder) { EXPECT_FALSE(vnfParseInt(&parser, "a", nullptr)); }, kError,
         KT_FAULT_NULL, "vnfParseInt: `value` is null"},
        {"vnfParseString",
         [](Folder) {
             char value[256];
             EXPECT_FALSE(vnfParseString(&parser, nullptr, value));
         },
         kError, KT_FAULT_NULL, "vnfParseString: `key` is null"},
        {"vnfParseString", [](Folder) { EXPECT_FALSE(vnfParseString(&parser, "a", nullptr)); }, kError,
         KT_FAULT_NULL, "vnfParseString: `value` is null"},
    });
    vnfCloseParser(&parser);
}

TEST_F(FaultTableTest, WhatIsNotThereIsNoFault) {
    vnfParser parser;
    ASSERT_TRUE(vnfOpenParser(&parser, folder.write("text", "a\n").c_str()));
    KTFAULTS::clear();
    char line[256];
    int value;
    EXPECT_FALSE(vnfRemoveComments(&parser, '#'));
    EXPECT_FALSE(vnfParseInt(&parser, "b", &value));
    EXPECT_FALSE(vnfParseString(&parser, "b", line));
    EXPECT_TRUE(vnfReadLine(&parser, line));
    EXPECT_FALSE(vnfReadLine(&parser, line));
    EXPECT_EQ(vnfFileSize(folder.path("none").c_str()), -1);
    EXPECT_FALSE(vnfFileExists(nullptr));
    EXPECT_FALSE(vnfLog("nobody reads this\n"));
    EXPECT_EQ(vnfGetTimerFps(9), -1.0f);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
    vnfCloseParser(&parser);
}

}  // namespace
}  // namespace keltra::test
