// SPDX-License-Identifier: Zlib
// Files of every kind, cut short and changed byte by byte: whatever they hold, what is printed of them is
// text, and a fault lies within the file.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/formats/tga_bytes.h"
#include "tests/scene/scene_parts.h"
#include "tests/support/cpu_time.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"
#include "tools/info/print.h"

namespace keltra::test {
namespace {

using info::FileKind;
using info::FileReport;

Bytes bytesOf(const std::string &text) { return {text.begin(), text.end()}; }

Bytes sceneBytes() {
    formats::Scene scene = sceneOf(plainNode(
        "root", {lightNode("lamp"), skinNode("skin", {"hip"}, 4, "stone"), boneNode("hip", {0, 1, 0})}));
    scene.materials.push_back({"stone", "stone_d.tga", "lava"});
    return formats::writeKte(scene, formats::KteVersion::k16a);
}

Bytes animationBytes() {
    formats::Animation animation;
    animation.bones = {"hip", "knee"};
    animation.frames.resize(3, std::vector<formats::Keyframe>(2));
    return formats::writeKta(animation);
}

struct Example {
    FileKind kind;
    Bytes bytes;
    bool endMatters;  // without its last byte the file is bad
};

std::vector<Example> examples() {
    return {
        {FileKind::kScene, sceneBytes(), true},
        {FileKind::kAnimation, animationBytes(), true},
        {FileKind::kTexture, uncompressedTga(3, 2, 24), true},
        {FileKind::kTexture, joined(tgaHeader(kRunLength, 4, 1, 24), {0x83, 1, 2, 3}), true},
        {FileKind::kSettings, bytesOf("KELTRA_windowX = 3 # c\nKELTRA_title = \"a\"\n"), false},
        {FileKind::kKerning, bytesOf("KELTRA_kerning_A = 3\nKELTRA_kerning_SPACE = -1\n"), false},
        {FileKind::kInterface, bytesOf("<root><box><name value='b'/></box></root>"), true},
        {FileKind::kEmitter, bytesOf("<emitter><radius value='1'/></emitter>"), true},
    };
}

bool isText(const std::string &text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        const unsigned char byte = static_cast<unsigned char>(c);
        return (byte < 32 && c != '\n') || byte == 127;
    });
}

/// Whether it is good. Expects everything that is printed to be well formed.
bool inspected(FileKind kind, const Bytes &bytes) {
    FileReport report;
    report.file = "it";
    report.inspection = info::inspect(kind, bytes.data(), bytes.size());
    EXPECT_EQ(report.inspection.kind, kind);
    const std::string verdict = info::verdictLine(report);
    EXPECT_TRUE(isText(verdict)) << verdict;
    EXPECT_EQ(std::count(verdict.begin(), verdict.end(), '\n'), 1) << verdict;
    EXPECT_TRUE(isText(info::table(report)));
    EXPECT_TRUE(info::Fields::accept(info::jsonText({report}, false)));
    if (!report.inspection.good) {
        EXPECT_LE(report.inspection.flaw.offset, bytes.size());
        EXPECT_FALSE(report.inspection.flaw.field.empty());
        EXPECT_FALSE(report.inspection.flaw.reason.empty());
    }
    return report.inspection.good;
}

TEST(DamagedFiles, WholeOnesAreGood) {
    for (const Example &example : examples())
        EXPECT_TRUE(inspected(example.kind, example.bytes)) << info::kindName(example.kind);
}

TEST(DamagedFiles, EveryTruncationIsJudged) {
    for (const Example &example : examples()) {
        for (std::size_t size = 0; size < example.bytes.size(); ++size) {
            SCOPED_TRACE(std::string(info::kindName(example.kind)) + " of " + std::to_string(size));
            const bool good = inspected(
                example.kind, Bytes(example.bytes.begin(), example.bytes.begin() + static_cast<long>(size)));
            if (example.endMatters) {
                EXPECT_FALSE(good);
            }
        }
    }
}

TEST(DamagedFiles, EveryChangedByteIsJudged) {
    for (const Example &example : examples()) {
        for (std::size_t at = 0; at < example.bytes.size(); ++at) {
            for (const unsigned char value : {0x00, 0xFF}) {
                SCOPED_TRACE(std::string(info::kindName(example.kind)) + " at " + std::to_string(at));
                Bytes bytes = example.bytes;
                bytes[at] = value;
                inspected(example.kind, bytes);
            }
        }
    }
}

TEST(DamagedFiles, OfAnyOtherKindAreJudgedToo) {
    for (const Example &example : examples())
        for (const std::string &name : info::kindNames()) {
            SCOPED_TRACE(name);
            inspected(info::kindOfName(name), example.bytes);
        }
}

TEST(DamagedFiles, NoBytesAtAllAreJudged) {
    for (const std::string &name : info::kindNames()) {
        const info::Inspection result = info::inspect(info::kindOfName(name), nullptr, 0);
        EXPECT_EQ(result.good, name == "settings") << name;
    }
}

// Each wrong name could be compared with every right one.
TEST(DamagedFiles, ManyUnknownMaterialsTakeTimeBySizeOnly) {
    formats::Scene scene = sceneOf(plainNode("root"));
    for (int i = 0; i < 30000; ++i) {
        formats::Material material;
        material.name = "m" + std::to_string(i);
        material.texture = material.shader = "[none]";
        scene.materials.push_back(material);
        formats::Node mesh = boneNode("mesh");
        mesh.mesh.material = "M" + std::to_string(i) + "x";
        scene.root.children.push_back(mesh);
    }
    const Bytes bytes = formats::writeKte(scene, formats::KteVersion::k16a);
    const CpuTime time;
    EXPECT_TRUE(info::inspect(FileKind::kScene, bytes.data(), bytes.size()).good);
    EXPECT_LT(time.seconds(), kLongestSeconds);
}

}  // namespace
}  // namespace keltra::test
