// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_SHAPES_H
#define KELTRA_KIT_SHAPES_H

/** @file
 *
 * Meshes made in code: simple bodies, billboards, sprites of an atlas, texts, meshes from arrays, and several
 * static meshes merged into one. Each call that makes one returns a new mesh without a material, which the
 * list of nodes owns, as those of files; the application may delete it earlier. */

#include <keltra/box.h>
#include <keltra/kit/export.h>
#include <keltra/vector.h>

#include <cstdint>

class KTFONT;
class KTMATERIAL;
class KTMESH;
class KTNODE;
class KTTEXTURE;

/** Geometry as `KTSHAPES::makeArrays` takes it. */
struct KTARRAYS {
    const float *vertices;  ///< `numberOfVertices` x 3
    const float *normals;   ///< as many, of length 1; null: those of the faces, summed at each vertex
    const float *uvs;       ///< `numberOfVertices` x 2, v upward; null for none
    unsigned int numberOfVertices;
    const std::uint16_t *faces;  ///< `numberOfFaces` x 3 vertices, counter-clockwise seen from the front
    unsigned int numberOfFaces;
};

/** All members are static. Sizes are in units, above 0; what fails returns null and makes a fault: a size
 * that is not, more than 65,535 vertices or faces, a face with a vertex that is not there, and no memory.
 * Textures cover each side once unless a call says otherwise. */
class KTKIT_API KTSHAPES {
   public:
    /** Ground: in the plane y = 0 around the origin, facing up, of `columns` x `rows` squares (finer ones are
     * lit better); the texture is repeated `repeat` times along x, and as densely along z. */
    static KTMESH *makePlane(float width, float depth, unsigned int columns = 1, unsigned int rows = 1,
                             float repeat = 1.0f);
    /** An upright rectangle around the origin that faces +z: a billboard, a sprite, a wall. */
    static KTMESH *makeQuad(float width, float height);
    /** Around the origin. */
    static KTMESH *makeBox(float width, float height, float depth);
    /** Around the origin, of `slices` (3 or more) around the y axis and `rings` (2 or more) from pole to
     * pole.
     */
    static KTMESH *makeSphere(float radius, unsigned int slices = 12, unsigned int rings = 8);
    /** Upright around the origin, with another radius at its top, which may be 0 for a cone, as may that at
     * the bottom; ends are closed where there are any and `capped` is set. `slices`: 3 or more. */
    static KTMESH *makeCylinder(float bottomRadius, float topRadius, float height, unsigned int slices = 12,
                                bool capped = true);
    /** From arrays, which are copied. */
    static KTMESH *makeArrays(const KTARRAYS &arrays);
    /** A text around the origin that faces +z, of centered lines (`\n`) `height` units high: a square for
     * each character, with its glyph in the font's texture, which the material is to have; a transparency of
     * 0.999 lets the glyphs' alpha show. Kerning counts, escapes do not. Null, with a fault, for null and a
     * text without anything to show. */
    static KTMESH *makeText(const KTFONT &font, const char *text, float height);
    /** The same in solid letters, `depth` units thick, cut along the outlines of the glyphs, with some 300
     * faces each for cells of 16 pixels; a texture covers the whole text once. Cells may be of any size here
     * (`KTFONT::setCharSizeX`). Null, with a fault, as above, and when the texture has no alpha channel or
     * does not hold its picture. */
    static KTMESH *makeSolidText(const KTFONT &font, const char *text, float height, float depth);

    /** Merges the rigid meshes of `material` (null for those without one) below `root`, and `root` itself,
     * into one new mesh with this material, in the coordinates of `root`: linked below it, it draws what they
     * draw, in one call. The meshes that it is made of are hidden, and may be deleted; later movements of
     * theirs do not count. Hidden and skinned ones are left out. Null, with a fault, when there are none. */
    static KTMESH *merge(KTNODE *root, KTMATERIAL *material);

    /** A material of one colour (RGB, 0 to 1), matt and opaque, owned by the list of materials; the texture
     * may be null. Null, with a fault, when out of memory. */
    static KTMATERIAL *makeMaterial(const char *name, float r, float g, float b,
                                    KTTEXTURE *texture = nullptr);

    /** Cell `index` of a picture of `columns` x `rows` cells, counted from its upper left along the rows:
     * what `KTBOX::setBoxCoords` takes. Indices go around; 0 columns or rows count as 1. */
    static KTBOXCOORD getCell(unsigned int columns, unsigned int rows, unsigned int index);
    /** Lets a mesh of `makeQuad` show that cell. False, with a fault, for null and a mesh of other than 4
     * vertices with texture coordinates. */
    static bool setCell(KTMESH *quad, unsigned int columns, unsigned int rows, unsigned int index);

    /** Turns a node about its y axis so that its +z faces the eye; `upright` false also tilts it. Its parents
     * should not be turned. Null does nothing. */
    static void faceEye(KTNODE *node, const R3XVECTOR3D &eye, bool upright = true);
};

#endif
