#include "tools/samples/film.h"

#include "tools/samples/shapes.h"

namespace keltra::samples {
namespace {

constexpr float kHalf = 2.0f;

// A square side of the cube: `right` and `up` as its viewer sees them, `out` towards the viewer.
void addSide(MeshBuilder &mesh, Vec3 right, Vec3 up, Vec3 out) {
    mesh.patch(
        1, 1,
        [&](int i, int j) {
            const float x = i ? kHalf : -kHalf, y = j ? kHalf : -kHalf;
            return Vec3{x * right.x + y * up.x + kHalf * out.x, x * right.y + y * up.y + kHalf * out.y,
                        x * right.z + y * up.z + kHalf * out.z};
        },
        [](int i, int j) {
            return Vec2{static_cast<float>(i), static_cast<float>(1 - j)};
        });
}

}  // namespace

std::vector<SampleFile> makeFilmFiles() {
    MeshBuilder mesh;
    addSide(mesh, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    addSide(mesh, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1});
    addSide(mesh, {0, 0, -1}, {0, 1, 0}, {1, 0, 0});
    addSide(mesh, {0, 0, 1}, {0, 1, 0}, {-1, 0, 0});
    addSide(mesh, {1, 0, 0}, {0, 0, -1}, {0, 1, 0});
    addSide(mesh, {1, 0, 0}, {0, 0, 1}, {0, -1, 0});
    Material screen;
    screen.name = "screen";
    screen.emission = {0.35f, 0.35f, 0.35f, 1.0f};
    screen.diffuse = {0.75f, 0.75f, 0.75f, 1.0f};
    Scene scene;
    scene.materials.push_back(screen);
    scene.root = plainNode("film");
    scene.root.children.push_back(mesh.finish("box", screen.name));
    scene.root.children.push_back(pointLight("lamp", {4.0f, 6.0f, 12.0f}, {1.0f, 1.0f, 1.0f}));
    return {{"film.kte", writeKte(scene, KteVersion::k16a)}};
}

}  // namespace keltra::samples
