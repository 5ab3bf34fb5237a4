#include <algorithm>

#include "tools/samples/figure.h"
#include "tools/samples/figure_parts.h"

namespace keltra::samples {
namespace {

constexpr int kWalkFrames = 24;
constexpr int kWaveFrames = 32;

// Signs: a positive turn about x takes a limb that hangs down to the back, and leans a body forward. About y
// it takes the left side (+x) to the back; about z it raises a left arm, and lowers a right one.

using Pose = std::vector<Keyframe>;

Pose boundPose() {
    Pose pose(kFigureBones);
    for (int bone = 0; bone < kFigureBones; ++bone) {
        pose[static_cast<size_t>(bone)].position = boundPosition(bone);
    }
    return pose;
}

void turn(Pose *pose, int bone, Vec3 degrees) { (*pose)[static_cast<size_t>(bone)].rotation = degrees; }

Vec3 aboutX(Vec3 v, float degrees) {
    const float s = sine(degrees), c = cosine(degrees);
    return {v.x, v.y * c - v.z * s, v.y * s + v.z * c};
}

// The height of a leg's lowest point below the hips, its bones turned about x only.
float footDepth(const Pose &pose, int offset) {
    const Vec3 heel = {0.0f, -0.15f, -0.13f}, toe = {0.0f, -0.14f, 0.26f};
    const Keyframe &thigh = pose[static_cast<size_t>(kThigh + offset)];
    const Keyframe &shin = pose[static_cast<size_t>(kShin + offset)];
    const Keyframe &foot = pose[static_cast<size_t>(kFoot + offset)];
    const auto below = [&](Vec3 point) {
        const Vec3 atShin = foot.position + aboutX(point, foot.rotation.x);
        const Vec3 atThigh = shin.position + aboutX(atShin, shin.rotation.x);
        return (thigh.position + aboutX(atThigh, thigh.rotation.x)).y;
    };
    return std::min(below(heel), below(toe));
}

// Lets the figure stand on its lower foot.
void stand(Pose *pose, float aside) {
    const float lowest = std::min(footDepth(*pose, 0), footDepth(*pose, kSide));
    (*pose)[kHips].position = onGrid(Vec3{aside, -lowest, 0.0f});
}

// A swelling of one third of the circle about `middle`.
float swell(float phase, float middle) {
    const float c = std::max(cosine(phase - middle), 0.0f);
    return c * c * c;
}

// At phase 0 the heel meets the ground in front, at 180 the toes leave it behind.
void stepLeg(Pose *pose, int offset, float phase) {
    const float thigh = -28.0f * cosine(phase) - 5.0f;
    const float knee = 4.0f + 62.0f * swell(phase, 266.0f) + 10.0f * swell(phase, 45.0f);
    const float level = -(thigh + knee);
    turn(pose, kThigh + offset, {thigh, 0.0f, 0.0f});
    turn(pose, kShin + offset, {knee, 0.0f, 0.0f});
    turn(pose, kFoot + offset,
         {level + 16.0f * swell(phase, 205.0f) - 22.0f * swell(phase, 0.0f), 0.0f, 0.0f});
}

void swingArm(Pose *pose, int offset, float phase) {
    const float side = offset == 0 ? 1.0f : -1.0f;
    turn(pose, kUpperArm + offset, {34.0f * cosine(phase) - 4.0f, 0.0f, -16.0f * side});
    turn(pose, kForearm + offset, {-34.0f + 18.0f * cosine(phase), 0.0f, -4.0f * side});
    turn(pose, kHand + offset, {-6.0f, 0.0f, 0.0f});
}

// Cap and scarf follow a bounce of two beats a circle, late.
void trail(Pose *pose, float phase, float strength) {
    turn(pose, kCap,
         {strength * 7.0f * sine(2.0f * phase - 40.0f), 0.0f, strength * 4.0f * sine(phase - 50.0f)});
    turn(pose, kCapTip,
         {-14.0f + strength * 16.0f * sine(2.0f * phase - 95.0f), 0.0f,
          strength * 9.0f * sine(phase - 90.0f)});
    turn(
        pose, kScarf,
        {strength * (9.0f + 6.0f * sine(2.0f * phase - 60.0f)), 0.0f, strength * 5.0f * sine(phase - 40.0f)});
    turn(pose, kScarfEnd,
         {strength * (8.0f + 14.0f * sine(2.0f * phase - 120.0f)), 0.0f,
          strength * 7.0f * sine(phase - 80.0f)});
}

Pose walkPose(float phase) {
    Pose pose = boundPose();
    stepLeg(&pose, 0, phase);
    stepLeg(&pose, kSide, phase + 180.0f);
    swingArm(&pose, 0, phase);
    swingArm(&pose, kSide, phase + 180.0f);
    const float twist = cosine(phase), sway = sine(phase);
    turn(&pose, kHips, {0.0f, -5.0f * twist, 2.0f * sway});
    turn(&pose, kSpine, {3.0f, 5.0f * twist, -3.0f * sway});
    turn(&pose, kChest, {2.0f, 6.0f * twist, -2.0f * sway});
    turn(&pose, kHead, {-4.0f + 2.5f * cosine(2.0f * phase + 30.0f), -5.0f * twist, 4.0f * sway});
    trail(&pose, phase, 1.0f);
    stand(&pose, 0.035f * sway);
    return pose;
}

// He stands, bobs on his knees twice a circle, and waves as often.
Pose wavePose(float phase) {
    Pose pose = boundPose();
    const float beat = sine(2.0f * phase), bob = 9.0f + 7.0f * cosine(2.0f * phase);
    for (int offset : {0, int{kSide}}) {
        turn(&pose, kThigh + offset, {-bob, 0.0f, 0.0f});
        turn(&pose, kShin + offset, {2.0f * bob, 0.0f, 0.0f});
        turn(&pose, kFoot + offset, {-bob, 0.0f, 0.0f});
    }
    turn(&pose, kSpine, {2.0f, 0.0f, 2.0f + 2.0f * beat});
    turn(&pose, kChest, {0.0f, -4.0f, 2.0f + 2.0f * beat});
    turn(&pose, kHead, {-3.0f, 4.0f, -9.0f - 4.0f * beat});
    turn(&pose, kUpperArm, {-6.0f, 0.0f, -14.0f - 3.0f * beat});
    turn(&pose, kForearm, {-24.0f, 0.0f, 0.0f});
    turn(&pose, kUpperArm + kSide, {0.0f, 26.0f, -98.0f + 5.0f * beat});
    turn(&pose, kForearm + kSide, {0.0f, 0.0f, -14.0f + 24.0f * sine(2.0f * phase - 25.0f)});
    turn(&pose, kHand + kSide, {0.0f, 0.0f, 14.0f * sine(2.0f * phase - 70.0f)});
    trail(&pose, phase, 0.6f);
    stand(&pose, -0.01f + 0.01f * beat);
    return pose;
}

Animation makeCircle(int frames, Pose (*pose)(float phase)) {
    Animation animation;
    for (const FigureJoint &joint : kFigureJoints) {
        animation.bones.push_back(joint.name);
    }
    for (int frame = 0; frame < frames; ++frame) {
        animation.frames.push_back(pose(360.0f * static_cast<float>(frame) / static_cast<float>(frames)));
    }
    return animation;
}

}  // namespace

Animation makeWalk() { return makeCircle(kWalkFrames, walkPose); }

Animation makeWave() { return makeCircle(kWaveFrames, wavePose); }

}  // namespace keltra::samples
