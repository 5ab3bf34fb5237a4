// SPDX-License-Identifier: Zlib
#include "tools/view/source.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/support/temp_file.h"
#include "tests/support/unprivileged.h"
#include "tools/view/failure.h"

namespace fs = std::filesystem;
using keltra::test::readFile;
using keltra::test::TempFolder;
using keltra::test::Unprivileged;
using namespace keltra::view;

namespace {

std::string reasonOf(const std::string &file, const std::vector<std::string> &clips = {}) {
    LinkFolder links;
    try {
        openSource(file, clips, links, 0);
    } catch (const Failure &fault) {
        EXPECT_TRUE(fs::is_empty(links.prefix())) << "something was left behind";
        return fault.what();
    }
    return "";
}

constexpr char kTriangle[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

}  // namespace

TEST(Source, KnowsSceneFilesByNameAndByContent) {
    TempFolder folder;
    EXPECT_TRUE(isSceneFile(folder.write("a.kte", "damaged")));
    EXPECT_TRUE(isSceneFile(folder.write("a.KTE", "damaged")));
    EXPECT_TRUE(isSceneFile(folder.write("a.bin", "KTE file v1.6a and more")));
    EXPECT_FALSE(isSceneFile(folder.write("a.obj", kTriangle)));
    EXPECT_FALSE(isSceneFile(folder.write("empty", "")));
}

TEST(Source, FindsTheClipsOfAScene) {
    TempFolder folder;
    const std::string scene = folder.write("fox.kte", "x");
    for (const char *name :
         {"fox_walk.kta", "fox_run.KTA", "foxy_walk.kta", "fox.kta", "fox_walk.txt", "walk.kta"})
        folder.write(name, "x");
    fs::create_directory(folder.path("fox_folder.kta"));
    const std::vector<std::string> clips = clipsBeside(scene);
    ASSERT_EQ(clips.size(), 2u);
    EXPECT_EQ(fs::path(clips[0]).filename(), "fox_run.KTA");
    EXPECT_EQ(fs::path(clips[1]).filename(), "fox_walk.kta");
}

TEST(Source, BringsASceneAndItsClipsOntoTheStage) {
    TempFolder folder;
    const std::string scene = folder.write("fox.kte", "scene");
    folder.write("fox_walk.kta", "walk");
    folder.write("fur.tga", "fur");
    const std::string extra = folder.write("jump.kta", "jump!");
    LinkFolder links;
    const Source source = openSource(scene, {extra}, links, 3);
    EXPECT_EQ(readFile(links.path(source.scene)).size(), 5u);
    EXPECT_EQ(readFile(links.path(source.key + "/fur.tga")).size(), 3u);
    ASSERT_EQ(source.clips.size(), 2u);
    EXPECT_EQ(source.clips[0].title, "walk");
    EXPECT_FALSE(source.clips[0].wanted);
    EXPECT_EQ(readFile(links.path(source.clips[0].name)).size(), 4u);
    EXPECT_EQ(source.clips[1].title, "jump");
    EXPECT_TRUE(source.clips[1].wanted);
    EXPECT_EQ(readFile(links.path(source.clips[1].name)).size(), 5u);
}

TEST(Source, TwoStatesOfOneFileShareNoNames) {
    TempFolder folder;
    const std::string scene = folder.write("fox.kte", "scene");
    LinkFolder links;
    const Source first = openSource(scene, {}, links, 1), second = openSource(scene, {}, links, 2);
    EXPECT_NE(first.scene, second.scene);
    links.clear(first.key);
    EXPECT_TRUE(fs::exists(links.path(second.scene)));
}

TEST(Source, AModelIsConverted) {
    TempFolder folder;
    const std::string model = folder.write("tri.obj", kTriangle);
    LinkFolder links;
    const Source source = openSource(model, {}, links, 0);
    EXPECT_GT(readFile(links.path(source.scene)).size(), 17u);
    EXPECT_TRUE(source.clips.empty());
}

TEST(Source, SaysWhatCannotBeOpened) {
    TempFolder folder;
    EXPECT_EQ(reasonOf(folder.path("none.kte")), folder.path("none.kte") + ": No such file or directory");
    fs::create_directory(folder.path("folder.kte"));
    EXPECT_EQ(reasonOf(folder.path("folder.kte")), folder.path("folder.kte") + ": is a folder");
    ASSERT_EQ(mkfifo(folder.path("pipe.kte").c_str(), 0600), 0);
    EXPECT_EQ(reasonOf(folder.path("pipe.kte")), folder.path("pipe.kte") + ": is not a regular file");
    EXPECT_NE(reasonOf(""), "");
    const std::string scene = folder.write("fox.kte", "scene");
    EXPECT_EQ(reasonOf(scene, {folder.path("no.kta")}),
              folder.path("no.kta") + ": No such file or directory");
}

TEST(Source, AFileWithoutPermissionIsAFailure) {
    TempFolder folder;
    const std::string scene = folder.write("fox.kte", "scene");
    fs::permissions(folder.prefix(), fs::perms::all);
    fs::permissions(scene, fs::perms::none);
    const Unprivileged unprivileged;
    EXPECT_EQ(reasonOf(scene), scene + ": Permission denied");
}

TEST(Source, AFolderThatCannotBeReadHasNoClips) {
    EXPECT_TRUE(clipsBeside("/nowhere/at/all/fox.kte").empty());
}

TEST(Source, WhatNoImporterReadsIsAFailure) {
    TempFolder folder;
    const std::string reason = reasonOf(folder.write("noise.obj.zzz", "no model"));
    EXPECT_EQ(reason.find(folder.path("noise.obj.zzz") + ": "), 0u) << reason;
    EXPECT_EQ(reason.find('\n'), std::string::npos);
}

TEST(Source, FailuresStayOnOneLine) {
    EXPECT_STREQ(failure("a\nb\x1b[2J", "is bad").what(), "a?b?[2J: is bad");
    EXPECT_STREQ(failure("\t\x7f\r", "is bad").what(), "???: is bad");
    EXPECT_STREQ(failure("Z\xc3\xbcrich/a b.kte", "is bad").what(), "Z\xc3\xbcrich/a b.kte: is bad");
    EXPECT_STREQ(failure("", "is bad").what(), ": is bad");
}

TEST(Source, AFailureRemovesOnlyItsOwnLinks) {
    TempFolder folder;
    const std::string scene = folder.write("fox.kte", "scene");
    LinkFolder links;
    const Source shown = openSource(scene, {}, links, 1);
    EXPECT_THROW(openSource(scene, {folder.path("no.kta")}, links, 2), Failure);
    EXPECT_TRUE(fs::exists(links.path(shown.scene)));
    EXPECT_FALSE(fs::exists(links.path("m2-scene.kte")));
    EXPECT_FALSE(fs::exists(links.path("m2")));
}

TEST(Source, AConvertedModelBringsItsClipsAndTextures) {
    TempFolder folder;
    folder.write("paint.mtl", "newmtl paint\nmap_Kd gone.png\n");
    const std::string model = folder.write(
        "tri.obj", "mtllib paint.mtl\nusemtl paint\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nf 1/1 2/1 3/1\n");
    LinkFolder links;
    const Source source = openSource(model, {}, links, 0);
    EXPECT_TRUE(fs::exists(links.path(source.key + "/tri_gone_d.tga"))) << "the checkerboard";
    EXPECT_EQ(source.scene, "m0-scene.kte");
}

TEST(Source, ClipsOfOneNameHaveLinksOfTheirOwn) {
    TempFolder folder, other;
    const std::string scene = folder.write("fox.kte", "scene");
    folder.write("fox_walk.kta", "1");
    const std::string same = other.write("walk.kta", "12");
    LinkFolder links;
    const Source source = openSource(scene, {same, same}, links, 0);
    ASSERT_EQ(source.clips.size(), 3u);
    for (const ClipFile &clip : source.clips) EXPECT_EQ(clip.title, "walk");
    EXPECT_EQ(readFile(links.path(source.clips[0].name)).size(), 1u);
    EXPECT_EQ(readFile(links.path(source.clips[1].name)).size(), 2u);
    EXPECT_NE(source.clips[1].name, source.clips[2].name);
}
