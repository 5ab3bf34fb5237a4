// SPDX-License-Identifier: Zlib
#include "tools/convert/further_clips.h"

#include <assimp/scene.h>

namespace keltra::convert {

FurtherClips::FurtherClips(const Options &options, const Model &model, Report &report,
                           const Progress &progress) {
    for (const std::string &path : options.clips) {
        auto file = std::make_unique<File>();
        file->path = path;
        Options own = options;
        own.model = path;
        try {
            file->model = std::make_unique<Model>(own, progress, model.joints());
        } catch (const Refusal &refusal) {
            throw Refusal(cleanText(path) + ": " + refusal.what());
        }
        file->space = spaceOf(file->model->scene(), own, file->unread);
        file->model->tell(report);
        const std::set<std::string> moved = movedNodes(file->model->scene());
        names.insert(moved.begin(), moved.end());
        files.push_back(std::move(file));
    }
}

void FurtherClips::addTo(ClipSources &sources, const Rig &rig, double scale, const Options &options,
                         Report &report) {
    for (const std::unique_ptr<File> &file : files) {
        const aiScene &scene = file->model->scene();
        const Matrix place = file->space.upright * scaling(file->space.metres * scale);
        file->rig = std::make_unique<Rig>(scene, place, file->unread);
        ClipSources clips = foreignClips(scene, *file->rig, file->path, rig, options, report);
        std::move(clips.begin(), clips.end(), std::back_inserter(sources));
    }
}

}  // namespace keltra::convert
