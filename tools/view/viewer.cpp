// SPDX-License-Identifier: Zlib
#include "tools/view/viewer.h"

#include "tools/view/failure.h"

#include <GLES/gl.h>

#include <chrono>
#include <cmath>
#include <cstdio>

namespace keltra::view {
namespace {

constexpr double kPollPeriod = 0.5;       // seconds
constexpr float kDegreesAPixel = 0.6f;    // of a drag
constexpr float kDegreesASecond = 90.0f;  // of the arrow keys
constexpr float kZoomAPixel = 1.01f, kZoomAStep = 1.12f, kZoomASecond = 2.5f;
constexpr float kPortraitPitch = 14.0f;
constexpr unsigned kPoses = 4;  // poses of the first clip that are measured

constexpr struct {
    Action turning;
    bool Switches::*turned;
} kTurned[] = {
    {Action::kWire, &Switches::wire},       {Action::kBoxes, &Switches::boxes},
    {Action::kNormals, &Switches::normals}, {Action::kBones, &Switches::bones},
    {Action::kLights, &Switches::lights},   {Action::kCulling, &Switches::culling},
};

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::string nameOf(const std::string &path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A message without its path, which the panel shows as title.
std::string reasonIn(const std::string &message) {
    const std::size_t colon = message.find(": ");
    return colon == std::string::npos ? message : message.substr(colon + 2);
}

LinkFolder &linkFont(LinkFolder &links, const std::string &data) {
    // If the font is evicted, the engine reads it again from here.
    for (const char *name : {"font.tga", "font.txt"}) {
        if (!vnfFileExists((data + name).c_str())) throw failure(data + name, "the panel's font is missing");
        links.link(data + name, name);
    }
    return links;
}

}  // namespace

RunningEngine::RunningEngine(const LinkFolder &links) {
    KTSETTINGS wanted;
    wanted.setTitle("keltra-view");
    for (void (KTSETTINGS::*set)(const char *) : {&KTSETTINGS::setKTEPath, &KTSETTINGS::setKTAPath,
                                                  &KTSETTINGS::setTexturePath, &KTSETTINGS::setFontPath}) {
        (wanted.*set)(links.prefix().c_str());
    }
    KTOPENGL::setAngleOfView(Orbit::kAngleOfView);
    if (!KELTRA::init(&wanted)) throw Failure(engineReason());
}

RunningEngine::~RunningEngine() { KELTRA::free(); }

// The files are opened before the engine starts, so that their errors are reported even without a display.
Viewer::Viewer(const ViewerSettings &settings)
    : settings(settings),
      source(openSource(settings.file, settings.clips, links, 0)),
      engine(linkFont(links, settings.data)),
      panel(settings.panel),
      camera(new KTCAMERA),
      animation(new KTANIM),
      orbit(KTSETTINGS::getSDLWindowX(), KTSETTINGS::getSDLWindowY()) {
    watch.emplace(stampOf(settings.file));
    model = std::make_unique<Model>(source, links, settings.file);
    requireClips();
    panel.setTitle(nameOf(settings.file));
    load();
    orbit.setFreeRows(panel.freeRows());
    orbit.reset();
}

Viewer::~Viewer() {
    KELTRA::wireframeOff();
    KTMESH::hideNormals();
}

void Viewer::requireClips() const {
    for (const ClipFile &clip : source.clips) {
        if (animation->load(clip.name.c_str())) continue;
        const Failure fault = failure(clip.path, "is not an animation, or is damaged");
        if (clip.wanted) throw fault;
        std::fprintf(stderr, "keltra-view: %s\n", fault.what());
    }
}

// Prepares the view for the model that was just loaded.
void Viewer::load() {
    ++loaded;
    camera->transformMode = 1;
    lamps.begin(model->hasLights());
    chooseClip(chosen);
    measure();
}

// Frames the model with poses of its clip, which may be far from the pose that it was loaded in.
void Viewer::measure() {
    std::vector<R3XVECTOR3D> points;
    const unsigned frames = clock.frames(), shown = clock.frame();
    for (unsigned i = 0; i < (frames > 0 ? kPoses : 1); ++i) {
        clock.seek(frames * i / kPoses);
        pose();
        model->measure(points);
    }
    clock.seek(shown);
    orbit.frame(extentOf(points), model->skyRadius());
    if (orbit.scale() == 1.0f)
        glDisable(GL_NORMALIZE);
    else
        glEnable(GL_NORMALIZE);
}

void Viewer::chooseClip(std::size_t index) {
    if (source.clips.empty()) {
        clock.start(0);
        return;
    }
    chosen = index % source.clips.size();
    const ClipFile &clip = source.clips[chosen];
    if (animation->load(clip.name.c_str())) {
        animation->setTranslating(true);
        clock.start(animation->getNumberOfFrames());
    } else {
        notice = clip.title + " cannot be loaded";
        clock.start(0);
    }
}

void Viewer::pose() const {
    if (clock.frames() > 0) animation->apply(clock.frame(), model->scene());
}

void Viewer::reload() {
    ++generation;
    const std::string playing = source.clips.empty() ? "" : source.clips[chosen].title;
    try {
        Source fresh = openSource(settings.file, settings.clips, links, generation);
        auto loaded = std::make_unique<Model>(fresh, links, settings.file);
        source = std::move(fresh);
        model = std::move(loaded);
    } catch (const Failure &fault) {
        std::fprintf(stderr, "keltra-view: %s\n", fault.what());
        notice = reasonIn(fault.what());
        return;
    }
    notice.clear();
    chosen = 0;
    for (std::size_t i = 0; i < source.clips.size(); ++i)
        if (source.clips[i].title == playing) chosen = i;
    load();
}

void Viewer::act(Action action) {
    const std::size_t clips = source.clips.size();
    switch (action) {
        case Action::kPlay:
            clock.toggle();
            break;
        case Action::kNextClip:
            if (clips > 0) chooseClip(chosen + 1);
            break;
        case Action::kPreviousClip:
            if (clips > 0) chooseClip(chosen + clips - 1);
            break;
        case Action::kStepForward:
            clock.step(1);
            break;
        case Action::kStepBack:
            clock.step(-1);
            break;
        case Action::kFold:
            panel.fold();
            break;
        case Action::kOverlay:
            panel.setOverlay(!panel.isOverlayShown());
            break;
        case Action::kResetView:
            orbit.reset();
            break;
        default:
            for (const auto &[turning, turned] : kTurned)
                if (turning == action) switches.*turned = !(switches.*turned);
    }
}

// False if the program is to end.
bool Viewer::handleInput(double seconds) {
    input.read();
    for (Action action : input.actions) {
        if (action == Action::kQuit) return false;
        act(action);
    }
    const float time = static_cast<float>(seconds);
    orbit.turn(input.right * kDegreesASecond * time, input.down * kDegreesASecond * time);
    if (input.pressed && wasPressed && !panelHolds)
        orbit.turn(static_cast<float>(input.dx) * kDegreesAPixel,
                   static_cast<float>(input.dy) * kDegreesAPixel);
    const float drag = input.zooming ? static_cast<float>(input.dy) : 0.0f;
    orbit.zoom(std::pow(kZoomASecond, input.nearer * time) * std::pow(kZoomAPixel, drag) *
               std::pow(kZoomAStep, static_cast<float>(input.wheel)));
    return true;
}

// The pen belongs to the panel, or to the model, from its press to its release.
void Viewer::handlePanel(const PanelEvents &events) {
    if (!input.pressed || !wasPressed) panelHolds = events.held;
    wasPressed = input.pressed;
    act(events.action);
    if (events.scrubbed) {
        clock.step(0);
        clock.seek(events.frame);
    }
    if (events.zoomed) orbit.setZoomShare(events.zoomShare);
}

void Viewer::draw3D() {
    switches.wire ? KELTRA::wireframeOn() : KELTRA::wireframeOff();
    switches.normals ? KTMESH::showNormals() : KTMESH::hideNormals();
    switches.culling ? KTOPENGL::cullingOn() : KTOPENGL::cullingOff();
    camera->setMatrix(orbit.view());
    const float nearPlane = orbit.nearPlane(), farPlane = orbit.farPlane();
    if (nearPlane != KTOPENGL::getNearPlane() || farPlane != KTOPENGL::getFarPlane()) {
        KTOPENGL::setNearPlane(nearPlane);
        KTOPENGL::setFarPlane(farPlane);
        KTOPENGL::resize(0, 0, KTSETTINGS::getSDLWindowX(), KTSETTINGS::getSDLWindowY());
    }
    pose();
    KELTRA::clear(true, true, false);
    backdrop.draw();
    KELTRA::begin3D(camera);
    lamps.pass();
    model->scene()->pass();
    KELTRA::end3D();
}

void Viewer::drawMarks() {
    marks.clear();
    bones.clear();
    if (switches.boxes) addBoxes(marks);
    const R3XVECTOR4D middle = orbit.view().transform(orbit.centre());
    if (switches.lights && model->hasLights())
        addLights(marks, R3XVECTOR3D(middle.x, middle.y, middle.z), orbit.radius());
    if (switches.bones) addSkeletons(bones);
    marks.draw(false);
    bones.draw(true);
}

void Viewer::countFigures() {
    figures.nodes = static_cast<unsigned>(model->allNodes().size());
    figures.drawn = 0;
    figures.triangles = 0;
    for (unsigned i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i) {
        const KTELEMENT &element = KTELEMENT::element[i];
        if (!element.getNode() || element.getNode()->getType() != KT_MESH) continue;
        const KTMESH &mesh = *static_cast<const KTMESH *>(element.getNode());
        if (mesh.isSkinned() && element.getParam1() >= KTMESH::maxSkins) continue;
        ++figures.drawn;
        figures.triangles += mesh.numberOfFaces;
    }
    figures.milliseconds = meter.milliseconds();
    figures.framesPerSecond = meter.framesPerSecond();
    figures.textureBytes = KELTRA::getUsedVideoMemory();
    figures.textureBudget = KELTRA::getVideoMemory();
}

PanelState Viewer::panelState() const {
    PanelState state;
    if (!source.clips.empty()) state.clip = source.clips[chosen].title;
    state.frame = clock.frame();
    state.frames = clock.frames();
    state.playing = clock.isPlaying();
    state.switches = switches;
    state.figures = figures;
    state.notice = notice;
    state.zoomShare = orbit.zoomShare();
    return state;
}

void Viewer::finishFrame(const std::function<void()> &beforeSwap) {
    if (beforeSwap) beforeSwap();
    const GLenum error = glGetError();
    if (!KELTRA::swap()) throw failure(settings.file, "a frame could not be shown");
    if (error != GL_NO_ERROR) throw failure(settings.file, "the GL reports error " + std::to_string(error));
    const unsigned long calls = settings.glCalls ? settings.glCalls() : 0;
    figures.calls = calls - callsBefore;
    callsBefore = calls;
}

bool Viewer::frame(double seconds, const std::function<void()> &beforeSwap) {
    const double start = now();
    if (!handleInput(seconds)) return false;
    meter.add(settings.repeatable ? seconds : work, seconds);
    sincePoll += seconds;
    if (sincePoll >= kPollPeriod) {
        sincePoll = 0.0;
        if (watch->poll(stampOf(settings.file))) reload();
    }
    clock.advance(seconds);
    orbit.setFreeRows(panel.freeRows());
    draw3D();
    countFigures();
    drawMarks();
    KELTRA::begin2D();
    panel.draw(panelState());
    KELTRA::end2D();
    handlePanel(panel.handle(input.x, input.y, input.pressed));
    finishFrame(beforeSwap);
    work = now() - start;
    return true;
}

void Viewer::portrait(float yaw, const std::function<void()> &beforeSwap) {
    orbit.setFreeRows({0, KTSETTINGS::getSDLWindowY()});
    orbit.reset();
    orbit.look(yaw, kPortraitPitch);
    clock.seek(clock.frames() / 2);
    KELTRA::updateTimer();
    draw3D();
    finishFrame(beforeSwap);
}

}  // namespace keltra::view
