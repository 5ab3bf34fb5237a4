// SPDX-License-Identifier: Zlib
#ifndef KELTRA_MESH_H
#define KELTRA_MESH_H

#include <keltra/node.h>

#include <cstdint>

class KTELEMENT;
class KTMATERIAL;

/** One bone of a skin. */
struct KTBONE {
    char name[256];
    KTNODE *node;  ///< the node that drives the bone, or null; compared, never followed
    /** Inverse of the node's matrix relative to the node "HumanoidRoot" in the bind pose. */
    R3XMATRIX inverseBindMatrix;
};

/** A triangle mesh in 16.16 fixed point, rigid or skinned. It comes from a scene file (`KELTRA::load`) and
 * refers to a material, which it does not own. A skinned mesh follows nodes of the tree, its bones, whose
 * matrices the frame's pass collects into one of 16 slots: a seventeenth skinned mesh of a frame is not
 * drawn. */
class KT_API KTMESH : public KTNODE, public KTLISTED<KTMESH> {
   public:
    static const unsigned int maxSkins = 16;   ///< skinned meshes a frame
    static const unsigned int maxBones = 100;  ///< bones a skin

    /** Without geometry and material. */
    KTMESH();
    /** A copy shares the geometry and holds no use of the material. */
    KTMESH(const KTMESH &other);
    KTMESH &operator=(const KTMESH &other);
    ~KTMESH() override;

    /** Refers to a material (null for none) and counts the use in both the old and the new one. */
    void setMaterial(KTMATERIAL *value);
    KTMATERIAL *getMaterial() const { return material; }
    /** Kept only. */
    void setShadowCaster(bool status) { shadowCaster = status; }
    bool getShadowCaster() const { return shadowCaster; }
    /** A mesh whose display status is off is neither passed nor drawn. */
    void setDisplayStatus(bool status) { hidden = !status; }
    bool isHidden() const { return hidden; }
    /** Kept only; false unless the application sets the member. */
    bool isClosed() const { return closed; }
    /** True when vertices have influences. */
    bool isSkinned() const { return numberOfInfluences != 0; }
    /** Bounding sphere around the mesh's origin, -1 for none, and bounding box. */
    float getRadius() const { return radius; }
    R3XVECTOR3D getMinimum() const { return minimum; }
    R3XVECTOR3D getMaximum() const { return maximum; }
    unsigned int getNumberOfVertices() const { return numberOfVertices; }
    unsigned int getNumberOfUVs() const { return numberOfUVs; }
    unsigned int getNumberOfFaces() const { return numberOfFaces; }
    unsigned int getNumberOfBones() const { return numberOfBones; }
    /** `numberOfVertices` x 3 values in 16.16. */
    std::int32_t *getVertexNormalPtr() const { return vertexNormals; }
    /** `numberOfFaces` x 3 floats. */
    float *getFaceNormalPtr() const { return faceNormals; }

    /** Makes the pool of bone matrices; false when it is made already or out of memory. Called by
     *  `KELTRA::init`. */
    static bool init();
    /** Releases the pool; always true. */
    static bool free();
    /** Starts a frame: all slots are free, all client arrays off. */
    static void reset();
    /** Draws a line along each vertex normal in normal drawing, while switched on. */
    static void showNormals() { normalsShown = true; }
    static void hideNormals() { normalsShown = false; }

    /** Reads the body of one mesh record at `buffer + *cursor` and advances the cursor; `oldVersion` for a
     * v1.5a file. It trusts that a whole record stands there. The node gets its number of children, all
     * empty. Null on bad data or when out of memory. */
    static KTNODE *load(const char *buffer, long *cursor, bool oldVersion);
    /** Finds the skin's bones by name below `root` and takes their present pose, relative to the node
     *  "HumanoidRoot", as bind pose. A bone that is not found gets no node and the identity. Only bones that
     * are mesh nodes move the skin; vertices of others are drawn away from their place. False for a null
     * root. */
    bool resetBones(KTNODE *root);
    /** Skins the vertices with the matrices of pool slot `slot`; false for 16 (no slot left) and beyond. */
    bool animate(unsigned int slot);
    /** Draws the mesh. `data` is its `KTELEMENT`; false when it is null or the skin got no slot. */
    bool render(void *data) override;

    float radius;  ///< bounding radius; -1 for none
    R3XVECTOR3D minimum;
    R3XVECTOR3D maximum;
    KTMATERIAL *material;
    bool shadowCaster;
    bool closed;
    bool hidden;
    std::uint16_t numberOfVertices;
    std::uint16_t numberOfUVs;
    std::uint16_t numberOfFaces;
    std::uint16_t numberOfInfluences;  ///< per vertex; 0 for a rigid mesh
    std::uint16_t numberOfBones;
    void *dataBlock;               ///< holds the five arrays that follow
    std::int32_t *vertices;        ///< numberOfVertices x 3, 16.16
    std::int32_t *vertexNormals;   ///< numberOfVertices x 3, 16.16
    float *faceNormals;            ///< numberOfFaces x 3
    std::int32_t *uvs;             ///< numberOfUVs x 2, 16.16
    std::uint16_t *faces;          ///< numberOfFaces x 3 vertex indices
    std::uint8_t *influenceBones;  ///< numberOfVertices x numberOfInfluences
    float *influenceWeights;       ///< numberOfVertices x numberOfInfluences
    float *influenceBonesFloat;    ///< the bone indices as floats, for shaders
    KTBONE *bones;
    std::int32_t *skinnedVertices;  ///< numberOfVertices x 3, 16.16; null for a rigid mesh
    std::int32_t *skinnedNormals;   ///< numberOfVertices x 3, 16.16

    /** Pool of bone matrices: `maxSkins` x `maxBones`; null outside `init` and `free`. */
    static R3XMATRIX *boneMatrices;
    /** The mesh of each slot in use; null in an entry whose mesh was destroyed. */
    static KTMESH *slotMesh[maxSkins];
    /** Slots in use this frame. */
    static unsigned int usedSlots;
    /** Skin matrices of the mesh being drawn; for shaders as quaternion and translation. */
    static R3XMATRIX skinMatrices[maxBones];
    static float boneQuaternions[maxBones][4];
    static float boneTranslations[maxBones][3];
    static bool normalsShown;

   private:
    struct DRAWING;
    // What an array was made from: it is made anew once the application has put another one in place.
    struct SOURCE {
        const void *array;
        std::uint16_t vertices, faces;
    };
    void copyMesh(const KTMESH &other);
    void releaseMesh();
    static void forgetMaterial(const keltra::Gone<KTMATERIAL> &gone);
    unsigned int countPoolBones() const;
    bool usesSkinningShader() const;
    bool skinVertices(unsigned int boneCount);
    void beginSpecialPass() const;
    void renderMaterial(const KTELEMENT &element);
    DRAWING prepareDrawing(bool special);
    static void draw(const DRAWING &drawing);
    void drawNormals(const DRAWING &drawing);
    bool isMadeFrom(const SOURCE &source, const void *array) const;
    bool makeLineIndices();
    bool makeNormalLines(const DRAWING &drawing);

    std::uint16_t *lineIndices;  // wireframe, made when first drawn
    SOURCE linesMadeFrom;
    std::int32_t *normalLines;  // two ends a vertex, made when first drawn
    SOURCE normalsMadeFrom;
    KTUSE materialUse;
    static const keltra::OnGone<KTMATERIAL> onMaterialGone;
    static KTLISTED<KTMESH> *allMeshes;
};

#endif
