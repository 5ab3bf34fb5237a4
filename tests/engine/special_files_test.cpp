// SPDX-License-Identifier: Zlib
// What is not a regular file is refused by every call that reads or writes one, and never waited for.

#include <functional>

#include "tests/support/engine_fixture.h"
#include "tests/support/special_files.h"

namespace keltra::test {
namespace {

struct Reader {
    const char *call;
    std::function<bool(const char *)> read;
};

const std::vector<Reader> kReaders = {
    {"KELTRA::load", [](const char *path) { return KELTRA::load(path) != nullptr; }},
    {"KELTRA::loadXML", [](const char *path) { return KELTRA::loadXML(path) != nullptr; }},
    {"KTANIM::load", [](const char *path) { return std::make_unique<KTANIM>()->load(path); }},
    {"KTTEXTURE::load", [](const char *path) { return std::make_unique<KTTEXTURE>()->load(path); }},
    {"KTFONT::loadKerning", [](const char *path) { return std::make_unique<KTFONT>()->loadKerning(path); }},
    {"KTEMITTER::load", [](const char *path) { return std::make_unique<KTEMITTER>()->load(path); }},
    {"KTVIDEO::load", [](const char *path) { return std::make_unique<KTVIDEO>()->load(path); }},
    {"KTSETTINGS::load", [](const char *path) { return KTSETTINGS().load(path); }},
    {"vnfOpenParser",
     [](const char *path) {
         vnfParser parser;
         return vnfOpenParser(&parser, path);
     }},
};

class SpecialFilesTest : public EngineTest {
   protected:
    void SetUp() override {
        EngineTest::SetUp();
        KTVIDEO::setMPGPath(nullptr);  // it outlives the engine
    }

    TempFolder folder;
};

TEST_F(SpecialFilesTest, NoCallReadsFoldersDevicesOrPipes) {
    const std::vector<std::string> paths = specialFiles(folder);
    for (const Reader &reader : kReaders) {
        for (const std::string &path : paths) {
            KTFAULTS::clear();
            EXPECT_FALSE(reader.read(path.c_str())) << reader.call << ": " << path;
            const KTFAULT *fault = KTFAULTS::getLast();
            ASSERT_NE(fault, nullptr) << reader.call << ": " << path;
            EXPECT_EQ(fault->code, KT_FAULT_FILE_KIND) << reader.call << ": " << path;
            EXPECT_STREQ(fault->call, reader.call) << path;
        }
    }
    EXPECT_EQ(KTTEXTURE::getNumberOfTextures(), 0u);
    for (const std::string &path : paths) {
        EXPECT_FALSE(vnfFileExists(path.c_str())) << path;
        EXPECT_EQ(vnfFileSize(path.c_str()), -1) << path;
    }
}

#ifndef _WIN32  // pipes have no names in folders there
TEST_F(SpecialFilesTest, NoCallWaitsForTheReaderOfAPipe) {
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto animation = std::make_unique<KTANIM>();
    EXPECT_FALSE(animation->save(pipe.c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_WRITE);
    EXPECT_FALSE(vnfOpenLog(pipe.c_str()));
    EXPECT_EQ(KTFAULTS::getLast()->code, KT_FAULT_FILE_WRITE);
}
#endif

}  // namespace
}  // namespace keltra::test
