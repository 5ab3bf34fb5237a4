#include "tools/samples/figure.h"

#include "tools/samples/figure_parts.h"
#include "tools/samples/shapes.h"
#include "tools/samples/textures.h"

namespace keltra::samples {

const FigureJoint kFigureJoints[kFigureBones] = {
    {"hips", -1, {0.0f, 0.74f, 0.0f}},
    {"spine", kHips, {0.0f, 0.92f, 0.0f}},
    {"chest", kSpine, {0.0f, 1.14f, 0.0f}},
    {"head", kChest, {0.0f, 1.46f, 0.0f}},
    {"cap", kHead, {0.0f, 2.40f, -0.06f}},
    {"capTip", kCap, {0.0f, 2.70f, -0.16f}},
    {"scarf", kChest, {0.15f, 1.40f, -0.22f}},
    {"scarfEnd", kScarf, {0.15f, 1.02f, -0.36f}},
    {"leftUpperArm", kChest, {0.285f, 1.275f, 0.0f}},
    {"leftForearm", kUpperArm, {0.455f, 1.035f, 0.0f}},
    {"leftHand", kForearm, {0.610f, 0.816f, 0.0f}},
    {"leftThigh", kHips, {0.155f, 0.70f, 0.0f}},
    {"leftShin", kThigh, {0.155f, 0.43f, 0.0f}},
    {"leftFoot", kShin, {0.155f, 0.15f, 0.0f}},
    {"rightUpperArm", kChest, {-0.285f, 1.275f, 0.0f}},
    {"rightForearm", kUpperArm + kSide, {-0.455f, 1.035f, 0.0f}},
    {"rightHand", kForearm + kSide, {-0.610f, 0.816f, 0.0f}},
    {"rightThigh", kHips, {-0.155f, 0.70f, 0.0f}},
    {"rightShin", kThigh + kSide, {-0.155f, 0.43f, 0.0f}},
    {"rightFoot", kShin + kSide, {-0.155f, 0.15f, 0.0f}},
};

Vec3 boundPosition(int bone) {
    const FigureJoint &joint = kFigureJoints[bone];
    return onGrid(joint.parent < 0 ? joint.place : joint.place - kFigureJoints[joint.parent].place);
}

namespace {

// A bone and all bones below it: mesh records without geometry, for only those carry rotations and are
// collected for the skin; hidden, so that they take no place on the render list.
Node makeBone(int bone) {
    Node node;
    node.kind = NodeKind::kMesh;
    node.name = kFigureJoints[bone].name;
    node.position = boundPosition(bone);
    node.mesh.hidden = true;
    for (int child = 0; child < kFigureBones; ++child) {
        if (kFigureJoints[child].parent == bone) node.children.push_back(makeBone(child));
    }
    return node;
}

Material makeCloth() {
    Material material;
    material.name = "figure";
    material.texture = "figure.tga";
    material.ambient = {0.95f, 0.95f, 0.95f, 1.0f};
    material.diffuse = {0.95f, 0.95f, 0.95f, 1.0f};
    material.specular = {0.0f, 0.0f, 0.0f, 1.0f};
    return material;
}

}  // namespace

Scene makeFigure() {
    Scene scene;
    scene.materials.push_back(makeCloth());
    scene.root = plainNode("figure");
    Node skeleton = plainNode("HumanoidRoot");
    skeleton.children.push_back(makeBone(kHips));
    skeleton.children.push_back(makeFigureBody());
    scene.root.children.push_back(skeleton);
    return scene;
}

std::vector<SampleFile> makeFigureFiles() {
    const TgaOptions plain = {false, 24, false}, packed = {true, 24, true};
    std::vector<SampleFile> files;
    files.push_back({"figure.kte", writeKte(makeFigure(), KteVersion::k16a)});
    files.push_back({"walk.kta", writeKta(makeWalk())});
    files.push_back({"wave.kta", writeKta(makeWave())});
    files.push_back({"meadow.kte", writeKte(makeMeadow(), KteVersion::k16a)});
    files.push_back({"garden.kte", writeKte(makeGarden(), KteVersion::k16a)});
    files.push_back({"figure.tga", writeTga(paintFigure(), plain)});
    files.push_back({"meadow.tga", writeTga(paintMeadow(), plain)});
    files.push_back({"daysky.tga", writeTga(paintDaySky(), packed)});
    files.push_back({"dusksky.tga", writeTga(paintDuskSky(), packed)});
    files.push_back({"paper.tga", writeTga(paintPaper(), packed)});
    files.push_back({"lampglow.tga", writeTga(paintGlow(), {true, 32, false})});
    return files;
}

}  // namespace keltra::samples
