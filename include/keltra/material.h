// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MATERIAL_H
#define KELTRA_MATERIAL_H

#include <keltra/registered.h>
#include <keltra/vector.h>

#include <cstdint>

class KTMATERIAL;
class KTSHADER;
class KTTEXTURE;
KT_LISTED_CLASS(KTMATERIAL);

/** The colours, transparency, shininess and textures of a surface. Meshes render their material before
 * drawing. All materials are on one list, which owns those made with `new`; textures and shaders are
 * referred to. */
class KT_API KTMATERIAL : public KTREGISTERED<KTMATERIAL>, public KTLISTED<KTMATERIAL> {
   public:
    static const unsigned int levels = 16;  ///< texture slots

    /** Grey and opaque, without textures, named after its identifier. */
    KTMATERIAL();
    KTMATERIAL(const KTMATERIAL &other);
    KTMATERIAL &operator=(const KTMATERIAL &other);
    ~KTMATERIAL();

    /** Copies colours, transparency, shininess, textures and shader of `source`, without counting texture
     * uses; the name becomes the source's name and this material's id. Null does nothing. */
    void clone(const KTMATERIAL *source);

    /** Colours are RGBA, 0 to 1; their alpha follows the transparency when the material renders. */
    void setAmbient(const R3XVECTOR4D &color) { ambient = color; }
    void setAmbient(float r, float g, float b, float a) { ambient.set(r, g, b, a); }
    R3XVECTOR4D getAmbient() const { return ambient; }
    void setDiffuse(const R3XVECTOR4D &color) { diffuse = color; }
    void setDiffuse(float r, float g, float b, float a) { diffuse.set(r, g, b, a); }
    R3XVECTOR4D getDiffuse() const { return diffuse; }
    void setSpecular(const R3XVECTOR4D &color) { specular = color; }
    void setSpecular(float r, float g, float b, float a) { specular.set(r, g, b, a); }
    R3XVECTOR4D getSpecular() const { return specular; }
    void setEmission(const R3XVECTOR4D &color) { emission = color; }
    void setEmission(float r, float g, float b, float a) { emission.set(r, g, b, a); }
    R3XVECTOR4D getEmission() const { return emission; }
    /** 1 is opaque, 0 invisible. Only below 1 the surface blends, and a texture shows its own alpha. */
    void setTransparency(float value) { transparency = value; }
    float getTransparency() const { return transparency; }
    /** 0 to 128. */
    void setShininess(float value) { shininess = value; }
    float getShininess() const { return shininess; }
    /** Puts a texture (or null) into slot `level` and counts the use in the old and the new one; false for a
     * level of 16 or more. */
    bool setTexture(unsigned int level, KTTEXTURE *value);
    KTTEXTURE *getTexture(unsigned int level) const { return level < levels ? texture[level] : nullptr; }
    /** True when slot 0 holds a texture. */
    bool isTextured() const { return texture[0] != nullptr; }
    /** True when the transparency is not exactly 1. */
    bool isTransparent() const { return transparency != 1.0f; }
    /** Shader in place of the one that the light would choose; null for none. Inert on this GL. */
    void setShader(KTSHADER *value);
    KTSHADER *getShader() const { return shader; }
    /** Set by the loader for materials of skins; chooses among shaders. */
    void setSkinning(bool status) { skinning = status; }
    bool isSkinned() const { return skinning; }

    /** Loads the material into GL unless it is the current one. `data` points to a signed 32-bit light type
     * (0 omni, 1 directional, 2 spot) or is null. Always true. Changes to the current material show after
     * `reset` or in the next frame. */
    bool render(void *data);

    /** First material of that name or identifier; null for null and when there is none. */
    static KTMATERIAL *findByName(const char *name);
    static KTMATERIAL *findById(unsigned int id);
    static unsigned int getNumberOfMaterials();
    static KTMATERIAL *getFirst() { return firstMaterial; }
    /** Forgets the current material, so that the next render sets everything. */
    static void reset() { currentMaterial = nullptr; }
    /** Destroys every material; false when there is none. Texture uses are left as they are. */
    static bool cleanUp();

    /** Identifier, 1 to 65,535; 0 when all were taken. */
    unsigned int getId() const { return id; }
    /** Null and names of 256 characters or more leave the name as it was. */
    void setName(const char *text);
    const char *getName() const { return name; }
    /** `KELTRA::timeStamp` of the last render. */
    int getTimeStamp() const { return timeStamp; }
    /** Count of uses, by meshes; nothing is destroyed at 0. */
    void incReferences() {
        ++references;
        markHeld();
    }
    void decReferences() { --references; }
    int getReferences() const { return references; }
    KTMATERIAL *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTMATERIAL *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }

    unsigned int id;
    char name[256];
    std::int32_t timeStamp;
    std::int32_t references;
    R3XVECTOR4D ambient;
    R3XVECTOR4D diffuse;
    R3XVECTOR4D specular;
    R3XVECTOR4D emission;
    float transparency;
    float shininess;
    KTTEXTURE *texture[levels];
    KTSHADER *shader;
    bool skinning;
    KTMATERIAL *previous, *next;

    static KTMATERIAL *firstMaterial;
    static KTMATERIAL *currentMaterial;

   private:
    void release();
    static void forgetTexture(const keltra::Gone<KTTEXTURE> &gone);
    static void forgetShader(const keltra::Gone<KTSHADER> &gone);
    void copyFields(const KTMATERIAL &other);
    void copySurface(const KTMATERIAL &other);
    KTSHADER *chooseShader(const void *data) const;

    static const keltra::OnGone<KTTEXTURE> onTextureGone;
    static const keltra::OnGone<KTSHADER> onShaderGone;
    static KTLISTED<KTMATERIAL> *allMaterials;
};

#endif
