// SPDX-License-Identifier: Zlib
#include "tools/convert/clip_sources.h"

#include "tools/convert/names.h"
#include "tools/convert/source_format.h"

#include <assimp/anim.h>
#include <assimp/scene.h>

#include <algorithm>
#include <fstream>

namespace keltra::convert {
namespace {

constexpr std::size_t kNamedBones = 8;    // in one line of the report
constexpr std::size_t kPiece = 1u << 20;  // bytes

class OwnClip : public ClipSource {
   public:
    OwnClip(const std::vector<const aiAnimation *> &animations, const Rig &rig, const std::string &name)
        : ClipSource(name), rig(rig), motion(animations, rig) {}

    double seconds() const override { return motion.seconds(); }
    bool movesNodes() const override { return motion.movesNodes(); }
    void worlds(double seconds, std::vector<Matrix> &worlds) const override {
        std::vector<Matrix> locals;
        motion.locals(seconds, locals);
        rig.pose(locals, worlds);
    }

   private:
    const Rig &rig;
    const Motion motion;
};

bool fileHolds(const std::string &path, const std::string &text) {
    std::ifstream file(path, std::ios::binary);
    std::string piece(kPiece, '\0'), kept;
    while (file) {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        kept.append(piece, 0, static_cast<std::size_t>(file.gcount()));
        if (kept.find(text) != std::string::npos) return true;
        kept.erase(0, kept.size() - std::min(kept.size(), text.size() - 1));
    }
    return false;
}

bool sharesOneTimeline(const aiScene &scene, const Options &options) {
    return scene.mNumAnimations > 1 && importerOf(scene) == "Collada Importer" &&
           endsWith(options.model, ".dae") && !fileHolds(options.model, "<animation_clip");
}

// A clip of another file. Each node that it moves stands to the nearest node above that both files have as it
// does there; of the other nodes the rest pose counts. Scales stay those of this file.
class ForeignClip : public ClipSource {
   public:
    ForeignClip(const aiAnimation &animation, const Rig &other, const Rig &rig, const std::string &name)
        : ClipSource(name), other(other), rig(rig), motion({&animation}, other) {
        std::vector<int> partners(rig.sources.size(), kNone);
        for (std::size_t s = 0; s < rig.sources.size(); ++s) {
            const std::string node = rig.sources[s].node->mName.C_Str();
            // Helper nodes stand where the importer likes, and what moves them moves the node below.
            if (rig.findSource(node) == static_cast<int>(s) && node.find(kPivotMark) == std::string::npos)
                partners[s] = other.findSource(node);
        }
        const std::set<int> moved = motion.movedSources();
        links.resize(rig.sources.size());
        for (std::size_t s = 0; s < rig.sources.size(); ++s) {
            if (partners[s] == kNone || moved.count(partners[s]) == 0) continue;
            links[s] = {partners[s], kNone, kNone};
            for (int above = rig.sources[s].parent; above != kNone && links[s].above == kNone;
                 above = rig.sources[above].parent)
                if (rig.sources[above].parent != kNone && isAbove(partners[above], partners[s]))
                    links[s].above = above, links[s].partnerAbove = partners[above];
            ++count;
        }
        for (const SourceNode &source : rig.sources)
            bakes.push_back(inverse(rigidPart(source.world)) * source.world);
    }

    double seconds() const override { return motion.seconds(); }
    bool movesNodes() const override { return count > 0; }
    void worlds(double seconds, std::vector<Matrix> &worlds) const override {
        std::vector<Matrix> locals, others;
        motion.locals(seconds, locals);
        other.pose(locals, others);
        for (Matrix &matrix : others) matrix = rigidPart(matrix);
        std::vector<Matrix> rigid(rig.sources.size());
        worlds.resize(rig.sources.size());
        for (std::size_t s = 0; s < worlds.size(); ++s) {
            const SourceNode &source = rig.sources[s];
            const Link &link = links[s];
            if (link.partner == kNone) {
                worlds[s] = source.parent == kNone ? source.world : worlds[source.parent] * source.local;
                rigid[s] = rigidPart(worlds[s]);
                continue;
            }
            rigid[s] = link.above == kNone
                           ? others[link.partner]
                           : rigid[link.above] * inverse(others[link.partnerAbove]) * others[link.partner];
            worlds[s] = rigid[s] * bakes[s];
        }
    }

