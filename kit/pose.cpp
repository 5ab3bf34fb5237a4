// SPDX-License-Identifier: Zlib
// What players do in a frame: moving clips on, and writing poses.
#include <keltra/kit/clip.h>

#include <keltra/node.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr std::uint8_t kNoBone = 255;

// The angle nearest to `near` that is the same as `angle`, in degrees.
float nearest(float angle, float near) {
    const float turns = std::floor((angle - near) * (1.0f / 360.0f) + 0.5f);
    return angle - 360.0f * turns;
}

R3XVECTOR3D nearest(const R3XVECTOR3D &angles, const R3XVECTOR3D &near) {
    return R3XVECTOR3D(nearest(angles.x, near.x), nearest(angles.y, near.y), nearest(angles.z, near.z));
}

float sumOf(const R3XVECTOR3D &v) { return std::fabs(v.x) + std::fabs(v.y) + std::fabs(v.z); }

// From a to b by the shorter way: three angles say the same as (x + 180, 180 - y, z + 180).
R3XVECTOR3D blendAngles(const R3XVECTOR3D &a, const R3XVECTOR3D &b, float weight) {
    const R3XVECTOR3D same = nearest(b, a);
    const R3XVECTOR3D other = nearest(R3XVECTOR3D(b.x + 180.0f, 180.0f - b.y, b.z + 180.0f), a);
    return a.lerp(sumOf(other - a) < sumOf(same - a) ? other : same, weight);
}

float smoothStep(float t) { return t * t * (3.0f - 2.0f * t); }

R3XVECTOR3D vectorOf(const float (&values)[3]) { return R3XVECTOR3D(values[0], values[1], values[2]); }

}  // namespace

float KTPLAYER::lengthOf(const TRACK &track) {
    return static_cast<float>(track.last - track.first + 1) / track.clip->rate;
}

unsigned int KTPLAYER::frameOf(const TRACK &track) {
    return std::min(track.first + static_cast<unsigned int>(track.time * track.clip->rate), track.last);
}

// Returns how often a loop began anew.
unsigned int KTPLAYER::advance(TRACK *track, float seconds) {
    const float length = lengthOf(*track);
    track->time += seconds * track->rate;
    if (track->time < length) return 0;
    if (!track->loop) {
        track->time = length;
        track->ended = true;
        return 0;
    }
    const float wraps = std::floor(track->time / length);
    track->time = std::max(track->time - wraps * length, 0.0f);
    return static_cast<unsigned int>(std::min(wraps, 1000.0f));
}

KTPLAYER::POSE KTPLAYER::poseOf(const TRACK &track, unsigned int bone) const {
    const unsigned int frame = frameOf(track);
    const KTCLIP::KEY &key = track.clip->key(frame, bone);
    POSE pose = {vectorOf(key.rotation), vectorOf(key.position)};
    if (smooth) {
        const unsigned int after = frame < track.last ? frame + 1 : track.loop ? track.first : track.last;
        const float rest = track.time * track.clip->rate - static_cast<float>(frame - track.first);
        const KTCLIP::KEY &next = track.clip->key(after, bone);
        if (rest > 0.0f && rest < 1.0f) {
            pose.rotation = blendAngles(pose.rotation, vectorOf(next.rotation), rest);
            pose.position = pose.position.lerp(vectorOf(next.position), rest);
        }
    }
    if (static_cast<int>(bone) != track.rootBone) return pose;
    const KTCLIP::KEY &start = track.clip->key(track.first, bone);
    pose.position.x = start.position[0];
    pose.position.z = start.position[2];
    return pose;
}

float KTPLAYER::fadeWeight() const {
    return fadeLeft > 0.0f ? smoothStep(1.0f - fadeLeft / fadeLength) : 1.0f;
}

KTPLAYER::POSE KTPLAYER::basePose(unsigned int bone) const {
    POSE pose = poseOf(base, bone);
    if (fadeLeft <= 0.0f) return pose;
    const POSE from = fadedBone[bone] != kNoBone ? poseOf(former, fadedBone[bone]) : faded[bone];
    const float weight = fadeWeight();
    pose.rotation = blendAngles(from.rotation, pose.rotation, weight);
    pose.position = from.position.lerp(pose.position, weight);
    return pose;
}

// Beyond the last frame it goes on as between the last two.
R3XVECTOR3D KTPLAYER::rootPosition(const TRACK &track, float time) {
    const unsigned int bone = static_cast<unsigned int>(track.rootBone), count = track.last - track.first + 1;
    if (count < 2) return R3XVECTOR3D();
    const float at = time * track.clip->rate;
    const unsigned int frame = std::min(static_cast<unsigned int>(at), count - 2);
    const R3XVECTOR3D a = vectorOf(track.clip->key(track.first + frame, bone).position);
    const R3XVECTOR3D b = vectorOf(track.clip->key(track.first + frame + 1, bone).position);
    return a.lerp(b, at - static_cast<float>(frame));
}

