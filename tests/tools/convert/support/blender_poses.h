// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_BLENDER_POSES_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_BLENDER_POSES_H

// Where Blender's own evaluation puts the vertices of a model, written by a script, against where the engine
// puts those of the converted files.

#include <string>
#include <vector>

#include "tests/tools/convert/support/points.h"

class KTNODE;

namespace keltra::test {

/// Some frames of one clip, or the model at rest when `file` is empty.
struct BlenderClip {
    std::string file;  // of the animation
    std::vector<unsigned> frames;
    std::vector<std::vector<Point>> vertices;  // of each frame, always in the same order
};

/// Reads {"clips": [{"file", "frames", "vertices": [[x, y, z, ...], ...]}]}, with Y up. Throws
/// std::exception.
std::vector<BlenderClip> readBlenderPoses(const std::string &path);

/// The largest distance between a vertex of the one and its partner of the other, relative to the model's
/// size; 1 when the animation cannot be loaded, has not that frame, or nothing is drawn. The GL must be
/// stubbed, and the animations' prefix be set.
double compareWithBlender(const BlenderClip &clip, KTNODE *root);

}  // namespace keltra::test

#endif
