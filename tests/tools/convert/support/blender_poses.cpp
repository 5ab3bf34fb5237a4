// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/blender_poses.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>

#include "tests/tools/convert/support/engine_pose.h"

namespace keltra::test {
namespace {

constexpr double kNear = 1e-4;  // of the size; up to there partners are found exactly

}  // namespace

std::vector<BlenderClip> readBlenderPoses(const std::string &path) {
    std::ifstream file(path);
    const nlohmann::json document = nlohmann::json::parse(file);
    std::vector<BlenderClip> clips;
    for (const nlohmann::json &entry : document.at("clips")) {
        BlenderClip clip;
        clip.file = entry.at("file");
        clip.frames = entry.at("frames").get<std::vector<unsigned>>();
        for (const nlohmann::json &numbers : entry.at("vertices")) {
            std::vector<Point> points;
            for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
                points.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
            clip.vertices.push_back(std::move(points));
        }
        if (clip.frames.size() != clip.vertices.size() || clip.frames.empty() || clip.vertices[0].empty())
            throw std::runtime_error(path + ": a clip without vertices");
        clips.push_back(std::move(clip));
    }
    if (clips.empty()) throw std::runtime_error(path + ": no clips");
    return clips;
}

double compareWithBlender(const BlenderClip &clip, KTNODE *root) {
    KTANIM *animation = clip.file.empty() ? nullptr : loadAnimation(clip.file);
    if (!clip.file.empty() && !animation) return 1.0;
    std::vector<std::vector<Point>> drawn;
    for (unsigned frame : clip.frames) {
        if (animation && (frame >= animation->getNumberOfFrames() || !animation->apply(frame, root)))
            return 1.0;
        drawn.push_back(shapeOf(poseWithoutWindow(root)).corners);
    }
    if (drawn[0].empty()) return 1.0;
    const double size = extent(clip.vertices), near = kNear * size;
    return std::max(findGap(drawn, {}, clip.vertices, near).largest,
                    findGap(clip.vertices, {}, drawn, near).largest) /
           size;
}

}  // namespace keltra::test
