// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EMITTER_H
#define KELTRA_EMITTER_H

#include <keltra/node.h>

class KTTEXTURE;

/** One record of the pool. */
class KT_API KTPARTICLE {
   public:
    /** Held by no emitter. */
    KTPARTICLE();

    R3XVECTOR3D position;
    R3XVECTOR3D velocity;
    R3XVECTOR4D color;
    float spinSpeed;  ///< degrees a second
    float spinAngle;
    float size;
    float initialEnergy, energy;  ///< at birth, and left
    bool used;                    ///< an emitter holds it
};

/** A particle emitter: a node that spawns, moves and draws textured squares which face the eye. All emitters
 * share one pool of particles; an emitter claims its share when it is rendered first and gives it back when
 * it is destroyed. It is described by an XML file (`load`) or by the setters, which act on particles spawned
 * later. Times are in seconds, angles in degrees.
 *
 * Deliberate, since emitter files and their textures rely on it: the particles are drawn as a plain list of
 * triangles, though there are four corners each. Of every three particles, the first and the third show one
 * half of their square, and two more triangles span the gaps between the three. An image that keeps to the
 * right quarter of its texture is seen whole on two of three particles, without those. */
class KT_API KTEMITTER : public KTNODE, public KTLISTED<KTEMITTER> {
   public:
    static const unsigned int poolSize = 1024;
    static const unsigned int maxParticles = 512;  ///< of an emitter

    /** The colours are random, drawn with `rand`. */
    KTEMITTER();
    /** A copy holds no particles until it is rendered, and does not own the texture. */
    KTEMITTER(const KTEMITTER &other);
    KTEMITTER &operator=(const KTEMITTER &other);
    ~KTEMITTER() override;

    /** Start and end of the engine: the pool and the arrays for drawing, all or none. False when they exist,
     * are missing, or there is no memory for them. */
    static bool init();
    static bool free();

    /** Claims particles of the pool until `numberOfParticles` are held (512 at most), or as many as are free,
     * and spawns all of them anew. False before `KELTRA::init`. */
    bool initialize();
    /** Reads an emitter file, a path of its own. The particles are given back and the texture is replaced by
     * a new one in any case; keys without an element keep their values. False for null and a file that cannot
     * be read or is no XML. */
    bool load(const char *filename);
    /** Moves the particles by the time of the frame and draws them. `data` is the node's `KTELEMENT`; false
     * when it is null, and before `KELTRA::init`. Leaves GL's face culling off until the next
     * `KELTRA::end2D`. */
    bool render(void *data) override;

