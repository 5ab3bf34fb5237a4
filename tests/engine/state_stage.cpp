// SPDX-License-Identifier: Zlib
#include "tests/engine/state_stage.h"

#include <stdexcept>

#include "tests/scene/scene_parts.h"
#include "tests/support/shapes.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {
namespace {

using Made = std::unique_ptr<Stage>;

void destroyTree(KTNODE *node) {
    if (!node) return;
    // A window deletes its own title bar and scroll bar, which are its first two children.
    const unsigned int own = node->getType() == KT_WINDOW
                                 ? 2
                                 : node->getType() == KT_VSCROLLBAR || node->getType() == KT_HSCROLLBAR;
    for (unsigned int i = own; i < node->getNumberOfChildren(); ++i) destroyTree(node->getChild(i));
    delete node;
}

float across(Side side) { return side == Side::kLeft ? -1.5f : 1.5f; }
float depth(Side side) { return side == Side::kLeft ? -12.0f : -10.0f; }
int column(Side side) { return side == Side::kLeft ? 8 : 128; }

formats::Image checker(unsigned size, formats::Rgba one, formats::Rgba other) {
    formats::Image image(size, size);
    for (unsigned y = 0; y < size; ++y)
        for (unsigned x = 0; x < size; ++x) image.at(x, y) = (x / 4 + y / 4) % 2 ? one : other;
    return image;
}

formats::Image glyphs() {
    formats::Image image(256, 256);
    for (unsigned y = 0; y < 256; ++y)
        for (unsigned x = 0; x < 256; ++x)
            image.at(x, y) = {255, 255, 255, std::uint8_t((x ^ y ^ (y / 16)) & 3 ? 255 : 0)};
    return image;
}

formats::Material material(const char *name, formats::Color color, const char *texture = "[none]",
                           float transparency = 1.0f) {
    formats::Material made;
    made.name = name;
    made.ambient = made.diffuse = color;
    made.texture = texture;
    made.transparency = transparency;
    return made;
}

formats::Scene sceneWith(formats::Node node) {
    formats::Scene scene;
    scene.materials = {material("stone", {0.8f, 0.5f, 0.3f, 1.0f}),
                       material("tile", {0.7f, 0.8f, 0.9f, 1.0f}, "tile.tga"),
                       material("plank", {0.9f, 0.9f, 0.6f, 1.0f}, "plank.tga"),
                       material("glass", {0.9f, 0.2f, 0.1f, 1.0f}, "[none]", 0.5f)};
    scene.root = std::move(node);
    return scene;
}

formats::Node boxNode(const char *materialName) {
    formats::Node node = test::boxNode("box", materialName, 0.8f);
    node.mesh.rotation = {25.0f, 35.0f, 10.0f};
    return node;
}

formats::Node boardNode(const char *materialName) { return test::boardNode("board", materialName, 0.9f); }

KTNODE *load(const char *name, Side side) {
    KTNODE *node = KELTRA::load(name);
    if (!node) throw std::runtime_error(std::string("no ") + name);
    node->setPosition(across(side), 0.0f, depth(side));
    return node;
}

Made stageOf(KTNODE *node) {
    Made stage = std::make_unique<Stage>();
    stage->scene.push_back(node);
    return stage;
}

KTMESH *mesh(const Stage &stage) { return static_cast<KTMESH *>(stage.scene[0]); }

Made nothing(Side) { return std::make_unique<Stage>(); }
Made bare(Side side) { return stageOf(load("bare.kte", side)); }
Made stone(Side side) { return stageOf(load("stone.kte", side)); }
Made tile(Side side) { return stageOf(load("tile.kte", side)); }
Made glass(Side side) { return stageOf(load("glass.kte", side)); }

Made twoTextures(Side side) {
    Made stage = stageOf(load("plank.kte", side));
    KTMATERIAL *plank = mesh(*stage)->getMaterial();
    if (!plank->getTexture(1)) plank->setTexture(1, KTMATERIAL::findByName("tile")->getTexture(0));
    return stage;
}

Made withoutArrays(Side side) {
    Made stage = tile(side);
    mesh(*stage)->vertexNormals = nullptr;
    mesh(*stage)->numberOfUVs = 0;
    return stage;
}

Made backFacing(Side side) {
    Made stage = stageOf(load("board.kte", side));
    stage->scene[0]->setRotation(0.0f, 180.0f, 0.0f);
    return stage;
}

Made skinned(Side side) {
    Made stage = stageOf(load("skin.kte", side));
    stage->scene[0]->move(-0.7f, 0.0f, 0.0f);
    stage->scene[0]->findByNameInHierarchy("bone")->setPosition(-0.4f, 0.6f, 0.0f);
    return stage;
}

Made skybox(Side side) {
    Made stage = std::make_unique<Stage>();
    KTNODE *dome = load("tile.kte", side);
    stage->skybox = new KTNODE;
    // Only the dome's vertices count: it is drawn around the eye with the skybox's turn alone.
    KTMESH *shape = static_cast<KTMESH *>(dome);
    for (unsigned int i = 0; i < shape->getNumberOfVertices(); ++i) {
        shape->vertices[3 * i] += static_cast<std::int32_t>(across(side) * 65536.0f);
        shape->vertices[3 * i + 2] += static_cast<std::int32_t>(depth(side) * 65536.0f);
    }
    dome->link(stage->skybox);
    return stage;
}

Made wireframe(Side side) {
    Made stage = tile(side);
    stage->on = KELTRA::wireframeOn;
    stage->off = KELTRA::wireframeOff;
    return stage;
}

Made normals(Side side) {
    Made stage = tile(side);
    stage->on = KTMESH::showNormals;
    stage->off = KTMESH::hideNormals;
    return stage;
}

Made emitter(Side side) {
    std::srand(7);
    KTEMITTER *made = new KTEMITTER;
    made->setPosition(across(side), 0.0f, depth(side));
    made->setNumberOfParticles(12);
    made->setColorStart(0.0f, 1.0f, 0.2f);
    made->setColorEnd(1.0f, 1.0f, 0.0f);
    KTTEXTURE *dot = new KTTEXTURE;
    dot->load("tile.tga");
    made->setTexture(dot);
    made->initialize();
    Made stage = stageOf(made);
    stage->prepare = [made] {
        for (int i = 0; i < made->getNumberOfParticles(); ++i) {
            KTPARTICLE &particle = KTEMITTER::particle[made->slot[i]];
            particle.velocity.set(0.0f, 0.0f, 0.0f);
            particle.position.set(0.1f * static_cast<float>(i - 6), 0.05f * static_cast<float>(i), 0.0f);
            particle.energy = particle.initialEnergy = 0.9f;
            particle.size = 1.5f;
            particle.spinAngle = 15.0f * static_cast<float>(i);
        }
    };
    return stage;
}

KTFONT *font() {
    KTFONT *found = KTFONT::findByName("state");
    if (found) return found;
    found = new KTFONT;
    found->setName("state");
    found->setCharSizeY(16);
    KTTEXTURE *texture = new KTTEXTURE;
    texture->load("glyphs.tga");
    found->setTexture(texture);
    return found;
}

template <class Widget>
Widget *put(Stage &stage, Side side, int y) {
    Widget *widget = new Widget;
    widget->setPosition(static_cast<float>(column(side)), static_cast<float>(y));
    widget->setForemost();
    stage.interface.push_back(widget);
    return widget;
}

KTTEXTURE *paper() {
    KTTEXTURE *texture = KTTEXTURE::findByFilename("plank.tga");
    if (texture) return texture;
    texture = new KTTEXTURE;
    texture->load("plank.tga");
    return texture;
}

Made film(Side side) {
    Made stage = std::make_unique<Stage>();
    KTBOX *screen = put<KTBOX>(*stage, side, 30);
    screen->setSizes(96, 96);
#ifdef KELTRA_TEST_FILMS
    KTTEXTURE *target = new KTTEXTURE;
    target->setFilter(false, false, true);
    target->create(64, 64, 3);
    stage->film = new KTVIDEO;
    stage->film->setTexture(target);
    KTVIDEO::setMPGPath(KELTRA_TEST_FILMS "/");
    if (!stage->film->load("wide.m1v")) throw std::runtime_error("no film");
    stage->film->playLoop();
    stage->film->update(60);
    screen->setTexture(target);
#endif
    return stage;
}

Made box(Side side) {
    Made stage = std::make_unique<Stage>();
    put<KTBOX>(*stage, side, 40)->setTexture(paper());
    return stage;
}

Made clearBox(Side side) {
    Made stage = std::make_unique<Stage>();
    put<KTBOX>(*stage, side, 40);
    put<KTBOX>(*stage, side, 60)->setColor(0.2f, 0.9f, 0.4f, 0.5f);
    return stage;
}

Made label(Side side) {
    Made stage = std::make_unique<Stage>();
    KTLABEL *text = put<KTLABEL>(*stage, side, 70);
    text->setFont(font());
    text->write("ab^c8008cd");
    return stage;
}

Made textField(Side side) {
    Made stage = std::make_unique<Stage>();
    KTTEXTFIELD *field = put<KTTEXTFIELD>(*stage, side, 90);
    field->setFont(font());
    field->setSizes(100, 20);
    field->setCaption("field");
    return stage;
}

Made scrollBar(Side side) {
    Made stage = std::make_unique<Stage>();
    KTHSCROLLBAR *bar = put<KTHSCROLLBAR>(*stage, side, 110);
    bar->setValue(0.75f);
    return stage;
}

KTWINDOW *putWindow(Stage &stage, Side side) {
    KTWINDOW *window = put<KTWINDOW>(stage, side, 60);
    window->setSizes(100, 80);
    window->setCaption("title");
    window->setFont(font());
    window->write("text of a window that is longer than it is high");
    window->format();
    // In its state of every frame after its first.
    window->updateScroll();
    static_cast<KTVSCROLLBAR *>(window->getChild(1))->setValue(0.0f);
    KTBUTTON *button = new KTBUTTON;
    button->setCaption("go");
    button->setFont(font());
    button->setPosition(60.0f, 40.0f);
    button->link(window);
    return window;
}

Made window(Side side) {
    Made stage = std::make_unique<Stage>();
    putWindow(*stage, side);
    return stage;
}

Made foldedWindow(Side side) {
    Made stage = std::make_unique<Stage>();
    putWindow(*stage, side)->minmaximize();
    return stage;
}

void take(Stage &all, Made part) {
    for (KTNODE *node : part->scene) all.scene.push_back(node);
    for (KTNODE *node : part->interface) all.interface.push_back(node);
    if (part->prepare) all.prepare = part->prepare;
    part->scene.clear();
    part->interface.clear();
}

Made whole(Side side) {
    Made stage = skybox(side);
    float y = 3.0f;
    for (auto *make : {bare, stone, tile, emitter, glass, skinned}) {
        Made part = make(side);
        part->scene[0]->move(0.0f, y, 0.0f);
        y -= 1.2f;
        take(*stage, std::move(part));
    }
    for (auto *make : {box, clearBox, label, textField, window}) take(*stage, make(side));
    return stage;
}

Made landscape(Side side) {
    Made stage = whole(side);
    stage->on = [] {
        KTSETTINGS::landscape = true;
        KTOPENGL::resize(0, 0, KTSETTINGS::windowX, KTSETTINGS::windowY);
    };
    stage->off = [] {
        KTSETTINGS::landscape = false;
        KTOPENGL::resize(0, 0, KTSETTINGS::windowX, KTSETTINGS::windowY);
    };
    return stage;
}

}  // namespace

