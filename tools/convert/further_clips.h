// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_FURTHER_CLIPS_H
#define KELTRA_CONVERT_FURTHER_CLIPS_H

#include "tools/convert/clip_sources.h"
#include "tools/convert/model.h"
#include "tools/convert/source_format.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace keltra::convert {

// The files of `options.clips`, whose animations are for the model's skeleton.
class FurtherClips {
   public:
    // Throws Refusal.
    FurtherClips(const Options &options, const Model &model, Report &report, const Progress &progress);

    // Names of the nodes that they move.
    const std::set<std::string> &moved() const { return names; }
    // They refer to this object and to the rig. The factor is that of the model's lengths in metres.
    void addTo(ClipSources &sources, const Rig &rig, double scale, const Options &options, Report &report);

   private:
    struct File {
        std::string path;
        std::unique_ptr<Model> model;
        SourceSpace space;
        Report unread;  // of no interest: what its meshes would lose
        std::unique_ptr<Rig> rig;
    };

    std::vector<std::unique_ptr<File>> files;
    std::set<std::string> names;
};

}  // namespace keltra::convert

#endif