R3XVECTOR3D KTPLAYER::rootStep(const TRACK &track, float before, unsigned int wraps) {
    if (track.rootBone < 0 || !track.clip) return R3XVECTOR3D();
    R3XVECTOR3D moved = rootPosition(track, track.time) - rootPosition(track, before);
    if (wraps > 0) moved += (rootPosition(track, lengthOf(track)) - rootPosition(track, 0.0f)) * float(wraps);
    moved.y = 0.0f;
    return moved;
}

// From one time to another of one round, which is not included.
void KTPLAYER::passEventsBetween(float from, float to) {
    const KTCLIP &clip = *base.clip;
    for (unsigned int i = 0; i < clip.numberOfEvents; ++i) {
        const KTCLIP::EVENT &event = clip.events[i];
        if (event.frame < base.first || event.frame > base.last) continue;
        const float time = static_cast<float>(event.frame - base.first) / clip.rate;
        if (time >= from && time < to && numberOfWaiting < maxWaiting)
            waiting[numberOfWaiting++] = event.code;
    }
}

void KTPLAYER::passEvents(float before, unsigned int wraps) {
    if (base.clip->numberOfEvents == 0) return;
    if (wraps == 0) return passEventsBetween(before, base.time);
    const float length = lengthOf(base);
    passEventsBetween(before, length);
    for (unsigned int i = 1; i < wraps && numberOfWaiting < maxWaiting; ++i) passEventsBetween(0.0f, length);
    passEventsBetween(0.0f, base.time);
}

void KTPLAYER::moveBase(float seconds) {
    const float before = base.time;
    const unsigned int wraps = advance(&base, seconds);
    passEvents(before, wraps);
    step = rootStep(base, before, wraps);
    if (fadeLeft > 0.0f) {
        fadeLeft = std::max(fadeLeft - seconds, 0.0f);
        const float formerBefore = former.time;
        const unsigned int formerWraps = former.clip ? advance(&former, seconds) : 0;
        step = rootStep(former, formerBefore, formerWraps).lerp(step, fadeWeight());
        if (fadeLeft <= 0.0f) former.clip = nullptr;
    }
    if (base.rootBone < 0) return;
    R3XMATRIX turn;
    turn.setRotation(root->rotation.y, 0.0f, 1.0f, 0.0f);
    step = turn.rotate(R3XVECTOR4D(step));
}

void KTPLAYER::writeBase() {
    for (unsigned int bone = 0; bone < base.clip->bones; ++bone) {
        KTNODE *const node = base.nodes[bone];
        if (!node) continue;
        const POSE pose = basePose(bone);
        node->rotation = pose.rotation;
        if (translating) node->position = pose.position;
    }
}

void KTPLAYER::moveLayer(LAYER *layer, float seconds) {
    TRACK &track = layer->track;
    if (!track.clip) return;
    advance(&track, seconds);
    layer->level = std::min(layer->level + layer->speed * seconds, 1.0f);
    // Played once, it fades out as it faded in.
    if (!track.loop && layer->fade > 0.0f)
        layer->level = std::min(layer->level, (lengthOf(track) - track.time) / layer->fade);
    if (track.ended || (layer->level <= 0.0f && layer->speed < 0.0f)) track.clip = nullptr;
}

void KTPLAYER::writeLayer(const LAYER &layer) {
    const TRACK &track = layer.track;
    const float weight = track.clip ? smoothStep(std::max(layer.level, 0.0f)) * layer.weight : 0.0f;
    if (weight <= 0.0f) return;
    for (unsigned int bone = 0; bone < track.clip->bones; ++bone) {
        KTNODE *const node = track.nodes[bone];
        if (!node) continue;
        POSE pose = poseOf(track, bone);
        if (layer.kind == KT_LAYER_ADD) {
            const KTCLIP::KEY &start = track.clip->key(track.first, bone);
            const R3XVECTOR3D from = vectorOf(start.rotation);
            pose.rotation = node->rotation + (nearest(pose.rotation, from) - from) * weight;
            pose.position = node->position + (pose.position - vectorOf(start.position)) * weight;
        } else if (weight < 1.0f) {
            pose.rotation = blendAngles(node->rotation, pose.rotation, weight);
            pose.position = node->position.lerp(pose.position, weight);
        }
        node->rotation = pose.rotation;
        if (translating) node->position = pose.position;
    }
}

void KTPLAYER::update(float seconds) {
    step.reset();
    if (!root) return;
    if (!(seconds > 0.0f)) seconds = 0.0f;
    if (base.clip) {
        moveBase(seconds);
        writeBase();
    }
    for (const LAYER &layer : above) resetResting(layer);
    for (LAYER &layer : above) {
        moveLayer(&layer, seconds);
        writeLayer(layer);
    }
}