Stage::~Stage() {
    for (KTNODE *node : scene) destroyTree(node);
    for (KTNODE *node : interface) destroyTree(node);
    destroyTree(skybox);
    if (!film) return;
    KTTEXTURE *target = film->getTexture();
    film->load(nullptr);
    delete film;
    delete target;
}

// name, maker, lit, alone, flat, film
const std::vector<Subject> kSubjects = {
    {"Nothing", nothing, false, false, true},
    {"Bare", bare},
    {"Unlit", stone},
    {"Lit", stone, true},
    {"LitBare", bare, true},
    {"Textured", tile},
    {"LitTextured", tile, true},
    {"TwoTextures", twoTextures},
    {"WithoutArrays", withoutArrays, true},
    {"Transparent", glass},
    {"LitTransparent", glass, true},
    {"BackFacing", backFacing},
    {"Skinned", skinned, true},
    {"Skybox", skybox, false, false, true},
    {"Wireframe", wireframe, false, true},
    {"NormalsShown", normals, true, true},
    {"Emitter", emitter, false, false, true},
    {"Film", film, false, false, true, true},
    {"Box", box, false, false, true},
    {"TransparentBox", clearBox, false, false, true},
    {"Label", label, false, false, true},
    {"TextField", textField, false, false, true},
    {"ScrollBar", scrollBar, false, false, true},
    {"Window", window, false, false, true},
    {"FoldedWindow", foldedWindow, false, false, true},
    {"WholeScene", whole, true},
    {"Landscape", landscape, true, true},
};

