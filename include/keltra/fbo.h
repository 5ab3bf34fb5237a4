// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FBO_H
#define KELTRA_FBO_H

#include <keltra/registered.h>

class KTFBO;
class KTSHADER;
class KTTEXTURE;
KT_LISTED_CLASS(KTFBO);

/** An off-screen target on a GL without frame buffer objects: it records a size and a texture and switches
 * the viewport, and only while `KTOPENGL::FBOFlag` is set, which the engine never does. All targets are on
 * one list, which owns those made with `new`. */
class KT_API KTFBO : public KTREGISTERED<KTFBO>, public KTLISTED<KTFBO> {
   public:
    /** Without a texture, 0 x 0 pixels. */
    KTFBO();
    KTFBO(const KTFBO &other);
    KTFBO &operator=(const KTFBO &other);
    ~KTFBO();

    /** True when targets can be used (`KTOPENGL::FBOFlag`). */
    bool isOk() const;
    /** Records the texture and takes its size; false for null or while targets are off. The texture is not
     * owned. */
    bool bindTexture(int attachment, KTTEXTURE *target);
    /** Records a size in pixels; false while targets are off. */
    bool bindRenderBuffer(int type, int width, int height);
    /** Makes this the current target and sets its viewport, once. Always true. */
    bool render(void *data);
    /** Goes back to the screen; the viewport is not restored. */
    static void unbind();
    /** True; no effect. */
    bool blur(KTFBO *target, KTSHADER *shader, int passes);
    bool computeLuminance(float *luminance);
    /** Destroys every target; false when there is none. */
    static bool cleanUp();
    /** Length of the list of all targets. */
    static unsigned int getNumberOfFbos();
    /** The current target; null for the screen. */
    static KTFBO *getCurrent() { return currentFbo; }

    /** Identifier, 1 to 65,535; 0 when all were taken. Then what was recorded; the GL name is always 0. */
    unsigned int getId() const { return id; }
    const char *getName() const { return name; }
    KTTEXTURE *getTexture() const { return texture; }
    int getSizeX() const { return sizeX; }
    int getSizeY() const { return sizeY; }
    unsigned int getGLId() const { return glId; }
    static KTFBO *getFirst() { return firstFbo; }
    KTFBO *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTFBO *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }

    unsigned int id;
    char name[256];
    KTFBO *previous, *next;
    KTTEXTURE *texture;
    int sizeX, sizeY;
    unsigned int glId;

    static KTFBO *firstFbo;
    static KTFBO *currentFbo;

   private:
    void release();
    static void forgetTexture(const keltra::Gone<KTTEXTURE> &gone);
    void copyFields(const KTFBO &other);

    static const keltra::OnGone<KTTEXTURE> onTextureGone;
    static KTLISTED<KTFBO> *allFbos;
};

#endif
