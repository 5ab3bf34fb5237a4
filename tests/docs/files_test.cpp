// SPDX-License-Identifier: Zlib
// The files that the documents show are given to the engine's loaders, and to keltra-info.

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <cstdio>
#include <cstdlib>

#include "tests/docs/document.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"

namespace keltra::test {
namespace {

class ShownFilesTest : public ::testing::Test {
   protected:
    ~ShownFilesTest() override {
        KTFONT::cleanUp();
        KTNODE::cleanUp();
        KTTEXTURE::cleanUp();
        KTFONT::setPath(nullptr);
    }

    /// Writes the page's only block of the language as FILE and lets keltra-info look at it.
    std::string shown(const std::string &page, const std::string &language, const std::string &kind) {
        std::string text;
        int blocks = 0;
        for (const Block &block : readDocument(page).blocks) {
            if (block.language != language) continue;
            ++blocks;
            for (const std::string &line : block.lines) text += line + "\n";
        }
        EXPECT_EQ(blocks, 1) << page;
        const std::string path = folder.write("shown." + language, text);
        expectGood(path, kind);
        return path;
    }

    TempFolder folder;

   private:
    // Good, and without a note about what is unknown.
    static void expectGood(const std::string &path, const std::string &kind) {
#if defined(KELTRA_INFO)
        const std::string program = std::string(KELTRA_INFO) + " --as " + kind + " ";
        EXPECT_EQ(std::system((program + "--check " + path + " >/dev/null").c_str()), 0) << path;
        std::string output;
        std::FILE *pipe = popen((program + path + " 2>&1").c_str(), "r");
        ASSERT_TRUE(pipe);
        for (int c; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
        pclose(pipe);
        EXPECT_EQ(output.find("not known"), std::string::npos) << output;
        EXPECT_EQ(output.find("unknown"), std::string::npos) << output;
#else
        (void)path, (void)kind;
#endif
    }

    const GlRecorder::Stub stub;
};

TEST_F(ShownFilesTest, TheSettingsFileLoads) {
    const std::string path = shown("docs/formats/settings.md", "settings", "settings");
    KTSETTINGS settings;
    ASSERT_TRUE(settings.load(path.c_str()));
    EXPECT_EQ(settings.getWindowX(), 320);
    EXPECT_EQ(settings.getWindowY(), 240);
    EXPECT_TRUE(settings.isLandscape());
    EXPECT_STREQ(settings.getTexturePath(), "data/textures/");
}

TEST_F(ShownFilesTest, TheKerningFileLoads) {
    const std::string path = shown("docs/formats/kerning.md", "kerning", "kerning");
    KTFONT *font = new KTFONT;
    ASSERT_TRUE(font->loadKerning(path.c_str()));
    EXPECT_EQ(font->getKerning('A'), 6);
    EXPECT_EQ(font->getKerning('i'), 12);
    EXPECT_EQ(font->getKerning(' '), 12);
    EXPECT_EQ(font->getKerning('#'), 4);
    EXPECT_EQ(font->getKerning('='), 4);
}

// The page's warning: the keys of S, D and E are found in the lines of the named keys too.
TEST_F(ShownFilesTest, TheNamesOfKerningKeysBelongAtTheEnd) {
    KTFONT *font = new KTFONT;
    font->setKerning('S', 7);
    const std::string none = folder.write("none.txt", std::string("KELTRA_kerning_SPACE = 12\n"));
    ASSERT_TRUE(font->loadKerning(none.c_str()));
    EXPECT_EQ(font->getKerning('S'), 0);
    const std::string first =
        folder.write("first.txt", std::string("KELTRA_kerning_S = 3\nKELTRA_kerning_SPACE = 12\n"));
    ASSERT_TRUE(font->loadKerning(first.c_str()));
    EXPECT_EQ(font->getKerning('S'), 3);
}

TEST_F(ShownFilesTest, TheInterfaceLoads) {
    const std::string path = shown("docs/formats/gui.md", "xml", "gui");
    KTNODE *root = KELTRA::loadXML(path.c_str());
    ASSERT_TRUE(root);
    KTNODE *node = root->findByNameInHierarchy("main");
    ASSERT_TRUE(node);
    ASSERT_EQ(node->getType(), unsigned{KT_WINDOW});
    KTWINDOW *window = static_cast<KTWINDOW *>(node);
    EXPECT_EQ(window->getSizeY(), 120);
    EXPECT_EQ(window->font, KTFONT::findByName("text"));
    ASSERT_EQ(window->getNumberOfChildren(), 3u);  // title bar, scroll bar, the button
    EXPECT_STREQ(static_cast<KTBUTTON *>(window->getChild(2))->getCaption(), "Close");
}

TEST_F(ShownFilesTest, TheEmitterLoads) {
    const std::string path = shown("docs/formats/emitter.md", "xml", "emitter");
    KTEMITTER *emitter = new KTEMITTER;
    ASSERT_TRUE(emitter->load(path.c_str()));
    EXPECT_EQ(emitter->getNumberOfParticles(), 300);
    EXPECT_EQ(emitter->getMaximumEnergy(), 90u);
    EXPECT_EQ(emitter->getGravity().y, 6.0f);
    EXPECT_EQ(emitter->getBlendingDst(), 1u);
}

// The rule of settings files about line ends.
TEST_F(ShownFilesTest, TextBehindTheLastLineFeedIsSplitAtCarriageReturns) {
    vnfParser parser;
    const std::string path = folder.write("text.txt", std::string("one\r\nkey = 22\rlast = 3"));
    ASSERT_TRUE(vnfOpenParser(&parser, path.c_str()));
    char line[256];
    const char *lines[] = {"one\r", "key = 2", "last = 3"};
    for (const char *expected : lines) {
        ASSERT_TRUE(vnfReadLine(&parser, line));
        EXPECT_STREQ(line, expected);
    }
    EXPECT_FALSE(vnfReadLine(&parser, line));
    vnfCloseParser(&parser);
}

}  // namespace
}  // namespace keltra::test
