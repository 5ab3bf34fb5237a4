// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_WORLD_H
#define KELTRA_LANTERN_WALK_WORLD_H

// The garden as it is seen: it puts what the rules know into nodes, lights, emitters and the camera, and
// draws what is in view.

#include <keltra/keltra.h>
#include <keltra/kit/view.h>

#include <string>

#include "games/lantern_walk/rules/walk.h"
#include "games/lantern_walk/view/boy.h"
#include "games/lantern_walk/view/camera.h"
#include "games/lantern_walk/view/insects.h"
#include "games/lantern_walk/view/lanterns.h"

namespace lantern_walk {

class World {
   public:
    /// Loads all that is shown; `data` is the folder of the emitters. False, with a fault, when a file is
    /// missing.
    bool load(const std::string &data);

    /// Off while the film is shown.
    void showSky(bool status) const;
    /// Shows an evening from now on, seen from behind the boy.
    void startWalk(const Walk &walk);
    /// Shows the garden before the walk, or after the last one: the boy stands still, all lanterns are lit.
    void startTitle(float glide);
    /// What an event looks like.
    void react(const Happening &happening);
    /// With a walk: as it stands now. Null: the title.
    void update(const Walk *walk, float seconds);
    /// Between `begin3D` and `end3D`.
    void draw();
    KTCAMERA *getCamera() { return eye.getCamera(); }

    /// What the last `draw` was seen with.
    const KTVIEW &getView() const { return view; }
    /// Where a point of the screen lies on the ground. False beyond the horizon.
    bool toGround(R3XVECTOR2D point, Place *place) const;
    R3XVECTOR3D getLanternPlace(int lantern) const { return lanterns.getPlace(lantern); }
    R3XVECTOR3D getMothPlace(int moth) const { return moths.getPlace(moth); }

   private:
    bool loadEmitters(const std::string &data);
    bool prepareStage();
    void burst(R3XVECTOR3D place);
    void passStage() const;
    void setDusk(float passed);

    static constexpr int kFar = 4;
    KTMATERIAL *far[kFar] = {};  // sky, hills, field: they show their own light
    R3XVECTOR4D farColor[kFar];

    KTNODE *stage = nullptr, *sky = nullptr, *water = nullptr;
    KTMESH *marker = nullptr;
    KTLIGHT *moon = nullptr;
    KTMATERIAL *lawn = nullptr;
    R3XVECTOR4D lawnColor;
    KTEMITTER *sparks = nullptr, *fountain = nullptr;
    LanternView lanterns;
    BoyView boy;
    MothView moths;
    Eye eye;
    KTVIEW view;
    float time = 0.0f, sparkling = 0.0f, untilWave = 2.0f;
    bool wasLighting = false;
};

}  // namespace lantern_walk

#endif
