#ifndef KELTRA_VIEW_ACTIONS_H
#define KELTRA_VIEW_ACTIONS_H

namespace keltra::view {

// What a key or a button of the panel asks for.
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

// What is shown beside the model itself.
struct Switches {
    bool wire = false, boxes = false, normals = false, bones = false, lights = false, culling = true;
};

}  // namespace keltra::view

#endif
