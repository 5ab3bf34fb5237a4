// SPDX-License-Identifier: Zlib
#ifndef KELTRA_ENGINE_H
#define KELTRA_ENGINE_H

#include <keltra/engine_state.h>

class KTCAMERA;
class KTNODE;
class KTSETTINGS;
class TiXmlNode;

/** The engine: start-up and shut-down, the frame, loading, picking and the effect switches; `KTENGINESTATE`
 * gives it the counters that all classes share. All members are static. A frame is: `clear`,
 * `begin3D(camera)`, pass of the nodes to draw, `end3D`, `begin2D`, pass of the interface, `end2D`,
 * `swap`. */
class KT_API KELTRA : public KTENGINESTATE {
   public:
    /** Opens the window and starts every subsystem; null stands for default settings. False when active or
     * when a step fails; everything that was started is shut down again then. */
    static bool init(KTSETTINGS *settings);
    /** Destroys all resources and shuts everything down; false when not active. */
    static bool free();
    /** True between a successful `init` and `free`. */
    static bool isActive() { return active; }

    /** Starts a frame: chooses the render target and clears the chosen buffers. Always true. */
    static bool clear(bool color, bool depth, bool stencil);
    /** Starts the 3D pass, seen from `camera`; null stands for a camera at the origin. Always true. */
    static bool begin3D(KTCAMERA *camera);
    /** Sorts and draws what was passed. The argument is not used. Always true. */
    static bool end3D(bool = false);
    /** Starts the 2D pass: one unit is one pixel, the origin is top left, y grows downward. Always true. */
    static bool begin2D();
    /** Sorts and draws what was passed since `begin2D`, lights and meshes left out. Always true. */
    static bool end2D();
    /** Ends the frame and shows it; true when the buffers were swapped. */
    static bool swap();

    /** Code of the mesh drawn at a point of the window (pixels from the left, and from the top counted from
     * 1): its `auxId`, or its `id` when that is 0, as far as the screen's colours hold it (16 or 24 bits); 0
     * for the background. To be called between `end3D` and `begin2D` of a frame; the pixel at the point is
     * changed until the next `clear`. */
    static unsigned int select(int x, int y);

    /** Advances the frame timer unless this frame has already done so. */
    static void updateTimer();

    /** Prefix of scene file names, up to 255 characters; null empties it. */
    static void setKTEPath(const char *path);
    static char *getKTEPath() { return ktePath; }
    /** Loads the scene file KTE path + `fileName` and returns the root of the new tree, which the list of
     * nodes owns. Null for a missing or damaged file, which leaves nothing behind. A name with ".xml" or
     * ".XML" in it is handed to `loadXML`. */
    static KTNODE *load(const char *fileName);
    /** Loads the interface description `fileName`, a path of its own, and returns a new node of that name
     * with the widgets below it, owned by the list of nodes. To be drawn it is passed between `begin2D` and
     * `end2D`. Null for a missing, malformed or unreasonably large or deep file, and for one without "root";
     * nothing is made then. */
    static KTNODE *loadXML(const char *fileName);
    /** Makes what an element of an interface description asks for, and all that is nested in it, below
     * `parent`. Always 0; does nothing for null and for nodes that are no elements. */
    static int recursiveLoadXML(KTNODE *parent, const TiXmlNode *node);
    /** Reads the node record at `buffer + *cursor`, of version 1.6a, and its subtree. It trusts that whole
     * records stand there. Null on bad data or when out of memory. */
    static KTNODE *recursiveLoad(const char *buffer, long *cursor, KTNODE *parent);
    /** Binds the skins of all meshes below `node` to the bones below `root`. Always true. */
    static bool recursiveInitBones(KTNODE *root, KTNODE *node);

    /** Node whose first child is drawn around the eye, before everything else; null for none. Not owned;
     * forgotten when the node is destroyed. */
    static void setSkybox(KTNODE *node);
    static KTNODE *getSkybox() { return skybox; }

    /** Wireframe: meshes are drawn as the edges of their triangles. Off at first; takes effect at the next
     * `end3D`. */
    static void wireframeOn() { wireframe = true; }
    static void wireframeOff() { wireframe = false; }
    /** Shadows: can be switched on only where shaders support them, which is nowhere at present. Off at
     * first. */
    static void shadowingOn();
    static void shadowingOff() { shadowing = false; }
    /** Sets a flag that nothing reads or clears. */
    static void skipShadowsGeneration() { skipShadows = true; }
    /** Bloom: kept, and drives no pass. Off at first. */
    static void bloomingOn() { blooming = true; }
    static void bloomingOff() { blooming = false; }
    static bool isBlooming() { return blooming; }
    /** Kept only; 1 at first. */
    static void setBloomingIntensity(float value) { bloomingIntensity = value; }
    static float getBloomingIntensity() { return bloomingIntensity; }
    /** High dynamic range: kept, and drives no pass. Off at first. */
    static void HDROn() { HDR = true; }
    static void HDROff() { HDR = false; }
    static bool isHDR() { return HDR; }
    /** Kept only; 1 at first. */
    static void setHDRExposure(float value) { HDRExposure = value; }
    static float getHDRExposure() { return HDRExposure; }
    /** Depth of field: a pass of its own where shaders support it, which is nowhere at present. Off at
     * first. */
    static void DOFOn() { DOF = true; }
    static void DOFOff() { DOF = false; }
    /** Distance of the sharp picture, and its range; kept only; 1 and 2 at first. */
    static void setDOFFocus(float distance) { DOFFocus = distance; }
    static float getDOFFocus() { return DOFFocus; }
    static void setDOFRange(float distance) { DOFRange = distance; }
    static float getDOFRange() { return DOFRange; }
    /** Does nothing; video textures are advanced by their own update. */
    static void updateVideo() {}

    static bool active;
    static bool blooming, HDR, DOF, skipShadows;
    static bool renderingOnFbo;
    static float bloomingIntensity;
    static float HDRExposure, HDRCurrentLuminance;
    static float DOFFocus, DOFRange;
    static KTNODE *skybox;
    static char ktePath[256];

   private:
    struct STARTUP;
    static bool timerUpdated;
};

#endif
