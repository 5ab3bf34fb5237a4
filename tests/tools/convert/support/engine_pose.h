// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_ENGINE_POSE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_ENGINE_POSE_H

// The converter's output, posed by the engine.

#include <keltra/keltra.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/temp_file.h"
#include "tests/tools/convert/support/points.h"
#include "tools/convert/convert.h"

namespace keltra::test {

/// A triangle mesh as it stands in the world.
struct PosedMesh {
    KTMESH *mesh = nullptr;
    std::vector<Point> positions, normals;
};

/// Every mesh with triangles in the tree, hidden ones too, in the order of the tree.
std::vector<KTMESH *> meshesOf(KTNODE *root);

/// Where the last pass placed the meshes and the last drawing skinned them; they were passed under a camera
/// that stands at the origin and is not turned.
std::vector<PosedMesh> posedMeshes(KTNODE *root);
Shape shapeOf(const std::vector<PosedMesh> &meshes);

/// Passes and draws all meshes, in as many rounds as the engine has room for: `draw` makes one frame of what
/// is not hidden.
std::vector<PosedMesh> drawInRounds(KTNODE *root, const std::function<void()> &draw);
/// The same without a window: the GL must be stubbed.
std::vector<PosedMesh> poseWithoutWindow(KTNODE *root);

/// The animation file of that name below the animations' prefix, loaded when it is first asked for; null when
/// it cannot be.
KTANIM *loadAnimation(const std::string &file);

/// A conversion's files in a folder, which the engine is reported to read from. Everything loaded is
/// destroyed with it.
class Loaded {
   public:
    explicit Loaded(const convert::Conversion &conversion);
    ~Loaded();
    Loaded(const Loaded &) = delete;
    Loaded &operator=(const Loaded &) = delete;

    KTNODE *root() const { return scene; }
    KTANIM *animation(const std::string &file) { return loadAnimation(file); }
    std::string path(const std::string &file) const { return folder.path(file); }

   private:
    TempFolder folder;
    KTNODE *scene = nullptr;
};

}  // namespace keltra::test

#endif
