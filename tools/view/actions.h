// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_ACTIONS_H
#define KELTRA_VIEW_ACTIONS_H

namespace keltra::view {

// The action of a key or of a button of the panel.
enum class Action {
    kNone,
    kQuit,
    kPlay,
    kNextClip,
    kPreviousClip,
    kStepForward,
    kStepBack,
    kWire,
    kBoxes,
    kNormals,
    kBones,
    kLights,
    kCulling,
    kFold,
    kOverlay,
    kResetView,
};

// What is shown besides the model.
struct Switches {
    bool wire = false, boxes = false, normals = false, bones = false, lights = false, culling = true;
};

}  // namespace keltra::view

#endif
