// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CONVERT_FIXTURE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CONVERT_FIXTURE_H

// For tests that write a small model, convert it and load the result, without a window.

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <string>

#include "tests/scene/scene_parts.h"
#include "tests/tools/convert/support/engine_pose.h"
#include "tests/tools/convert/support/gltf_builder.h"

namespace keltra::test {

/// A model's conversion, and what the engine loads of it.
struct Made {
    convert::Conversion conversion;
    std::unique_ptr<Loaded> loaded;

    const convert::Report &report() const { return conversion.report; }
    KTNODE *root() const { return loaded->root(); }
};

class ConvertTest : public SceneTest {
   protected:
    using Tweak = std::function<void(convert::Options &)>;

    convert::Conversion convertFile(const std::string &path, const Tweak &tweak = nullptr) {
        convert::Options options;
        options.model = path;
        options.name = "model";
        if (tweak) tweak(options);
        return convert::convertModel(options, [](const char *, double) {});
    }

    Made make(const std::string &fileName, const std::string &text, const Tweak &tweak = nullptr) {
        Made made;
        made.conversion = convertFile(folder.write(fileName, text), tweak);
        made.loaded = std::make_unique<Loaded>(made.conversion);
        EXPECT_NE(made.root(), nullptr) << "the engine does not load " << fileName;
        return made;
    }

    /// Why the model is refused; empty when it is converted.
    std::string refusal(const std::string &fileName, const std::string &text) {
        try {
            convertFile(folder.write(fileName, text));
        } catch (const convert::Refusal &refusal) {
            return refusal.what();
        }
        return "";
    }

    /// Expects a refusal of one line that says why and leaves the file's name to the caller.
    void expectRefused(const std::string &fileName, const std::string &text) {
        const std::string reason = refusal(fileName, text);
        EXPECT_FALSE(reason.empty()) << fileName << " is converted";
        EXPECT_EQ(reason.find_first_of("\r\n"), std::string::npos) << reason;
    }

    static bool mentions(const convert::Report &report, const std::string &word) {
        const auto has = [&word](const std::string &text) { return text.find(word) != std::string::npos; };
        return std::any_of(report.warnings.begin(), report.warnings.end(), has) ||
               std::any_of(report.notes.begin(), report.notes.end(), has) ||
               std::any_of(report.source.begin(), report.source.end(), has) ||
               std::any_of(
                   report.dropped.begin(), report.dropped.end(),
                   [&](const convert::Dropped &dropped) { return has(dropped.what) || has(dropped.why); });
    }
};

/// Every triangle of what is drawn faces where its vertices' normals point, and these have the length 1.
inline void expectNormalsAgree(const std::vector<PosedMesh> &meshes) {
    for (const PosedMesh &mesh : meshes) {
        const std::uint16_t *face = mesh.mesh->faces;
        for (unsigned f = 0; f < mesh.mesh->getNumberOfFaces(); ++f, face += 3) {
            const Point a = mesh.positions[face[0]];
            const Point normal = cross(mesh.positions[face[1]] - a, mesh.positions[face[2]] - a);
            for (int k = 0; k < 3; ++k) {
                const Point stored = mesh.normals[face[k]];
                ASSERT_NEAR(length(stored), 1.0, 0.01) << mesh.mesh->getName() << ", triangle " << f;
                ASSERT_GT(dot(normal, stored), 0.0) << mesh.mesh->getName() << ", triangle " << f;
            }
        }
    }
}

}  // namespace keltra::test

#endif
