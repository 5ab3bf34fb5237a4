// SPDX-License-Identifier: Zlib
#ifndef KELTRA_ENGINE_STATE_H
#define KELTRA_ENGINE_STATE_H

#include <keltra/export.h>

/** What all classes of the engine share: the frame's counter and timer, the account of video memory, and the
 * switches that nodes and materials are drawn by. `KELTRA` derives from it, so that applications write
 * `KELTRA::timeStamp`. */
class KT_API KTENGINESTATE {
   public:
    /** Frames per second, and seconds, of the last frame; -1 while the engine is not active. */
    static float getFPS();
    static float getFPSfactor();
    /** Frame counter: 65536 at first, one more at each `KELTRA::begin3D`. */
    static long int getTimeStamp() { return timeStamp; }

    /** Video memory in bytes: budget (8 MiB), used, and their difference, which wraps around when the budget
     * is exceeded. `pushVideoMemory` and `popVideoMemory` are bookkeeping without a limit and return the
     * bytes used. */
    static unsigned int getVideoMemory() { return videoMemoryTotal; }
    static unsigned int getUsedVideoMemory() { return videoMemoryUsed; }
    static unsigned int getFreeVideoMemory() { return videoMemoryTotal - videoMemoryUsed; }
    static unsigned int pushVideoMemory(unsigned int bytes) { return videoMemoryUsed += bytes; }
    static unsigned int popVideoMemory(unsigned int bytes) { return videoMemoryUsed -= bytes; }

    /** Whether the edges of triangles are drawn instead of their faces. */
    static bool isWireframed() { return wireframe; }
    /** Whether shadows are on. */
    static bool isShadowed() { return shadowing; }

    static int timer;  ///< index of the frame timer; -1 while the engine is not active
    static long int timeStamp;
    static unsigned int videoMemoryTotal, videoMemoryUsed;
    static bool wireframe, shadowing;
};

#endif
