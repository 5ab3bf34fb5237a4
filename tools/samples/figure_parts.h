#ifndef KELTRA_SAMPLES_FIGURE_PARTS_H
#define KELTRA_SAMPLES_FIGURE_PARTS_H

// What the sources of the sample character share: its bones, and the places of its texture.

#include "tools/formats/kte_writer.h"
#include "tools/formats/tga_writer.h"

namespace keltra::samples {

using namespace formats;

// The bones of a limb follow one another; the right side is kSide behind the left.
enum FigureBone {
    kHips,
    kSpine,
    kChest,
    kHead,
    kCap,
    kCapTip,
    kScarf,
    kScarfEnd,
    kUpperArm,
    kForearm,
    kHand,
    kThigh,
    kShin,
    kFoot,
    kSide = 6,
    kFigureBones = kUpperArm + 2 * kSide
};

struct FigureJoint {
    const char *name;
    int parent;  // -1 for the root bone
    Vec3 place;  // in the bind pose, seen from the figure's root
};

extern const FigureJoint kFigureJoints[kFigureBones];

// A bone's position below its parent in the bind pose.
Vec3 boundPosition(int bone);

// A part of the figure's texture, in pixels from the top left.
struct TextureArea {
    int x, y, width, height;
};

constexpr int kFigureTextureSize = 256;
constexpr TextureArea kHeadArea = {0, 0, 256, 112};  // once around, the face in the middle
constexpr TextureArea kCapArea = {0, 112, 256, 40};
constexpr TextureArea kTunicArea = {0, 152, 256, 48};  // the belt a little below its middle
constexpr TextureArea kSleeveArea = {0, 200, 64, 32};
constexpr TextureArea kTrouserArea = {64, 200, 64, 32};
constexpr TextureArea kBootArea = {128, 200, 64, 32};
constexpr TextureArea kMittenArea = {192, 200, 64, 32};
constexpr TextureArea kScarfArea = {0, 232, 96, 24};
constexpr TextureArea kHairArea = {96, 232, 96, 24};
constexpr TextureArea kSkinArea = {192, 232, 32, 24};
constexpr TextureArea kWoolArea = {224, 232, 32, 24};

Node makeFigureBody();

// Paintings: the figure's texture; grass with flowers, repeating; both skies, repeating sideways; the paper
// of a lantern.
Image paintFigure();
Image paintMeadow();
Image paintDaySky();
Image paintDuskSky();
Image paintPaper();

}  // namespace keltra::samples

#endif  // KELTRA_SAMPLES_FIGURE_PARTS_H
