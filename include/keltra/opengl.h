// SPDX-License-Identifier: Zlib
#ifndef KELTRA_OPENGL_H
#define KELTRA_OPENGL_H

#include <keltra/export.h>
#include <keltra/vector.h>

class KTFBO;

/** What the renderers draw: the picture, flat codes for picking, or the depth-of-field pre-pass. */
enum KT_OPENGL_PROFILE { KT_PROFILE_NORMAL = 1, KT_PROFILE_PICKING = 2, KT_PROFILE_DEPTH = 3 };

/** The engine's view of GL state: projection, background, the cached switches. Code that changes a cached
 * switch goes through these functions, so that GL is called only on a change. All members are static. */
class KT_API KTOPENGL {
   public:
    static const int fbos = 14;

    /** Sets the viewport (y from the top edge of the window) and the projection of the 3D pass. Always true.
     */
    static bool resize(int x, int y, int width, int height);
    /** Multiplies the current matrix by a perspective frustum; `angle` is the vertical field of view in
     * degrees. */
    static void setPerspective(float angle, float aspect, float nearDistance, float farDistance);
    /** Loads a frustum as projection and the identity as model-view; the bool is not used. True. */
    static bool setFrustum(float left, float right, float bottom, float top, float nearDistance,
                           float farDistance, bool = false);
    /** Clipping distances and field of view in degrees; they take effect at the next `resize`. */
    static void setNearPlane(float distance) { nearPlane = distance; }
    static float getNearPlane() { return nearPlane; }
    static void setFarPlane(float distance) { farPlane = distance; }
    static float getFarPlane() { return farPlane; }
    static void setAngleOfView(float degrees) { angleOfView = degrees; }
    static float getAngleOfView() { return angleOfView; }
    /** Colours are RGBA, 0 to 1, and take effect at once. */
    static void setBackgroundColor(float r, float g, float b, float a);
    static void setBackgroundColor(R3XVECTOR4D color);
    static R3XVECTOR4D getBackgroundColor() { return backgroundColor; }
    static void setGlobalAmbientLight(float r, float g, float b, float a);
    static void setGlobalAmbientLight(R3XVECTOR4D color);
    static R3XVECTOR4D getGlobalAmbientLight() { return globalAmbientLight; }
    /** What the renderers draw; set by the engine during its passes. */
    static void setProfile(KT_OPENGL_PROFILE profile) { currentProfile = profile; }
    static KT_OPENGL_PROFILE getProfile() { return currentProfile; }

    /** Switches: GL is called only when the cached state differs. */
    static void cullingOn();
    static void cullingOff();
    static bool isCulled() { return culling; }
    static void blendingOn();
    static void blendingOff();
    static bool isBlended() { return blending; }
    static void scissorOn();
    static void scissorOff();
    static void twoSideOn();
    static void twoSideOff();
    static bool isTwoSide() { return twoSide; }
    static void vertexArrayOn();
    static void vertexArrayOff();
    static void normalArrayOn();
    static void normalArrayOff();
    static void colorArrayOn();
    static void colorArrayOff();
    static void textureArrayOn();
    static void textureArrayOff();

    /** Off-screen target `i`; null for an empty entry or an index outside the table. */
    static KTFBO *getFbo(int i);
    /** Capability flags and the level of anisotropy: nothing sets them, they are false and 0. */
    static bool useVBO() { return VBOFlag; }
    static bool useAnisotropic() { return anisotropicFlag; }
    static bool useFBO() { return FBOFlag; }
    static bool useMultitexturing() { return multitextureFlag; }
    static bool useShaders() { return shadersFlag; }
    static bool useOcclusionQuery() { return OcclusionQueryFlag; }
    static float getAnisotropicLevel() { return anisotropicLevel; }
    /** True between start-up and shut-down of the engine. */
    static bool isActive() { return active; }

    static bool active;
    static float nearPlane, farPlane, angleOfView;
    static KT_OPENGL_PROFILE currentProfile;
    static R3XVECTOR4D backgroundColor;
    static R3XVECTOR4D globalAmbientLight;
    static KTFBO *fbo[fbos];
    static float anisotropicLevel;
    static bool blending, scissor, culling, twoSide;
    static bool vertexArrayStatus, indexArrayStatus, normalArrayStatus, colorArrayStatus, textureArrayStatus;
    static bool multitextureFlag, VBOFlag, shadersFlag, anisotropicFlag, FBOFlag, OcclusionQueryFlag;

   private:
    friend class KELTRA;
    static bool init();
    static bool free();
    static void reset();
};

#endif
