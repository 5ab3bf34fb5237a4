// SPDX-License-Identifier: Zlib
#include "tools/convert/clips.h"

#include "formats/limits.h"
#include "tools/convert/sampled_clip.h"
#include "tools/formats/kta_writer.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace keltra::convert {
namespace {

constexpr std::size_t kMaxFrames = kMaxAnimFrames, kMaxBones = kMaxAnimBones;  // per file
constexpr std::size_t kMaxParts = 16;                                          // per clip: 11 minutes
constexpr double kFrameSlack = 1e-3;                                           // 1.99999 frames count as 2
constexpr double kStretched = 2e-3;
constexpr double kMoved = 1e-5;        // of the model's size
constexpr double kRotated = 1e-3;      // degrees
constexpr double kFarthest = 32000.0;  // almost the limit of 16.16

using Clip = SampledClip;

std::string titleOf(const Clip &clip) { return clip.name.empty() ? "without a name" : cleanText(clip.name); }

class Sampler {
   public:
    Sampler(const Rig &rig, Report &report) : rig(rig), report(report) {
        for (const Joint &joint : rig.joints) {
            bindFrames.push_back(joint.frame);
            unbake.push_back(inverse(joint.bake));
        }
        for (unsigned j = 0; j < rig.joints.size(); ++j) {
            const Matrix local = rig.localFrame(j, bindFrames);
            bindLocals.push_back(local);
            if (!rig.joints[j].isPosed) continue;
            posed.joints.push_back(j);
            posed.bind.push_back({eulerAngles(local), translationOf(local)});
        }
    }

    Clip sample(const ClipSource &source, double fps, const Progress &progress);
    void finish();

    PosedJoints posed;

   private:
    void frame(std::vector<Pose> &poses, const std::vector<Pose> &before);

    const Rig &rig;
    Report &report;
    std::vector<Matrix> bindFrames, bindLocals, unbake, worlds, frames;
    std::vector<bool> stretched = std::vector<bool>(rig.joints.size());
    bool isFar = false;
};

Clip Sampler::sample(const ClipSource &source, double fps, const Progress &progress) {
    Clip clip;
    clip.name = source.name;
    double count = std::floor(source.seconds() * fps + kFrameSlack) + 1.0;
    if (!(count <= double(kMaxFrames * kMaxParts))) {
        count = double(kMaxFrames * kMaxParts);
        report.warn("clip " + titleOf(clip) + " has a length of " +
                    std::to_string(static_cast<long long>(std::min(source.seconds(), 1e15))) +
                    " seconds; it is cut after " + std::to_string(kMaxFrames * kMaxParts) + " frames");
    }
    clip.frames.resize(static_cast<std::size_t>(count));
    frames = bindFrames;
    for (std::size_t f = 0; f < clip.frames.size(); ++f) {
        source.worlds(double(f) / fps, worlds);
        frame(clip.frames[f], f == 0 ? posed.bind : clip.frames[f - 1]);
        if (progress && f % 64 == 0) progress("animations", double(f) / count);
    }
    return clip;
}

void Sampler::frame(std::vector<Pose> &poses, const std::vector<Pose> &before) {
    for (std::size_t j = 0; j < rig.joints.size(); ++j) {
        const Joint &joint = rig.joints[j];
        if (!joint.isPosed) {
            frames[j] = joint.parent == kNone ? bindLocals[j] : frames[joint.parent] * bindLocals[j];
            continue;
        }
        const Matrix moved = worlds[joint.source] * unbake[j];
        // A node scaled to 0 keeps its last rotation.
        frames[j] = rigidPart(moved, frames[j]);
        if (linearDifference(moved, frames[j]) > kStretched) stretched[j] = true;
    }
    poses.resize(posed.joints.size());
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const Matrix local = rig.localFrame(posed.joints[i], frames);
        poses[i].angles = nearestAngles(eulerAngles(local), before[i].angles);
        Vector &at = poses[i].position = translationOf(local);
        for (double *component : {&at.x, &at.y, &at.z}) {
            isFar = isFar || !(std::abs(*component) <= kFarthest);
            *component = std::isfinite(*component) ? std::clamp(*component, -kFarthest, kFarthest) : 0.0;
        }
    }
}

void Sampler::finish() {
    report.drop("animated scales",
                static_cast<std::uint64_t>(std::count(stretched.begin(), stretched.end(), true)),
                "the engine's nodes rotate and move but do not scale");
    if (isFar) report.warn("an animation moves a node beyond the engine's range; its position is clamped");
}

double difference(const Vector &a, const Vector &b) {
    return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}

// Indices of the posed joints that the files hold: all, or if these are too many, those that some clip moves.
std::vector<std::size_t> chooseRows(const PosedJoints &posed, const std::vector<Clip> &clips, double size,
                                    bool movingOnly) {
    std::vector<std::size_t> rows;
    for (std::size_t i = 0; i < posed.joints.size(); ++i) {
        bool kept = posed.joints.size() <= kMaxBones && !movingOnly;
        for (const Clip &clip : clips) {
            for (const std::vector<Pose> &frame : clip.frames) {
                if (kept) break;
                kept = difference(frame[i].angles, posed.bind[i].angles) > kRotated ||
                       difference(frame[i].position, posed.bind[i].position) > kMoved * size;
            }
        }
        if (kept) rows.push_back(i);
    }
    return rows;
}

