// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SHADER_H
#define KELTRA_SHADER_H

#include <keltra/registered.h>

class KTSHADER;
KT_LISTED_CLASS(KTSHADER);

/** A shader on a fixed-function GL: the whole interface stands and nothing is ever compiled or bound, so that
 * scene code written for shaders runs unchanged. Shader objects are named and listed; the list owns those
 * made with `new`. */
class KT_API KTSHADER : public KTREGISTERED<KTSHADER> {
   public:
    static const unsigned int params = 28;

    /** Inoperative, named after its identifier. */
    KTSHADER();
    KTSHADER(const KTSHADER &other);
    KTSHADER &operator=(const KTSHADER &other);
    ~KTSHADER();

    /** True; nothing is loaded and the shader stays inoperative. */
    bool load(const char *vertexProgram, const char *pixelProgram, bool = false);
    bool loadVertexShader(const char *filename, const char *defines);
    bool loadPixelShader(const char *filename, const char *defines);
    /** True; nothing is bound. */
    bool render(void *data);
    /** False; no effect. */
    bool bindParam(unsigned int index, const char *name, bool pixel);
    static bool bindTexture(unsigned int channel);
    static bool bindSizes(int sizeX, int sizeY);
    static bool bindNearAndFarPlane(float nearPlane, float farPlane);
    static bool bindFocusAndRange(float focus, float range);
    static bool bindLuminanceAndExposure(float luminance, float exposure);
    static bool bindBones(unsigned int count, float *quaternions, float *translations, unsigned int first,
                          unsigned int last);
    static bool unbindBones();

    /** Sets the switch that `disable` clears; true. */
    static bool enable();
    /** Clears the switch and forgets the current shader when it was set; true. */
    static bool disable();
    /** Forgets the current shader and clears the switch. */
    static void reset();
    /** Destroys every shader; false when there is none. */
    static bool cleanUp();

    /** What shaders support: nothing sets these flags, they are false. */
    static bool useSkinning() { return skinningFlag; }
    static bool usePPL() { return pplFlag; }
    static bool useBloom() { return bloomFlag; }
    static bool useShadows() { return shadowsFlag; }
    static bool usePassthrough() { return passthroughFlag; }
    static bool useEmitter() { return emitterFlag; }
    static bool useDOF() { return dofFlag; }
    static bool useSkydome() { return skydomeFlag; }
    static bool useWater() { return waterFlag; }
    static bool useTerrain() { return terrainFlag; }

    /** First shader of that name or identifier; null for null and when there is none. */
    static KTSHADER *findByName(const char *name);
    static KTSHADER *findById(unsigned int id);
    static unsigned int getNumberOfShaders();
    static KTSHADER *getFirst() { return firstShader; }
    KTSHADER *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTSHADER *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }
    /** Prefix of file names, up to 255 characters; null empties it. */
    static void setPath(const char *path);
    static char *getPath() { return shaderPath; }

    /** Identifier, 1 to 65,535; 0 when all were taken. */
    unsigned int getId() const { return id; }
    /** Null and names of 256 characters or more leave the name as it was. */
    void setName(const char *text);
    const char *getName() const { return name; }
    /** File names of the programs; "[none]" in every shader. */
    const char *getVSFilename() const { return vsFilename; }
    const char *getPSFilename() const { return psFilename; }
    /** True when both programs are ready, which they never are here. */
    bool isOperative() const { return vertexReady && pixelReady; }
    /** Makes the shader inoperative. */
    void forceDeactivation() { vertexReady = pixelReady = false; }
    /** Parameter slot `index`, or 28 for an index of 28 or more. */
    unsigned int getParam(unsigned int index) const { return index < params ? param[index] : params; }

    unsigned int id;
    char name[256];
    char vsFilename[256];
    char psFilename[256];
    bool vertexReady, pixelReady;
    unsigned int param[params];
    KTSHADER *previous, *next;

    static char shaderPath[256];
    static KTSHADER *firstShader;
    static KTSHADER *currentShader;
    static bool active;
    static bool enabled;
    static bool skinningFlag, pplFlag, bloomFlag, shadowsFlag, passthroughFlag;
    static bool emitterFlag, dofFlag, skydomeFlag, waterFlag, terrainFlag;

    /** The engine's own shader objects, made at start-up; null before and after. In the names of the lighting
     * shaders T is a textured material, A a skinned one, S a spot light with a shadow map. */
    static KTSHADER *pplDirect, *pplOmni, *pplSpot, *pplDirectA, *pplOmniA, *pplSpotA;
    static KTSHADER *pplDirectT, *pplOmniT, *pplSpotT, *pplDirectTA, *pplOmniTA, *pplSpotTA;
    static KTSHADER *pplSpotS, *pplSpotSA, *pplSpotTS, *pplSpotTSA;
    static KTSHADER *passthrough, *passthroughA, *passthroughZPass, *passthroughZPassA;
    static KTSHADER *bloomBright, *bloomToneMapping, *bloomCombine, *bloomForceAlpha, *bloomV, *bloomH;
    static KTSHADER *gaussian, *emitter, *dofCombine, *dof, *skydome, *water, *waterS;
    static KTSHADER *terrainComplex, *terrainSimple;

   private:
    friend class KELTRA;
    static bool init();
    static bool free();
    static bool isActive() { return active; }
    void release();
    void copyFields(const KTSHADER &other);
};

#endif