    /** 0 point, 1 rectangle, 2 disc; particles of other types stay where their records last were. */
    void setEmitterType(int newType) { emitterType = newType; }
    int getEmitterType() const { return emitterType; }
    /** Particles held in excess are given back at once; missing ones are claimed, and all spawned anew, by
     * the next render. More than 512 are cut to 512 then, less than 0 to 0. */
    void setNumberOfParticles(int number);
    int getNumberOfParticles() const { return numberOfParticles; }
    /** Each maximum is the first value that is not reached; 0 makes the value 0. The energy in hundredths: a
     * particle loses 0.5 a second, and its alpha is its energy, so more than 101 wraps around. */
    void setMaximumEnergy(unsigned int value) { maximumEnergy = value; }
    unsigned int getMaximumEnergy() const { return maximumEnergy; }
    /** Tenths of a unit a second for points; of the other types the factor of the up vector. */
    void setMaximumVelocity(unsigned int value) { maxVelocity = value; }
    unsigned int getMaximumVelocity() const { return maxVelocity; }
    /** Tenths. A particle is drawn, and its place scaled, by the difference of its size and its energy. */
    void setMaximumParticuleSize(unsigned int value) { maximumParticuleSize = value; }
    unsigned int getMaximumParticuleSize() const { return maximumParticuleSize; }
    /** Whole degrees a second; 1 lets nothing turn. */
    void setMaximumSpin(unsigned int value) { maximumSpin = value; }
    unsigned int getMaximumSpin() const { return maximumSpin; }
    /** The angle at birth. */
    void setSpinning(float angle) { spinning = angle; }
    float getSpinning() const { return spinning; }
    /** Where particles are born; of the disc, the negative of it in x and z. */
    void setCenter(R3XVECTOR3D value) { center = value; }
    void setCenter(float x, float y, float z) { center.set(x, y, z); }
    R3XVECTOR3D getCenter() const { return center; }
    /** Acceleration in units a second, a second. */
    void setGravity(R3XVECTOR3D value) { gravity = value; }
    void setGravity(float x, float y, float z) { gravity.set(x, y, z); }
    R3XVECTOR3D getGravity() const { return gravity; }
    /** Stored only. */
    void setMaximumAngle(float value) { maximumAngle = value; }
    float getMaximumAngle() const { return maximumAngle; }
    /** Half extents of the rectangle along x and along z. */
    void setSizeX(float value) { sizeX = value; }
    float getSizeX() const { return sizeX; }
    void setSizeY(float value) { sizeY = value; }
    float getSizeY() const { return sizeY; }
    /** Of the disc. */
    void setRadius(float value) { radius = value; }
    float getRadius() const { return radius; }
    /** Direction in which rectangles and discs emit. */
    void setUpVector(R3XVECTOR3D value) { upVector = value; }
    void setUpVector(float x, float y, float z) { upVector.set(x, y, z); }
    R3XVECTOR3D getUpVector() const { return upVector; }
    /** RGB at birth and at death. */
    void setColorStart(R3XVECTOR3D value);
    void setColorStart(float r, float g, float b) { setColorStart(R3XVECTOR3D(r, g, b)); }
    R3XVECTOR3D getColorStart() const { return colorStart; }
    void setColorEnd(R3XVECTOR3D value);
    void setColorEnd(float r, float g, float b) { setColorEnd(R3XVECTOR3D(r, g, b)); }
    R3XVECTOR3D getColorEnd() const { return colorEnd; }
    /** The emitter owns the texture: it counts as a user and destroys it, when it is replaced, by `load` and
     * with the emitter, unless another use is counted as well. Null for none. */
    void setTexture(KTTEXTURE *value);
    KTTEXTURE *getTexture() const { return texture; }
    /** GL blend factors. */
    void setBlendingSrc(unsigned int factor) { blendingSrc = factor; }
    unsigned int getBlendingSrc() const { return blendingSrc; }
    void setBlendingDst(unsigned int factor) { blendingDst = factor; }
    unsigned int getBlendingDst() const { return blendingDst; }

    int emitterType;
    bool initialized;
    int numberOfParticles;
    int slot[maxParticles];  ///< indices in the pool; -1 for none
    unsigned int maximumEnergy;
    unsigned int maxVelocity;
    unsigned int maximumParticuleSize;
    unsigned int maximumSpin;
    float spinning;
    R3XVECTOR3D center;
    R3XVECTOR3D gravity;
    float maximumAngle;
    float sizeX, sizeY;
    float radius;
    R3XVECTOR3D upVector;
    R3XVECTOR3D colorDelta;  ///< from the start to the end
    R3XVECTOR3D colorStart;
    R3XVECTOR3D colorEnd;
    KTTEXTURE *texture;
    unsigned int blendingSrc, blendingDst;

    /** Null while the engine is not running. The arrays hold four vertices for each of 512 particles; colours
     * are RGBA bytes. */
    static KTPARTICLE *particle;
    static unsigned int numberbOfParticlesUsed;
    static R3XVECTOR4D *vertexArray;
    static R3XVECTOR2D *uvArray;
    static R3XVECTOR2D *uvSecondaryArray;
    static unsigned char *colorArray;

   private:
    struct BILLBOARD;
    static void forgetTexture(const keltra::Gone<KTTEXTURE> &gone);
    static void freeArrays();
    void copyEmitter(const KTEMITTER &other);
    static void destroyUnused(KTTEXTURE *former);
    void releaseSlots(unsigned int kept);
    KTPARTICLE *heldParticle(unsigned int index) const;
    bool updateParticle(KTPARTICLE *spawned);
    void placeOnDisc(KTPARTICLE &spawned) const;
    void advance(KTPARTICLE &moved, const BILLBOARD &billboard, R3XVECTOR4D *corners, unsigned char *colors);
    void updateParticles();
    void draw();

    static const keltra::OnGone<KTTEXTURE> onTextureGone;
    static KTLISTED<KTEMITTER> *allEmitters;
    KTUSE textureUse;
};

#endif