   private:
    struct Link {
        int partner = kNone;       // in the other file
        int above = kNone;         // the nearest node above that both files have
        int partnerAbove = kNone;  // the same, in the other file
    };

    bool isAbove(int above, int below) const {
        while (above != kNone && below != kNone && below != above) below = other.sources[below].parent;
        return above != kNone && below == above;
    }

    const Rig &other, &rig;
    const Motion motion;
    std::vector<Link> links;
    std::vector<Matrix> bakes;  // the scale of each node's world matrix at rest
    unsigned count = 0;
};

// The moved nodes of the other file that the rig has not.
void reportStrangers(const aiScene &scene, const std::string &file, const Rig &rig, Report &report) {
    std::vector<std::string> strangers;
    for (const std::string &node : movedNodes(scene))
        if (rig.findSource(node) == kNone) strangers.push_back(cleanText(node));
    std::string list;
    for (std::size_t i = 0; i < std::min(strangers.size(), kNamedBones); ++i)
        list += (i > 0 ? ", " : "") + strangers[i];
    if (strangers.size() > kNamedBones) list += ", ...";
    report.drop("animated bones of " + file, strangers.size(),
                "the model has no node of their name: " + list);
}

}  // namespace

ClipSources ownClips(const aiScene &scene, const Rig &rig, const Options &options, Report &report) {
    ClipSources clips;
    std::vector<const aiAnimation *> all(scene.mAnimations, scene.mAnimations + scene.mNumAnimations);
    if (sharesOneTimeline(scene, options)) {
        report.tell("its " + std::to_string(all.size()) +
                    " animations share one timeline: they became one clip");
        clips.push_back(std::make_unique<OwnClip>(all, rig, ""));
        return clips;
    }
    for (const aiAnimation *animation : all)
        clips.push_back(std::make_unique<OwnClip>(std::vector<const aiAnimation *>{animation}, rig,
                                                  animation->mName.C_Str()));
    return clips;
}

std::set<std::string> movedNodes(const aiScene &scene) {
    std::set<std::string> names;
    for (unsigned a = 0; a < scene.mNumAnimations; ++a) {
        for (unsigned c = 0; c < scene.mAnimations[a]->mNumChannels; ++c) {
            const std::string name = scene.mAnimations[a]->mChannels[c]->mNodeName.C_Str();
            names.insert(name.substr(0, name.find(kPivotMark)));
        }
    }
    return names;
}

ClipSources foreignClips(const aiScene &scene, const Rig &other, const std::string &file, const Rig &rig,
                         const Options &options, Report &report) {
    ClipSources clips;
    std::string stem = fileStem(file);
    if (stem.compare(0, options.name.size() + 1, options.name + "_") == 0)
        stem.erase(0, options.name.size() + 1);
    const std::string shown = cleanText(file.substr(file.find_last_of('/') + 1));
    bool matches = false;
    for (unsigned a = 0; a < scene.mNumAnimations; ++a) {
        const aiAnimation &animation = *scene.mAnimations[a];
        // Programs that write a clip into each file give all of them one name.
        const std::string name =
            scene.mNumAnimations == 1 ? stem : stem + "_" + std::string(animation.mName.C_Str());
        auto clip = std::make_unique<ForeignClip>(animation, other, rig, name);
        if (!clip->movesNodes()) continue;
        matches = true;
        clips.push_back(std::move(clip));
    }
    if (scene.mNumAnimations == 0)
        report.warn(shown + " has no animation");
    else if (!matches)
        report.warn("the animations of " + shown + " move no node that the model has");
    else
        reportStrangers(scene, shown, rig, report);
    return clips;
}

}  // namespace keltra::convert