const Subject &subject(const std::string &name) {
    for (const Subject &each : kSubjects)
        if (name == each.name) return each;
    throw std::runtime_error("no subject " + name);
}

void writeStageFiles(const TempFolder &folder) {
    const auto write = [&folder](const char *name, formats::Node node) {
        folder.write(name, formats::writeKte(sceneWith(std::move(node)), formats::KteVersion::k16a));
    };
    write("bare.kte", boxNode("none of these"));
    write("stone.kte", boxNode("stone"));
    write("tile.kte", boxNode("tile"));
    write("plank.kte", boxNode("plank"));
    write("glass.kte", boxNode("glass"));
    write("board.kte", boardNode("stone"));
    write("skin.kte", plainNode("HumanoidRoot", {skinNode("skin", {"bone"}, 6, "stone"), boneNode("bone")}));
    folder.write("tile.tga",
                 formats::writeTga(checker(16, {255, 240, 90, 255}, {40, 60, 200, 128}), {false, 32, false}));
    folder.write("plank.tga", formats::writeTga(checker(32, {250, 120, 60, 255}, {90, 30, 10, 255}), {}));
    folder.write("glyphs.tga", formats::writeTga(glyphs(), {true, 32, false}));
    folder.write("damaged.kte", "KTE file v1.6a and nothing that follows");
    folder.write("damaged.tga", "no Targa file");
    KELTRA::setKTEPath(folder.prefix().c_str());
    KTTEXTURE::setPath(folder.prefix().c_str());
}

}  // namespace keltra::test
