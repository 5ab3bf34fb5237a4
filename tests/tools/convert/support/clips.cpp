// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/clips.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace keltra::test {
namespace {

constexpr unsigned kFramesAFile = 1024;

bool movesNodes(const aiAnimation &animation, const aiNode &root) {
    return std::any_of(
        animation.mChannels, animation.mChannels + animation.mNumChannels,
        [&root](const aiNodeAnim *channel) { return root.FindNode(channel->mNodeName) != nullptr; });
}

/// Files beyond the first of the same frames are numbered as further groups of bones.
bool isFurtherGroup(const std::string &file) {
    const std::size_t mark = file.rfind("_bones");
    return mark != std::string::npos && std::atoi(file.c_str() + mark + 6) > 1;
}

}  // namespace

std::vector<Clip> clipsOf(const convert::Report &report, const SourcePose &source, double fps) {
    const aiScene &scene = source.scene();
    std::vector<Clip> clips;
    std::size_t next = 0;
    if (report.clips.empty()) return clips;
    for (unsigned a = 0; a < scene.mNumAnimations; ++a) {
        if (!movesNodes(*scene.mAnimations[a], *scene.mRootNode)) continue;
        Clip clip;
        clip.name = scene.mAnimations[a]->mName.C_Str();
        clip.source = a;
        clip.frames = static_cast<unsigned>(source.seconds(a) * fps + 1e-3) + 1;
        for (unsigned first = 0; first < clip.frames; first += kFramesAFile) {
            const unsigned frames = std::min(kFramesAFile, clip.frames - first);
            do {
                if (next >= report.clips.size() || report.clips[next].frames != frames)
                    throw std::runtime_error("clip " + clip.name + " has no file for the frames from " +
                                             std::to_string(first) + " on");
                clip.files.push_back({report.clips[next].file, first, frames});
            } while (++next < report.clips.size() && isFurtherGroup(report.clips[next].file));
        }
        clips.push_back(clip);
    }
    if (next != report.clips.size()) throw std::runtime_error(report.clips[next].file + " is of no clip");
    return clips;
}

bool applyFrame(Loaded &loaded, const Clip &clip, unsigned frame) {
    bool applied = false;
    for (const ClipFile &part : clip.files) {
        if (frame < part.firstFrame || frame >= part.firstFrame + part.frames) continue;
        KTANIM *animation = loaded.animation(part.file);
        if (!animation || !animation->apply(frame - part.firstFrame, loaded.root())) return false;
        applied = true;
    }
    return applied;
}

std::set<unsigned> spreadFrames(const Clip &clip, unsigned count) {
    std::set<unsigned> frames;
    for (unsigned i = 0; i < count; ++i) frames.insert((clip.frames - 1) * i / (count - 1));
    return frames;
}

void Moments::add(Shape shape) {
    corners.push_back(std::move(shape.corners));
    middles.push_back(std::move(shape.middles));
}

Shape scaled(Shape shape, double scale) {
    for (Point &point : shape.corners) point = point * scale;
    for (Point &point : shape.middles) point = point * scale;
    return shape;
}

Deviation compare(const SourcePose &source, const Moments &expected, const Moments &actual, double bound,
                  const std::string &what) {
    const double size = extent(expected.corners), near = bound * size;
    const Gap gaps[] = {
        findGap(actual.corners, {}, expected.corners, near),
        findGap(expected.corners, source.solidCorners(), actual.corners, near),
        findGap(actual.middles, {}, expected.middles, near),
        findGap(expected.middles, source.solidMiddles(), actual.middles, near),
    };
    const char *const names[] = {"drawn vertices", "vertices of the model", "drawn triangles",
                                 "triangles of the model"};
    Deviation deviation;
    if (actual.corners.empty() || actual.corners.front().empty()) return {1.0, what + ": nothing is drawn\n"};
    for (int i = 0; i < 4; ++i) {
        deviation.largest = std::max(deviation.largest, gaps[i].largest / size);
        if (gaps[i].outliers == 0) continue;
        deviation.outliers += what + ": " + std::to_string(gaps[i].outliers) + " " + names[i] +
                              " without a partner, number " + std::to_string(gaps[i].point) + " by " +
                              std::to_string(100.0 * gaps[i].largest / size) + " %\n";
    }
    return deviation;
}

Deviation compareClip(const SourcePose &source, Loaded &loaded, const Clip &clip, double scale,
                      const std::set<unsigned> &frames, double bound,
                      const std::function<Shape(KTNODE *)> &draw, double fps) {
    Moments expected, actual;
    const std::string what = "clip \"" + clip.name + "\"";
    for (unsigned frame : frames) {
        if (!applyFrame(loaded, clip, frame))
            return {1.0, what + ": frame " + std::to_string(frame) + " is missing\n"};
        expected.add(scaled(source.at(static_cast<int>(clip.source), frame / fps), scale));
        actual.add(draw(loaded.root()));
    }
    return compare(source, expected, actual, bound, what);
}

}  // namespace keltra::test
