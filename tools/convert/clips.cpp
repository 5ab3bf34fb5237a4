#include "tools/convert/clips.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

#include "tools/convert/motion.h"
#include "tools/formats/kta_writer.h"

namespace keltra::convert {
namespace {

constexpr std::size_t kMaxFrames = 1024, kMaxBones = 128;  // of a file
constexpr std::size_t kMaxParts = 16;                      // of a clip: 11 minutes
constexpr double kFrameSlack = 1e-3;                       // a clip of 1.99999 frames has 2
constexpr double kStretched = 2e-3;
constexpr double kMoved = 1e-5;        // of the model's size
constexpr double kTurned = 1e-3;       // degrees
constexpr double kFarthest = 32000.0;  // what 16.16 holds, nearly

struct Pose {
    Vector angles, position;
};

// The joints that are in the files, and where they stand in the scene.
struct Cast {
    std::vector<unsigned> joints;
    std::vector<Pose> bind;
};

struct Clip {
    std::string name;
    std::vector<std::vector<Pose>> frames;  // of the cast, in its order
};

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
            cast.joints.push_back(j);
            cast.bind.push_back({eulerAngles(local), translationOf(local)});
        }
    }

    Clip sample(const Motion &motion, const std::string &name, double fps, const Progress &progress);
    void finish();

    Cast cast;

   private:
    void frame(std::vector<Pose> &poses, const std::vector<Pose> &before);

    const Rig &rig;
    Report &report;
    std::vector<Matrix> bindFrames, bindLocals, unbake, locals, worlds, frames;
    std::vector<bool> stretched = std::vector<bool>(rig.joints.size());
    bool isFar = false;
};

Clip Sampler::sample(const Motion &motion, const std::string &name, double fps, const Progress &progress) {
    Clip clip;
    clip.name = name;
    double count = std::floor(motion.seconds() * fps + kFrameSlack) + 1.0;
    if (!(count <= double(kMaxFrames * kMaxParts))) {
        count = double(kMaxFrames * kMaxParts);
        report.warn("clip " + titleOf(clip) + " claims to last " +
                    std::to_string(static_cast<long long>(std::min(motion.seconds(), 1e15))) +
                    " seconds; it is cut after " + std::to_string(kMaxFrames * kMaxParts) + " frames");
    }
    clip.frames.resize(static_cast<std::size_t>(count));
    frames = bindFrames;
    for (std::size_t f = 0; f < clip.frames.size(); ++f) {
        motion.locals(double(f) / fps, locals);
        rig.pose(locals, worlds);
        frame(clip.frames[f], f == 0 ? cast.bind : clip.frames[f - 1]);
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
        // A node scaled to nothing keeps the turn that it had.
        frames[j] = rigidPart(moved, frames[j]);
        if (linearDifference(moved, frames[j]) > kStretched) stretched[j] = true;
    }
    poses.resize(cast.joints.size());
    for (std::size_t i = 0; i < poses.size(); ++i) {
        const Matrix local = rig.localFrame(cast.joints[i], frames);
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
                "the engine's nodes turn and move, but have no scale");
    if (isFar)
        report.warn("an animation moves a node farther than the engine's numbers reach; it stops there");
}

double difference(const Vector &a, const Vector &b) {
    return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}

// The rows of the cast that anything moves, when there are too many to keep all.
std::vector<std::size_t> chooseRows(const Cast &cast, const std::vector<Clip> &clips, double size) {
    std::vector<std::size_t> rows;
    for (std::size_t i = 0; i < cast.joints.size(); ++i) {
        bool stirs = cast.joints.size() <= kMaxBones;
        for (const Clip &clip : clips) {
            for (const std::vector<Pose> &frame : clip.frames) {
                if (stirs) break;
                stirs = difference(frame[i].angles, cast.bind[i].angles) > kTurned ||
                        difference(frame[i].position, cast.bind[i].position) > kMoved * size;
            }
        }
        if (stirs) rows.push_back(i);
    }
    return rows;
}

// The files of a model's clips, split where they are too large for one.
class Writer {
   public:
    Writer(const Rig &rig, const Cast &cast, const Options &options, Report &report)
        : rig(rig), cast(cast), options(options), report(report), names(kLongestName, false) {}

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
                        " frames: split into " + std::to_string(parts) +
                        " files of at most 1024, to be played in turn");
        if (groups > 1)
            report.note("clip " + titleOf(clip) + " moves " + std::to_string(rows.size()) +
                        " nodes: split into " + std::to_string(groups) +
                        " files of at most 128, to be applied together");
    }

    std::vector<OutputFile> files;

   private:
    void writeFile(const Clip &clip, const std::string &stem, std::size_t first,
                   const std::vector<std::size_t> &rows) {
        formats::Animation animation;
        ClipReport told;
        for (std::size_t row : rows) animation.bones.push_back(rig.joints[cast.joints[row]].name);
        const std::size_t end = std::min(first + kMaxFrames, clip.frames.size());
        for (std::size_t f = first; f < end; ++f) {
            animation.frames.emplace_back();
            for (std::size_t row : rows) {
                const Pose &pose = clip.frames[f][row];
                formats::Keyframe keyframe;
                keyframe.rotation = narrowed(pose.angles);
                keyframe.position = narrowed(pose.position);
                animation.frames.back().push_back(keyframe);
                told.moves = told.moves || difference(pose.position, cast.bind[row].position) >
                                               kMoved * std::max(report.size, 1e-9);
            }
        }
        told.name = cleanText(clip.name);
        told.file = names.take(stem, "clip", ".kta");
        told.frames = static_cast<unsigned>(end - first);
        told.bones = static_cast<unsigned>(rows.size());
        told.seconds = double(end - first - 1) / options.fps;
        report.clips.push_back(told);
        files.push_back({told.file, formats::writeKta(animation)});
    }

    const Rig &rig;
    const Cast &cast;
    const Options &options;
    Report &report;
    Names names;
};

}  // namespace

std::vector<OutputFile> convertClips(const aiScene &scene, const Rig &rig, const Options &options,
                                     Report &report, const Progress &progress) {
    Sampler sampler(rig, report);
    std::vector<Clip> clips;
    std::uint64_t morphs = 0, still = 0;
    for (unsigned a = 0; a < scene.mNumAnimations; ++a) {
        const aiAnimation &animation = *scene.mAnimations[a];
        morphs += animation.mNumMorphMeshChannels + animation.mNumMeshChannels;
        const Motion motion(animation, rig);
        if (sampler.cast.joints.empty() || !motion.movesNodes()) {
            ++still;
            continue;
        }
        clips.push_back(sampler.sample(motion, animation.mName.C_Str(), options.fps, progress));
    }
    sampler.finish();
    report.drop("morph animations", morphs, "the engine's vertices follow bones only");
    report.drop("animations", still, "they move no node");
    const std::vector<std::size_t> rows = chooseRows(sampler.cast, clips, std::max(report.size, 1e-9));
    Writer writer(rig, sampler.cast, options, report);
    for (const Clip &clip : clips) writer.write(clip, rows);
    return std::move(writer.files);
}

}  // namespace keltra::convert
