// SPDX-License-Identifier: Zlib
#include "tools/convert/sampled_clip.h"

#include "tools/formats/kta_writer.h"

#include <algorithm>
#include <cstdio>

namespace keltra::convert {
namespace {

constexpr unsigned kLargestStep = 8;
constexpr double kBeside = 0.1;  // of the size: how far the points stand beside their joints

Matrix localOf(const Pose &pose) {
    Matrix x, y, z, place;
    Matrix::RotationX(pose.angles.x / kDegrees, x);
    Matrix::RotationY(pose.angles.y / kDegrees, y);
    Matrix::RotationZ(pose.angles.z / kDegrees, z);
    Matrix::Translation(pose.position, place);
    return place * x * y * z;
}

Pose between(const Pose &a, const Pose &b, double share) {
    return {a.angles + (b.angles - a.angles) * share, a.position + (b.position - a.position) * share};
}

// Where the points of all joints are.
class Points {
   public:
    Points(const PosedJoints &posed, const Rig &rig, double size)
        : posed(posed), rig(rig), beside(size * kBeside) {
        std::vector<Matrix> bind;
        for (const Joint &joint : rig.joints) bind.push_back(joint.frame);
        for (unsigned j = 0; j < rig.joints.size(); ++j) rest.push_back(rig.localFrame(j, bind));
    }

    std::vector<Vector> at(const std::vector<Pose> &poses) const {
        std::vector<Matrix> locals = rest, worlds(rest.size());
        for (std::size_t i = 0; i < poses.size(); ++i) locals[posed.joints[i]] = localOf(poses[i]);
        std::vector<Vector> points;
        for (std::size_t j = 0; j < worlds.size(); ++j) {
            const int parent = rig.joints[j].parent;
            worlds[j] = parent == kNone ? locals[j] : worlds[parent] * locals[j];
            for (const Vector &point :
                 {Vector(), Vector(beside, 0, 0), Vector(0, beside, 0), Vector(0, 0, beside)})
                points.push_back(worlds[j] * point);
        }
        return points;
    }

   private:
    const PosedJoints &posed;
    const Rig &rig;
    const double beside;
    std::vector<Matrix> rest;
};

std::uint64_t bytesOf(const std::vector<SampledClip> &clips, std::size_t bones, unsigned step) {
    std::uint64_t frames = 0;
    for (const SampledClip &clip : clips) frames += (clip.frames.size() + step - 1) / step;
    return frames * bones * formats::kKtaKeyframeSize;
}

double worstOf(const std::vector<SampledClip> &clips, const PosedJoints &posed, const Rig &rig, double size,
               unsigned step) {
    double worst = 0.0;
    for (const SampledClip &clip : clips) worst = std::max(worst, strayOf(clip, posed, rig, size, step));
    return worst;
}

}  // namespace

double strayOf(const SampledClip &clip, const PosedJoints &posed, const Rig &rig, double size,
               unsigned step) {
    const Points points(posed, rig, size);
    double worst = 0.0;
    for (std::size_t f = 0; f < clip.frames.size(); ++f) {
        const std::size_t before = f - f % step, after = before + step;
        if (f == before) continue;
        std::vector<Pose> shown = clip.frames[before];
        // After the last frame that is kept there is nothing to interpolate with.
        if (after < clip.frames.size())
            for (std::size_t i = 0; i < shown.size(); ++i)
                shown[i] = between(clip.frames[before][i], clip.frames[after][i], double(f - before) / step);
        const std::vector<Vector> meant = points.at(clip.frames[f]), drawn = points.at(shown);
        for (std::size_t p = 0; p < meant.size(); ++p)
            worst = std::max(worst, (meant[p] - drawn[p]).Length());
    }
    return size > 0.0 ? worst / size : 0.0;
}

unsigned keepFewerFrames(std::vector<SampledClip> &clips, const PosedJoints &posed, const Rig &rig,
                         std::size_t bones, const Options &options, Report &report) {
    const std::uint64_t most = options.budget.clips;
    if (!options.fit || most == 0) return 1;
    unsigned step = 1;
    double stray = 0.0;
    for (unsigned next = 2; next <= kLargestStep && bytesOf(clips, bones, step) > most; ++next) {
        const double strays = worstOf(clips, posed, rig, report.size, next);
        if (strays > options.clipError || options.fps / next < 1.0) continue;
        step = next;
        stray = strays;
    }
    if (step == 1) return 1;
    std::uint64_t removed = 0;
    for (SampledClip &clip : clips) {
        std::vector<std::vector<Pose>> kept;
        for (std::size_t f = 0; f < clip.frames.size(); f += step) kept.push_back(std::move(clip.frames[f]));
        removed += clip.frames.size() - kept.size();
        clip.frames = std::move(kept);
    }
    char text[160];
    std::snprintf(
        text, sizeof text,
        "%.6g a second are kept; poses between them, interpolated, stray by up to %.2g %% of the size",
        options.fps / step, 100.0 * stray);
    report.change("frames of clips", removed, text);
    return step;
}

}  // namespace keltra::convert
