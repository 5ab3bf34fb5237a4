// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_CLIP_SOURCES_H
#define KELTRA_CONVERT_CLIP_SOURCES_H

// Where the clips of a model come from: its own animations, several of them at once, or those of another file
// with nodes of the same names.

#include "tools/convert/motion.h"
#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/convert/rig.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

struct aiScene;

namespace keltra::convert {

class ClipSource {
   public:
    explicit ClipSource(const std::string &name) : name(name) {}
    virtual ~ClipSource() = default;

    virtual double seconds() const = 0;
    virtual bool movesNodes() const = 0;
    // The world matrices of all source nodes of the model's rig.
    virtual void worlds(double seconds, std::vector<Matrix> &worlds) const = 0;

    const std::string name;
};

using ClipSources = std::vector<std::unique_ptr<ClipSource>>;

// One for each animation; one for all of a Collada file that has no clips, because its animations then share
// one timeline.
ClipSources ownClips(const aiScene &scene, const Rig &rig, const Options &options, Report &report);

// Names of the nodes that the scene's animations move.
std::set<std::string> movedNodes(const aiScene &scene);

// The clips of another file, `file`, for nodes of the same names. What has no counterpart is reported.
ClipSources foreignClips(const aiScene &scene, const Rig &other, const std::string &file, const Rig &rig,
                         const Options &options, Report &report);

}  // namespace keltra::convert

#endif
