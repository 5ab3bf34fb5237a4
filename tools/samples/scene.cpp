#include "tools/samples/scene.h"

#include "tools/samples/parts.h"
#include "tools/samples/textures.h"

namespace keltra::samples {
namespace {

// Stone and skin: what light falls on.
Material lit(const char *name, const char *texture, float ambient, float diffuse,
             Color emission = {0.0f, 0.0f, 0.0f, 1.0f}) {
    Material m;
    m.name = name;
    m.texture = texture;
    m.ambient = {ambient, ambient, ambient, 1.0f};
    m.diffuse = {diffuse, diffuse, diffuse, 1.0f};
    m.specular = {0.0f, 0.0f, 0.0f, 1.0f};
    m.emission = emission;
    return m;
}

// What shines by itself in one colour, whatever lights are near.
Material glowing(const char *name, const char *texture, Color emission, float transparency = 1.0f) {
    Material m = lit(name, texture, 0.0f, 0.0f, emission);
    m.transparency = transparency;
    return m;
}

std::vector<Material> makeMaterials() {
    std::vector<Material> list = {
        lit("paving", "paving.tga", 0.75f, 0.8f),
        lit("masonry", "masonry.tga", 0.9f, 1.0f),
        lit("rim", "masonry.tga", 0.9f, 0.9f, {0.02f, 0.07f, 0.08f, 1.0f}),
        lit("column", "column.tga", 0.9f, 1.0f),
        lit("mosaic", "mosaic.tga", 0.8f, 0.6f, {0.30f, 0.50f, 0.50f, 1.0f}),
        lit("scales", "scales.tga", 0.95f, 0.92f, {0.06f, 0.09f, 0.10f, 1.0f}),
        lit("fin", "fin.tga", 1.0f, 0.9f, {0.18f, 0.10f, 0.10f, 1.0f}),
        lit("grass", "grass.tga", 1.0f, 1.0f),
        lit("cypress", "cypress.tga", 1.0f, 1.0f),
        lit("bronze", "bronze.tga", 0.9f, 1.0f),
        glowing("sky", "sky.tga", {1.0f, 1.0f, 1.0f, 1.0f}),
        glowing("farRidge", "[none]", {0.45f, 0.27f, 0.42f, 1.0f}),
        glowing("nearRidge", "[none]", {0.24f, 0.16f, 0.33f, 1.0f}),
        glowing("moon", "moon.tga", {1.0f, 1.0f, 1.0f, 1.0f}, 0.999f),
        glowing("mist", "mist.tga", {0.74f, 0.48f, 0.60f, 1.0f}, 0.85f),
        glowing("flame", "[none]", {1.0f, 0.95f, 0.70f, 1.0f}),
        glowing("glass", "pane.tga", {1.0f, 0.92f, 0.80f, 1.0f}, 0.75f),
        glowing("halo", "glow.tga", {1.0f, 0.68f, 0.34f, 1.0f}, 0.6f),
        glowing("spark", "glow.tga", {0.92f, 1.0f, 0.55f, 1.0f}, 0.95f),
        glowing("eye", "[none]", {1.0f, 0.80f, 0.25f, 1.0f}),
    };
    Material water = lit("water", "water.tga", 0.8f, 0.7f, {0.16f, 0.30f, 0.32f, 1.0f});
    water.transparency = 0.55f;
    water.specular = {1.0f, 1.0f, 1.0f, 1.0f};
    water.shininess = 24.0f;
    list.push_back(water);
    return list;
}

struct Painting {
    const char *name;
    Image (*paint)();
    TgaOptions options;
};

// The four combinations of packing and depth, and both row orders, so that the
// scene exercises the whole reader.
const Painting kPaintings[] = {
    {"paving.tga", paintPaving, {false, 24, false}}, {"masonry.tga", paintMasonry, {false, 24, true}},
    {"column.tga", paintColumn, {true, 24, false}},  {"mosaic.tga", paintMosaic, {true, 24, true}},
    {"scales.tga", paintScales, {false, 24, false}}, {"fin.tga", paintFin, {true, 24, false}},
    {"grass.tga", paintGrass, {false, 24, false}},   {"cypress.tga", paintCypress, {false, 24, true}},
    {"water.tga", paintWater, {true, 24, false}},    {"bronze.tga", paintBronze, {true, 24, false}},
    {"pane.tga", paintPane, {true, 32, true}},       {"glow.tga", paintGlow, {true, 32, false}},
    {"mist.tga", paintMist, {false, 32, false}},     {"moon.tga", paintMoon, {true, 32, true}},
    {"sky.tga", paintSky, {false, 24, false}},
};

const char kSettings[] =
    "# Settings of the sample scene\n"
    "KELTRA_title = \"MoonlitCourt\"\n"
    "KELTRA_windowX = 240\n"
    "KELTRA_windowY = 320\n"
    "KELTRA_colorDepth = 16\n"
    "KELTRA_zetaDepth = 16\n"
    "KELTRA_renderingElements = 256\n";

}  // namespace

Scene makeScene() {
    Scene scene;
    scene.materials = makeMaterials();
    scene.root = plainNode("moonlitCourt");
    addLandscape(&scene.root);
    addCourt(&scene.root);
    addLanterns(&scene.root);
    addSerpent(&scene.root);
    return scene;
}

std::vector<SampleFile> makeSampleFiles() {
    std::vector<SampleFile> files;
    files.push_back({"scene.cfg", {kSettings, kSettings + sizeof(kSettings) - 1}});
    files.push_back({"scene.kte", writeKte(makeScene(), KteVersion::k16a)});
    for (const Painting &painting : kPaintings) {
        files.push_back({painting.name, writeTga(painting.paint(), painting.options)});
    }
    return files;
}

}  // namespace keltra::samples
