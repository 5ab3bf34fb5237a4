// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_STATE_STAGE_H
#define KELTRA_TESTS_STATE_STAGE_H

// The drawings of the table of subjects and disturbers. A stage fills the left or the right half of the
// screen, so that two of them share a frame without overlap; on the left it is also farther away and in lower
// layers.

#include <keltra/keltra.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/temp_file.h"

namespace keltra::test {

enum class Side { kLeft, kRight };

/// A drawing and the switches that it needs. Owns all that it holds.
struct Stage {
    Stage() = default;
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;
    ~Stage();

    std::vector<KTNODE *> scene, interface;  // roots, owned with their subtrees
    KTNODE *skybox = nullptr;                // owned with its subtree
    KTVIDEO *film = nullptr;
    std::function<void()> on, off;  // around the frame
    std::function<void()> prepare;  // before each frame: stops everything that runs with the clock
};

struct Subject {
    const char *name;
    std::unique_ptr<Stage> (*make)(Side);
    bool lit = false;    // a light belongs to it
    bool alone = false;  // its switches are the whole frame's
    bool flat = false;   // lights do not reach it
    bool film = false;   // its texture is lost when it is evicted
};

extern const std::vector<Subject> kSubjects;
const Subject &subject(const std::string &name);

/// Writes the scenes and textures of all stages; the engine's paths lead there afterwards.
void writeStageFiles(const TempFolder &folder);

}  // namespace keltra::test

#endif
