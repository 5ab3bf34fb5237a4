// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/view/world.h"

#include <algorithm>
#include <cmath>

#include "games/lantern_walk/view/nodes.h"

namespace lantern_walk {
namespace {

constexpr int kSparks = 12;
constexpr float kSparklingTime = 1.1f, kGlide = 1.8f, kWaveEvery = 7.0f;
constexpr Place kTitlePlace = {0.9f, 9.4f};
constexpr float kTitleHeading = -14.0f;
constexpr int kTitleEvening = 0;
const char *const kFarNames[] = {"garden.sky", "garden.hills", "garden.nearHills", "garden.field"};

}  // namespace

bool World::load(const std::string &data) {
    stage = KELTRA::load("garden.kte");
    return stage && prepareStage() && lanterns.load(stage) && boy.load(stage) && moths.load(stage) &&
           loadEmitters(data);
}

bool World::prepareStage() {
    sky = stage->findByNameInHierarchy("sky");
    KTNODE *well = stage->findByNameInHierarchy("well");
    water = stage->findByNameInHierarchy("water");
    marker = findMesh(stage, "marker");
    moon = find<KTLIGHT>(stage, "moonlight", KT_LIGHT);
    if (!sky || !well || !water || !marker || !moon || !sky->unlink()) return false;
    showSky(true);
    moon->setExclusive(true);
    for (int i = 0; i < kFar; ++i) {
        far[i] = KTMATERIAL::findByName(kFarNames[i]);
        if (!far[i]) return false;
        farColor[i] = far[i]->getEmission();
    }
    lawn = KTMATERIAL::findByName("garden.lawn");
    if (!lawn) return false;
    lawnColor = lawn->getDiffuse();
    lawn->setDiffuse(0.0f, 0.0f, 0.0f, 1.0f);
    lawn->setAmbient(0.0f, 0.0f, 0.0f, 1.0f);
    well->setAuxId(kWellCode);
    for (unsigned i = 0; i < well->getNumberOfChildren(); ++i) well->getChild(i)->setAuxId(kWellCode);
    for (KTTEXTURE *texture = KTTEXTURE::getFirst(); texture; texture = texture->getNext())
        texture->setFilter(true, true, false);
    // Near and far as close to each other as the garden allows: pools of light lie close above the path.
    KTOPENGL::setNearPlane(2.0f);
    KTOPENGL::setFarPlane(150.0f);
    KTOPENGL::resize(0, 0, KTSETTINGS::getSDLWindowX(), KTSETTINGS::getSDLWindowY());
    return true;
}

bool World::loadEmitters(const std::string &data) {
    sparks = new KTEMITTER;  // the list of nodes owns both
    fountain = new KTEMITTER;
    if (!sparks->load((data + "sparks.xml").c_str()) || !fountain->load((data + "fountain.xml").c_str()))
        return false;
    sparks->setNumberOfParticles(0);
    return true;
}

void World::showSky(bool status) const { KELTRA::setSkybox(status ? sky : nullptr); }

void World::startWalk(const Walk &walk) {
    lanterns.arrange(walk.getEvening());
    lanterns.light(walk.snapshot().lit);
    moths.hideAll();
    boy.place(walk.getPlace(), walk.getHeading(), 0.0f);
    eye.follow(kGlide);
}

void World::startTitle(float glide) {
    lanterns.arrange(getEvening(kTitleEvening));
    lanterns.light(~0);
    moths.hideAll();
    boy.place(kTitlePlace, kTitleHeading, 0.0f);
    boy.setOil(1.0f);
    marker->setDisplayStatus(false);
    setDusk(0.25f);
    eye.showTitle(glide);
    untilWave = 1.5f;
}

void World::react(const Happening &happening) {
    switch (happening.event) {
        case Event::kLit:
            burst(lanterns.getPlace(happening.index));
            break;
        case Event::kMothAway:
            burst(moths.getPlace(happening.index));
            break;
        case Event::kWon:
            boy.wave();
            break;
        default:
            break;
    }
}

void World::burst(R3XVECTOR3D place) {
    sparks->setPosition(place);
    sparks->setNumberOfParticles(0);
    sparks->setNumberOfParticles(kSparks);
    sparkling = kSparklingTime;
}

void World::update(const Walk *walk, float seconds) {
    time += seconds;
    const float azimuth = eye.getAzimuth();
    if (walk) {
        boy.place(walk->getPlace(), walk->getHeading(), walk->getSpeed());
        boy.setOil(walk->getOil());
        const bool isLighting = walk->getDeed() == Deed::kLight;
        if (isLighting && !wasLighting) boy.wave();
        wasLighting = isLighting;
        for (int i = 0; i < walk->getEvening().lanterns; ++i) lanterns.setLit(i, walk->getLantern(i).isLit);
        moths.update(walk->getMoths(), time, azimuth);
        marker->setDisplayStatus(walk->hasGoal());
        marker->setPosition(walk->getGoal().x, 0.12f, walk->getGoal().z);
        marker->getMaterial()->setTransparency(0.6f + 0.3f * std::sin(8.0f * time));
        setDusk(1.0f - walk->getTimeLeft() / walk->getEvening().dusk);
    } else if ((untilWave -= seconds) <= 0.0f) {
        boy.wave();
        untilWave = kWaveEvery;
    }
    if (walk) lanterns.clearView(eye.getCamera()->getPosition(), boy.getPlace());
    lanterns.update(seconds, time, azimuth);
    boy.update(seconds, time, azimuth);
    water->setRotation(0.0f, 14.0f * time, 0.0f);
    if (sparkling > 0.0f && (sparkling -= seconds) <= 0.0f) sparks->setNumberOfParticles(0);
    const bool isGoing = walk && walk->getSpeed() > 0.0f;
    const float south = isGoing ? std::max(0.0f, std::cos(walk->getHeading() / 57.29578f)) : 0.0f;
    eye.update(boy.getPlace(), south, seconds, time);
}

// The light goes while the dusk passes: 0 at first, 1 at its end.
void World::setDusk(float passed) {
    const float day = 1.0f - passed;
    KTOPENGL::setGlobalAmbientLight(0.25f + 0.17f * day, 0.23f + 0.14f * day, 0.42f + 0.12f * day, 1.0f);
    const R3XVECTOR4D tint(0.45f + 0.55f * day, 0.42f + 0.58f * day, 0.66f + 0.34f * day, 1.0f);
    for (int i = 0; i < kFar; ++i) far[i]->setEmission(farColor[i] * tint);
    moon->setDiffuse(0.24f + 0.14f * day, 0.26f + 0.06f * day, 0.46f + 0.02f * day, 1.0f);
    // Each tile would be lit by the lamps that are nearest to it, and end with an edge: the lawn has one
    // colour, which each lantern that is lit makes warmer, and the pools lie on it.
    const R3XVECTOR4D night(0.46f, 0.44f, 0.62f, 1.0f), evening(0.76f, 0.70f, 0.78f, 1.0f);
    const R3XVECTOR4D warmth(0.030f, 0.024f, 0.010f, 0.0f);
    lawn->setEmission(lawnColor * (night.lerp(evening, day) + warmth * lanterns.getGlow()));
}

void World::draw() {
    view.take();
    moon->pass();
    lanterns.passLights();
    passStage();
    boy.pass();
    if (sparkling > 0.0f) sparks->pass();
    if (view.sees(fountain->getPosition(), 2.0f)) fountain->pass();
}

// Only what is in view: a small part of the garden.
void World::passStage() const {
    for (unsigned i = 0; i < stage->getNumberOfChildren(); ++i) {
        KTNODE *child = stage->getChild(i);
        if (child->isOfClass(KT_LIGHT)) continue;
        // The bounding sphere of a mesh is not that of what hangs below it.
        const float below = child->getNumberOfChildren() > 0 ? 5.0f : 0.0f;
        const float radius = child->isOfClass(KT_MESH) ? static_cast<KTMESH *>(child)->getRadius() : 0.0f;
        if (radius < 0.0f || view.sees(child->getPosition(), radius > below ? radius : below)) child->pass();
    }
}

bool World::toGround(R3XVECTOR2D point, Place *place) const {
    const KTRAY ray = view.getRay(point);
    if (ray.direction.y > -0.02f) return false;
    const float way = -ray.origin.y / ray.direction.y;
    place->x = ray.origin.x + way * ray.direction.x;
    place->z = ray.origin.z + way * ray.direction.z;
    return true;
}

}  // namespace lantern_walk
