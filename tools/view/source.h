#ifndef KELTRA_VIEW_SOURCE_H
#define KELTRA_VIEW_SOURCE_H

// Where a model's files are: those of a scene file as they stand, those of any other model after its
// conversion.

#include "tools/view/stage.h"

#include <string>
#include <vector>

namespace keltra::view {

struct ClipFile {
    std::string title;  // as it is shown
    std::string path;   // where it lies
    std::string name;   // in the stage
    bool wanted;        // named on the command line
};

struct Source {
    std::string key;    // what the stage's names of this state begin with, and the folder of its textures
    std::string scene;  // in the stage
    std::vector<ClipFile> clips;
};

// Brings `file` onto the stage, with the animations that belong to it and `clips`; `generation` tells this
// state of the file from earlier ones, which may still be shown. Throws Failure and leaves nothing of it
// behind.
Source openSource(const std::string &file, const std::vector<std::string> &clips, const Stage &stage,
                  unsigned generation);

// True for a scene file of the engine, by its name or by what it begins with. Throws Failure for what is no
// file that can be read.
bool isSceneFile(const std::string &file);

// The animation files beside a scene: those whose names begin with its stem and '_', in the order of their
// names.
std::vector<std::string> clipsBeside(const std::string &sceneFile);

}  // namespace keltra::view

#endif
