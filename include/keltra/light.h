// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LIGHT_H
#define KELTRA_LIGHT_H

#include <keltra/node.h>

#include <cstdint>

class KTELEMENT;

/** Kinds of light, as `KTLIGHT::lightType` holds them. */
enum KT_LIGHT_TYPE { KT_LIGHT_POINT = 0, KT_LIGHT_DIRECTIONAL = 1, KT_LIGHT_SPOT = 2 };

/** A light. A scene may hold any number; before an object is drawn its four nearest lights are loaded into GL
 * lights 0 to 3. A GL light stays on until another light is loaded into it. */
class KT_API KTLIGHT : public KTNODE {
   public:
    /** A white point light without attenuation. */
    KTLIGHT();
    KTLIGHT(const KTLIGHT &other);
    KTLIGHT &operator=(const KTLIGHT &) = default;
    ~KTLIGHT() override;

    /** A `KT_LIGHT_TYPE`; any other value is a point light with its own cut-off. */
    void setLightType(unsigned int kind) { lightType = kind; }
    unsigned int getLightType() const { return lightType; }
    /** Colours are RGBA, 0 to 1. */
    void setAmbient(R3XVECTOR4D color) { ambient = color; }
    void setAmbient(float r, float g, float b, float a) { ambient.set(r, g, b, a); }
    R3XVECTOR4D getAmbient() const { return ambient; }
    void setDiffuse(R3XVECTOR4D color) { diffuse = color; }
    void setDiffuse(float r, float g, float b, float a) { diffuse.set(r, g, b, a); }
    R3XVECTOR4D getDiffuse() const { return diffuse; }
    void setSpecular(R3XVECTOR4D color) { specular = color; }
    void setSpecular(float r, float g, float b, float a) { specular.set(r, g, b, a); }
    R3XVECTOR4D getSpecular() const { return specular; }
    /** Factors of a light at distance d: 1 / (constant + linear d + quadratic d d). (1, 0, 0) at first:
     * none. */
    void setAttenuation(float constant, float linear, float quadratic) {
        attenuation.set(constant, linear, quadratic);
    }
    R3XVECTOR3D getAttenuation() const { return attenuation; }
    /** Spot cut-off in degrees, 0 to 90, or 180 for none; only spot lights use it. Any other value counts as
     * 180. */
    void setCutOff(float degrees) { cutOff = degrees; }
    float getCutOff() const { return cutOff; }
    /** Spot exponent, 0 to 128; the GL gets the nearest of these. */
    void setExponent(float value) { exponent = value; }
    float getExponent() const { return exponent; }
    /** Exclusive lights come before all others when the nearest are chosen. */
    void setExclusive(bool status) { exclusive = status; }
    bool isExclusive() const { return exclusive; }
    /** Kept only: whether it casts shadows, and the clipping distances of its shadow map. */
    void castShadows(bool status) { shadowCaster = status; }
    bool isShadowCaster() const { return shadowCaster; }
    void setShadowNearPlane(float distance) { shadowNearPlane = distance; }
    float getShadowNearPlane() const { return shadowNearPlane; }
    void setShadowFarPlane(float distance) { shadowFarPlane = distance; }
    float getShadowFarPlane() const { return shadowFarPlane; }

    /** Switch GL lighting, through the cached `lighting`. */
    static void lightingOn();
    static void lightingOff();
    /** Whether GL lighting is on. */
    static bool getLighting() { return lighting; }
    /** Loads the lights of the render list nearest to `element`, four at most, into GL lights 0 to 3, nearest
     * first, and notes them in the element. False for null, while lighting is off, or when the list's lights
     * are not lights. */
    static bool activateNearest(KTELEMENT *element);
    /** Loads this light into the GL light that its element's `param1` names, and switches lighting on. `data`
     * is the light's `KTELEMENT`; false, with nothing changed, when it is null or its `param1` is beyond the
     * eight GL lights. */
    bool render(void *data) override;
    /** Reads the body of one light record at `buffer + *cursor` and advances the cursor. It trusts that a
     * whole record stands there. Null on bad data. */
    static KTNODE *load(const char *buffer, long *cursor);

    unsigned int lightType;
    R3XVECTOR4D ambient;
    R3XVECTOR4D diffuse;
    R3XVECTOR4D specular;
    R3XVECTOR3D attenuation;
    float cutOff;
    float exponent;
    bool exclusive;
    bool shadowCaster;
    float shadowNearPlane;
    float shadowFarPlane;
    void *shadowData;

    static bool lighting;

   private:
    // The parameters from `ambient` to `exponent` in 16.16, and what they were made from: they are made anew
    // once one of them has changed.
    static const unsigned int parameterCount = 17;
    struct PARAMETERS {
        std::uint32_t madeFrom[parameterCount];
        std::int32_t fixed[parameterCount];
        bool made;
    };
    void updateParameters();
    void loadParameters(unsigned int unit);

    PARAMETERS parameters;
};

#endif