// The files of a model's clips, split where they are too large for one.
class Writer {
   public:
    Writer(const Rig &rig, const PosedJoints &posed, const Options &options, double rate, Report &report)
        : rig(rig), posed(posed), options(options), rate(rate), report(report), names(kLongestName, false) {}

    void write(const Clip &clip, const std::vector<std::size_t> &rows) {
        const std::size_t parts = (clip.frames.size() + kMaxFrames - 1) / kMaxFrames;
        const std::size_t groups = std::max<std::size_t>((rows.size() + kMaxBones - 1) / kMaxBones, 1);
        const std::string stem = options.name + "_" + (clip.name.empty() ? "clip" : fileName(clip.name));
        for (std::size_t part = 0; part < parts; ++part) {
            for (std::size_t group = 0; group < groups; ++group) {
                std::string name = stem;
                if (parts > 1) name += "_part" + std::to_string(part + 1);
                if (groups > 1) name += "_bones" + std::to_string(group + 1);
                writeFile(clip, name, part * kMaxFrames,
                          {rows.begin() + static_cast<long>(group * kMaxBones),
                           rows.begin() + static_cast<long>(std::min((group + 1) * kMaxBones, rows.size()))});
            }
        }
        if (parts > 1)
            report.note("clip " + titleOf(clip) + " has " + std::to_string(clip.frames.size()) +
                        " frames: split into " + std::to_string(parts) + " files of at most " +
                        std::to_string(kMaxFrames) + ", to be played one after the other");
        if (groups > 1)
            report.note("clip " + titleOf(clip) + " moves " + std::to_string(rows.size()) +
                        " nodes: split into " + std::to_string(groups) + " files of at most " +
                        std::to_string(kMaxBones) + ", to be applied together");
    }

    std::vector<OutputFile> files;

   private:
    void writeFile(const Clip &clip, const std::string &stem, std::size_t first,
                   const std::vector<std::size_t> &rows) {
        formats::Animation animation;
        ClipReport entry;
        for (std::size_t row : rows) animation.bones.push_back(rig.joints[posed.joints[row]].name);
        const std::size_t end = std::min(first + kMaxFrames, clip.frames.size());
        for (std::size_t f = first; f < end; ++f) {
            animation.frames.emplace_back();
            for (std::size_t row : rows) {
                const Pose &pose = clip.frames[f][row];
                formats::Keyframe keyframe;
                keyframe.rotation = narrowed(pose.angles);
                keyframe.position = narrowed(pose.position);
                animation.frames.back().push_back(keyframe);
                entry.moves = entry.moves || difference(pose.position, posed.bind[row].position) >
                                                 kMoved * std::max(report.size, 1e-9);
            }
        }
        entry.name = cleanText(clip.name);
        entry.file = names.take(stem, "clip", ".kta");
        entry.frames = static_cast<unsigned>(end - first);
        entry.bones = static_cast<unsigned>(rows.size());
        entry.seconds = double(end - first - 1) / rate;
        report.clips.push_back(entry);
        files.push_back({entry.file, formats::writeKta(animation)});
    }

    const Rig &rig;
    const PosedJoints &posed;
    const Options &options;
    const double rate;  // frames per second
    Report &report;
    Names names;
};

std::uint64_t bytesOf(const std::vector<Clip> &clips, std::size_t bones) {
    std::uint64_t frames = 0;
    for (const Clip &clip : clips) frames += clip.frames.size();
    return frames * bones * formats::kKtaKeyframeSize;
}

}  // namespace

std::vector<OutputFile> convertClips(const aiScene &scene, const ClipSources &sources, const Rig &rig,
                                     const Options &options, Report &report, const Progress &progress) {
    Sampler sampler(rig, report);
    std::vector<Clip> clips;
    std::uint64_t morphs = 0, empty = 0;
    for (unsigned a = 0; a < scene.mNumAnimations; ++a)
        morphs += scene.mAnimations[a]->mNumMorphMeshChannels + scene.mAnimations[a]->mNumMeshChannels;
    for (const std::unique_ptr<ClipSource> &source : sources) {
        if (sampler.posed.joints.empty() || !source->movesNodes()) {
            ++empty;
            continue;
        }
        clips.push_back(sampler.sample(*source, options.fps, progress));
    }
    sampler.finish();
    report.drop("morph animations", morphs, "the engine's vertices follow bones only");
    report.drop("animations", empty, "they move no node");
    const std::uint64_t most = options.fit ? options.budget.clips : 0;
    const bool over = most > 0 && bytesOf(clips, sampler.posed.joints.size()) > most;
    const std::vector<std::size_t> rows = chooseRows(sampler.posed, clips, std::max(report.size, 1e-9), over);
    const unsigned step = keepFewerFrames(clips, sampler.posed, rig, rows.size(), options, report);
    Writer writer(rig, sampler.posed, options, options.fps / step, report);
    for (const Clip &clip : clips) writer.write(clip, rows);
    return std::move(writer.files);
}

}  // namespace keltra::convert
