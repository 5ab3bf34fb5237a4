// SPDX-License-Identifier: Zlib
#include "formats/anim_record.h"
#include "tools/info/kinds.h"

#include <algorithm>
#include <cmath>

namespace keltra::info {

namespace {

// What one bone does over all frames.
struct Track {
    float least[6], most[6];  // rotation, position
    unsigned int set = 0;
    bool finite = true;

    void add(const KeyframeRecord &keyframe, bool isFirst) {
        float values[6];
        std::copy_n(keyframe.rotation, 3, values);
        std::copy_n(keyframe.position, 3, values + 3);
        for (int i = 0; i < 6; ++i) {
            finite = finite && std::isfinite(values[i]);
            least[i] = isFirst ? values[i] : std::min(least[i], values[i]);
            most[i] = isFirst ? values[i] : std::max(most[i], values[i]);
        }
        set += keyframe.set;
    }

    bool moves(int first) const {
        for (int i = first; i < first + 3; ++i)
            if (!(least[i] == most[i])) return true;
        return false;
    }
};

Fields range(const float *values) { return {number(values[0]), number(values[1]), number(values[2])}; }

Fields describe(const Track &track, const char *name, unsigned int frames) {
    Fields bone = {{"name", name}, {"keyframesSet", track.set}};
    if (frames == 0) return bone;
    bone["rotates"] = track.moves(0);
    bone["leastRotation"] = range(track.least);
    bone["mostRotation"] = range(track.most);
    bone["translates"] = track.moves(3);
    bone["leastPosition"] = range(track.least + 3);
    bone["mostPosition"] = range(track.most + 3);
    return bone;
}

void describeAnim(const Source &source, const AnimRecord &record, Inspection &result) {
    std::vector<Track> tracks(record.bones);
    Fields setFrames = Fields::array();
    ByteReader reader = keyframesOf(record);
    for (unsigned int frame = 0; frame < record.frames; ++frame) {
        bool isSet = false;
        for (Track &track : tracks) {
            KeyframeRecord keyframe;
            readKeyframe(reader, keyframe);
            track.add(keyframe, frame == 0);
            isSet = isSet || keyframe.set;
        }
        if (isSet) setFrames.push_back(frame);
    }
    Fields bones = Fields::array();
    for (unsigned int bone = 0; bone < record.bones; ++bone) {
        bones.push_back(describe(tracks[bone], record.names[bone], record.frames));
        if (!tracks[bone].finite)
            note(result, "bone " + quoted(record.names[bone]) + " has values that are no numbers");
        if (*record.names[bone] == '\0') note(result, "bone[" + std::to_string(bone) + "] has no name");
    }
    result.fields["totals"] = {{"bones", record.bones}, {"frames", record.frames}, {"bytes", source.size}};
    result.fields["framesSet"] = setFrames;
    result.fields["bones"] = bones;
    if (record.size < source.size)
        note(result, counted(source.size - record.size, "byte") + " after the last keyframe, not read");
    if (record.frames == 0) note(result, "there are no frames: only the names are loaded");
}

}  // namespace

void inspectAnimation(const Source &source, Inspection &result) {
    AnimRecord record;
    Fault fault;
    result.good = readAnim(source.bytes, source.size, record, &fault);
    if (result.good) return describeAnim(source, record, result);
    unsigned int named = 0;
    while (named < record.bones && record.names[named]) ++named;
    const bool isName = named < record.bones;
    setFlaw(result, fault, isName ? "bone[" + std::to_string(named) + "]." : "");
    if (record.bones)
        result.fields["totals"] = {
            {"bones", record.bones}, {"frames", record.frames}, {"bytes", source.size}};
}

}  // namespace keltra::info
