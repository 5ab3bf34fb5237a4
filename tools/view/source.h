// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_SOURCE_H
#define KELTRA_VIEW_SOURCE_H

// Finds the files of a scene, or converts a model of another format, and links them for the engine.

#include "tools/view/link_folder.h"

#include <string>
#include <vector>

namespace keltra::view {

struct ClipFile {
    std::string title;  // shown in the panel
    std::string path;   // of the file
    std::string name;   // of the link
    bool wanted;        // named on the command line
};

struct Source {
    std::string key;    // prefix of this state's links, and the link to the folder of its textures
    std::string scene;  // name of the scene's link
    std::vector<ClipFile> clips;
};

// Links `file`, the animations that belong to it, and `clips`. `generation` makes the names different from
// those of earlier states of the file, which may still be shown. On failure removes its links and throws
// Failure.
Source openSource(const std::string &file, const std::vector<std::string> &clips, const LinkFolder &links,
                  unsigned generation);

// Whether the file is a scene of the engine, by its extension or its first bytes. Throws Failure if it is not
// a readable regular file.
bool isSceneFile(const std::string &file);

// The animation files in the scene's folder whose names begin with its stem and '_', sorted by name.
std::vector<std::string> clipsBeside(const std::string &sceneFile);

}  // namespace keltra::view

#endif
