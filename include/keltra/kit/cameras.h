// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_CAMERAS_H
#define KELTRA_KIT_CAMERAS_H

/** @file
 *
 * Ways to move a camera: around a point, behind a node, and along a rail. Each sets position, target and
 * target node of a `KTCAMERA` of the application once a frame. */

#include <keltra/kit/export.h>
#include <keltra/vector.h>

class KTCAMERA;
class KTNODE;

/** Circles a point. Angles are in degrees: the azimuth 0 looks along -z, the elevation 90 straight down. */
class KTKIT_API KTORBIT {
   public:
    /** 10 units from the origin, at the elevation 20. */
    KTORBIT();
    void setCenter(const R3XVECTOR3D &place) { center = place; }
    R3XVECTOR3D getCenter() const { return center; }
    void setAngles(float azimuthDegrees, float elevationDegrees);
    float getAzimuth() const { return azimuth; }
    float getElevation() const { return elevation; }
    void setDistance(float units);
    float getDistance() const { return distance; }
    /** -85 to 85 degrees, and 0.1 units or more, at first from 2 to 85 and from 1 to 1000. */
    void setElevationLimits(float lowest, float highest);
    void setDistanceLimits(float nearest, float farthest);
    /** Turns with a drag of the pen over so many pixels: half a degree for each, the world under the pen. */
    void drag(const R3XVECTOR2D &pixels) {
        setAngles(azimuth - 0.5f * pixels.x, elevation + 0.5f * pixels.y);
    }
    /** Null does nothing. */
    void update(KTCAMERA *camera) const;

   private:
    R3XVECTOR3D center;
    float azimuth, elevation, distance, lowest, highest, nearest, farthest;
};

/** Stays behind a node and catches up with it smoothly. The node has to outlive it, or be replaced. */
class KTKIT_API KTFOLLOW {
   public:
    /** 4 units behind (along the node's +z) and 2.5 above, looking at a point 1.2 above the node. */
    KTFOLLOW();
    void setNode(KTNODE *followed);
    /** In the node's own directions, turned about y only. */
    void setOffset(const R3XVECTOR3D &behind) { offset = behind; }
    void setLookHeight(float units) { lookHeight = units; }
    /** How fast it catches up: about so much of the way a second, times; 4 at first; 0 and less: at once. */
    void setSpeed(float perSecond) { speed = perSecond; }
    /** Goes to its place at once with the next update. */
    void reset() { isPlaced = false; }
    /** Null, and no node, do nothing. */
    void update(KTCAMERA *camera, float seconds);

   private:
    KTNODE *node;
    R3XVECTOR3D offset, eye, look;
    float lookHeight, speed;
    bool isPlaced;
};

/** Flies through points along a smooth curve, with a point to look at for each. */
class KTKIT_API KTRAIL {
   public:
    static const unsigned int maxPoints = 32;

    KTRAIL();
    /** `seconds`, above 0, to the next point. False, with a fault, for another time and a 33rd point. */
    bool addPoint(const R3XVECTOR3D &place, const R3XVECTOR3D &look, float seconds);
    /** The last point leads to the first. */
    void setLoop(bool status) { loop = status; }
    void clear();
    /** Back to the first point. */
    void start() { time = 0.0f, point = 0; }
    /** Without a loop: it stands at the last point. */
    bool hasEnded() const;
    /** Null, and no points, do nothing. */
    void update(KTCAMERA *camera, float seconds);

   private:
    struct POINT {
        R3XVECTOR3D place, look;
        float seconds;
    };
    const POINT &pointAt(int index) const;

    POINT points[maxPoints];
    unsigned int count, point;
    float time;
    bool loop;
};

#endif
