// SPDX-License-Identifier: Zlib
#include "tests/failures/program.h"

#include <keltra/keltra.h>

#include <cstdlib>
#include <memory>
#include <new>

#include "tests/scene/scene_parts.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/held_clock.h"
#include "tests/support/shapes.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/tga_writer.h"

namespace keltra::test {
namespace {

formats::Image stripes(unsigned size, unsigned step) {
    formats::Image image(size, size);
    for (unsigned y = 0; y < size; ++y)
        for (unsigned x = 0; x < size; ++x)
            image.at(x, y) = (x / step + y / step) % 2 ? formats::Rgba{250, 220, 60, 255}
                                                       : formats::Rgba{40, 60, 200, 200};
    return image;
}

formats::Scene scene() {
    formats::Scene made;
    for (const char *name : {"tile", "plank", "glass"}) {
        formats::Material material;
        material.name = name;
        material.ambient = material.diffuse = {0.8f, 0.7f, 0.6f, 1.0f};
        material.texture = std::string(name) + "_d.tga";
        material.shader = "shine";
        material.transparency = material.name == "glass" ? 0.5f : 1.0f;
        made.materials.push_back(material);
    }
    formats::Node sun = lightNode("sun");
    sun.position = {2.0f, 3.0f, 4.0f};
    formats::Node skin = skinNode("skin", {"bone"}, 12, "plank");
    formats::Node cube = boxNode("cube", "tile"), pane = boardNode("pane", "glass", 1.0f);
    cube.position = {-1.0f, 1.0f, 0.0f};
    pane.position = {0.5f, 0.5f, 2.0f};
    made.root = plainNode("HumanoidRoot", {sun, skin, boneNode("bone"), cube, pane});
    made.root.position = {0.0f, 0.0f, -10.0f};
    return made;
}

formats::Animation sway() {
    formats::Animation made;
    made.bones = {"bone", "cube"};
    for (int frame = 0; frame < 4; ++frame) {
        const formats::Keyframe keyframe = {{0.0f, 5.0f * static_cast<float>(frame), 8.0f}, {}};
        made.frames.push_back({keyframe, keyframe});
    }
    return made;
}

constexpr char kInterface[] =
    "<root><font><name value='small'/><texture value='glyphs.tga'/><kerning value='kerning.txt'/></font>"
    "<window><name value='window'/><position x='20' y='60'/><size width='120' height='90'/>"
    "<usefont ref='small'/><title value='a title'/><write value='a text that is longer than the window'/>"
    "<button><name value='go'/><position x='10' y='60'/><size width='40' height='20'/><usefont ref='small'/>"
    "<title value='go'/></button></window>"
    "<box><position x='150' y='20'/><size width='60' height='60'/><color r='1' g='1' b='1' a='1'/>"
    "<texture value='tile_d.tga'/><label><name value='label'/><usefont ref='small'/><write value='label'/>"
    "</label></box><text><position x='20' y='200'/><size width='90' height='20'/><usefont ref='small'/>"
    "</text><hslider><position x='20' y='240'/><size width='100' height='16'/></hslider>"
    "<vslider><position x='200' y='120'/><size width='16' height='90'/></vslider></root>";

constexpr char kEmitter[] =
    "<emitter><type value='0'/><texture value='puff.tga'/><nbOfParticles value='24'/><maxEnergy value='90'/>"
    "<maxVelocity value='9'/><maxParticleSize value='14'/><center x='1' y='-1' z='-8'/>"
    "<colorStart x='1' y='0.4' z='0.2'/><colorEnd x='1' y='1' z='0'/></emitter>";

}  // namespace

struct Program::Parts {
    KTNODE *scene = nullptr, *interface = nullptr;
    std::unique_ptr<KTEMITTER> emitter;
    std::unique_ptr<KTANIM> animation;
    std::unique_ptr<KTVIDEO> film;
    std::unique_ptr<KTTEXTURE> screen, drawn;
    std::unique_ptr<KTBOX> canvas;
    std::unique_ptr<KTCAMERA> camera;
};

Program::Program() { writeFiles(); }

void Program::writeFiles() {
    folder.write("scene.kte", formats::writeKte(scene(), formats::KteVersion::k16a));
    folder.write("sway.kta", formats::writeKta(sway()));
    for (const char *name : {"tile_d.tga", "tile_n.tga", "plank_d.tga"})
        folder.write(name, formats::writeTga(stripes(16, 4), {true, 32, false}));
    folder.write("glass_d.tga", formats::writeTga(stripes(32, 3), {false, 32, false}));
    folder.write("puff.tga", formats::writeTga(stripes(8, 2), {}));
    folder.write("glyphs.tga", formats::writeTga(stripes(256, 5), {true, 32, false}));
    folder.write("kerning.txt", "KELTRA_kerning_a = 5\nKELTRA_kerning_SPACE = 9\n");
    folder.write("interface.xml", kInterface);
    folder.write("emitter.xml", kEmitter);
    folder.write("settings.txt", "KELTRA_title = \"failures\"  # a comment\nKELTRA_windowX = 240\n");
#ifdef KELTRA_TEST_FILMS
    folder.write("film.m1v", readFile(KELTRA_TEST_FILMS "/small.m1v"));
#endif
}

bool Program::check(bool succeeded, const char *call) {
    if (!succeeded) result.failed.push_back(call);
    return succeeded;
}

template <class T>
T *Program::make() {
    T *made = new (std::nothrow) T;
    result.isShort = result.isShort || !made;
    return made;
}

bool Program::start(Parts &) {
    const std::string data = folder.prefix();
    check(vnfOpenLog(folder.path("log.html").c_str()), "vnfOpenLog");
    KTSETTINGS settings;
    check(settings.load(folder.path("settings.txt").c_str()), "KTSETTINGS::load");
    for (auto set : {&KTSETTINGS::setKTEPath, &KTSETTINGS::setKTAPath, &KTSETTINGS::setMPGPath,
                     &KTSETTINGS::setTexturePath, &KTSETTINGS::setFontPath})
        (settings.*set)(data.c_str());
    if (!check(KELTRA::init(&settings), "KELTRA::init")) return false;
    KELTRA::setKTEPath(data.c_str());
    KTVIDEO::setMPGPath(data.c_str());
    return true;
}

void Program::load(Parts &parts) {
    parts.scene = KELTRA::load("scene.kte");
    check(parts.scene, "KELTRA::load");
    parts.interface = KELTRA::load("interface.xml");
    check(parts.interface, "KELTRA::load");
    parts.emitter.reset(make<KTEMITTER>());
    if (parts.emitter) check(parts.emitter->load(folder.path("emitter.xml").c_str()), "KTEMITTER::load");
    parts.animation.reset(make<KTANIM>());
    if (parts.animation) check(parts.animation->load("sway.kta"), "KTANIM::load");
    parts.screen.reset(make<KTTEXTURE>());
    if (parts.screen) {
        parts.screen->setFilter(false, false, true);
        check(parts.screen->create(32, 32, 3), "KTTEXTURE::create");
    }
    parts.drawn.reset(make<KTTEXTURE>());
    if (parts.drawn) check(parts.drawn->load("glass_d.tga"), "KTTEXTURE::load");
    parts.canvas.reset(make<KTBOX>());
    if (parts.canvas) {
        parts.canvas->setPosition(150.0f, 240.0f);
        parts.canvas->setSizes(64, 64);
        parts.canvas->setTexture(parts.screen.get());
    }
#ifdef KELTRA_TEST_FILMS
    parts.film.reset(make<KTVIDEO>());
    if (!parts.film) return;
    parts.film->setTexture(parts.screen.get());
    check(parts.film->load("film.m1v"), "KTVIDEO::load");
    parts.film->playLoop();
#endif
}

// What changes after the first frame: the objects are copied and taken apart.
void Program::change(Parts &parts) {
    if (parts.scene) {
        if (KTMESH *skin = static_cast<KTMESH *>(parts.scene->findByNameInHierarchy("skin"))) {
            KTMESH copy(*skin);
            check(copy.isSkinned() == skin->isSkinned(), "KTMESH::KTMESH");
        }
        for (int i = 0; i < 3; ++i) {
            std::unique_ptr<KTNODE> node(make<KTNODE>());
            if (node) check(node->link(parts.scene), "KTNODE::link");
            if (node && node->getParent()) node->unlink();
        }
    }
    if (parts.animation) check(parts.animation->save(folder.path("saved.kta").c_str()), "KTANIM::save");
    if (parts.drawn) {
        KTTEXTURE copy(*parts.drawn);
        check(parts.drawn->unload(true), "KTTEXTURE::unload");
    }
}

void Program::draw(Parts &parts, unsigned int frame, bool isPictured) {
    HeldClock::passMilliseconds(20);
    if (parts.film && parts.film->getStatus() != KT_VIDEO_STOPPED)
        check(parts.film->update(20), "KTVIDEO::update");
    if (parts.animation && parts.animation->getNumberOfFrames() && parts.scene)
        check(parts.animation->apply(frame, parts.scene), "KTANIM::apply");
    KELTRA::clear(true, true, false);
    KELTRA::begin3D(parts.camera.get());
    if (parts.scene) check(parts.scene->pass(), "KTNODE::pass");
    if (parts.emitter) check(parts.emitter->pass(), "KTNODE::pass");
    KELTRA::end3D();
    KELTRA::begin2D();
    if (parts.interface) check(parts.interface->pass(), "KTNODE::pass");
    if (parts.canvas) check(parts.canvas->pass(), "KTNODE::pass");
    KELTRA::end2D();
    if (isPictured) result.picture = captureFrame();
    check(KELTRA::swap(), "KELTRA::swap");
}

// Everything but the engine.
void Program::release(Parts &parts) {
    if (parts.film) parts.film->load(nullptr);
    parts = Parts();
    for (auto cleanUp : {KTFONT::cleanUp, KTNODE::cleanUp, KTMATERIAL::cleanUp, KTTEXTURE::cleanUp})
        cleanUp();
}

ProgramRun Program::runFrames(long frames, long period, long pictured,
                              const std::function<void(long)> &released) {
    const HeldClock clock;
    result = ProgramRun();
    KTFAULTS::clear();
    Image first;
    Parts parts;
    if (!start(parts)) return result;
    for (long frame = 0; frame < frames; ++frame) {
        const long place = frame % period;
        if (place == 0) {
            std::srand(1);
            load(parts);
        }
        const bool isPictured = place == period - 1 && frame / period % pictured == 0;
        GlRecorder::setDrawing(isPictured, false);
        draw(parts, static_cast<unsigned int>(place % 4), isPictured);
        check(glGetError() == GL_NO_ERROR, "glGetError");
        if (isPictured && first.pixels.empty()) first = result.picture;
        check(result.picture.pixels == first.pixels, "the picture of a later period");
        if (place == 1) change(parts);
        if (place < period - 1) continue;
        release(parts);
        released(frame + 1);
    }
    GlRecorder::setDrawing(true);
    release(parts);
    check(KELTRA::free(), "KELTRA::free");
    vnfCloseLog();
    result.faults = KTFAULTS::getNumberOfFaults();
    return result;
}

ProgramRun Program::run() {
    const HeldClock clock;
    std::srand(1);
    result = ProgramRun();
    KTFAULTS::clear();
    {
        Parts parts;
        if (start(parts)) {
            load(parts);
            for (unsigned int frame = 0; frame < 4; ++frame) {
                draw(parts, frame, true);
                if (frame == 1) change(parts);
            }
            if (parts.film) parts.film->load(nullptr);
            parts = Parts();
            check(KELTRA::free(), "KELTRA::free");
        }
    }
    vnfCloseLog();
    result.faults = KTFAULTS::getNumberOfFaults();
    return result;
}

}  // namespace keltra::test
