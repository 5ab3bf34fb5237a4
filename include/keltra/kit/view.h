// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_VIEW_H
#define KELTRA_KIT_VIEW_H

/** @file
 *
 * What a camera sees: from the world to the screen and back, what is in view or near, and what a ray hits;
 * hidden subtrees; pictures of the screen. Points of the screen are pixels of the 2D pass, turned in
 * landscape mode, as `KTINPUT::getPoint` and positions of widgets are. */

#include <keltra/kit/export.h>
#include <keltra/matrix.h>
#include <keltra/plane.h>
#include <keltra/vector.h>

class KTMESH;
class KTNODE;

/** A ray from a point on; the direction has length 1. */
struct KTRAY {
    R3XVECTOR3D origin, direction;
};

/** The view and the projection of one frame. */
class KTKIT_API KTVIEW {
   public:
    /** Sees nothing until `take`. */
    KTVIEW();

    /** Takes what the current frame is seen with; to be called between `KELTRA::begin3D` and `begin2D`. */
    void take();
    /** Where a point of the world is on the screen. False, with the point unchanged, when it is behind the
     * eye; it may lie outside of the screen. Null is allowed. */
    bool toScreen(const R3XVECTOR3D &place, R3XVECTOR2D *point) const;
    /** The ray from the eye through a point of the screen. */
    KTRAY getRay(const R3XVECTOR2D &point) const;
    R3XVECTOR3D getEye() const { return eye; }
    /** Whether a sphere is in view at all; spheres just beside a corner of the picture count too. */
    bool sees(const R3XVECTOR3D &center, float radius) const;
    /** The same of a mesh's bounding sphere, where the mesh stands in its tree; one without a radius is seen.
     */
    bool sees(const KTMESH &mesh) const;
    /** Writes the meshes in view below `root`, and `root`, into `found`, at most `most`, in the order of the
     * tree, and returns how many there are in all. Hidden ones are left out. */
    unsigned int findSeen(KTNODE *root, KTMESH **found, unsigned int most) const;

    /** The same of nodes whose place in the world is at most `radius` away from `center`. */
    static unsigned int findNear(KTNODE *root, const R3XVECTOR3D &center, float radius, KTNODE **found,
                                 unsigned int most);
    /** Where a node stands in the world: its matrix, without the model-view stack. */
    static R3XMATRIX getWorldMatrix(const KTNODE &node);
    /** Whether a ray hits, and at which distance (null is allowed). A ray that starts in a sphere hits it at
     * 0; planes are hit from both sides. */
    static bool hitsSphere(const KTRAY &ray, const R3XVECTOR3D &center, float radius, float *distance);
    static bool hitsPlane(const KTRAY &ray, const R3XPLANE &plane, float *distance);
    /** `KELTRA::select` for a point of the screen; the same rules hold. */
    static unsigned int pick(const R3XVECTOR2D &point);

    /** Writes what has been drawn to a Targa file of 24 bits, the path as it is; to be called before
     * `KELTRA::swap`. False, with a fault, for null, while the engine is not active, without memory, and when
     * the file cannot be written. It allocates a row of pixels. */
    static bool saveScreenshot(const char *path);

   private:
    R3XMATRIX view, projection, both;
    R3XVECTOR3D eye;
    R3XPLANE planes[6];
    int width, height;
    bool landscape;
};

/** Hides a node with all below it, lights and emitters too, by taking it from its parent; and shows it again.
 * The node and its parent have to outlive that. */
class KTKIT_API KTHIDDEN {
   public:
    KTHIDDEN() : node(nullptr), parent(nullptr) {}
    /** False, with a fault, for null, a node without a parent, and while another is hidden. */
    bool hide(KTNODE *subtree);
    /** Links it to its parent again, behind the parent's other children, for which the parent may need
     * memory. False when nothing is hidden, and without memory. */
    bool show();
    /** Null for none. */
    KTNODE *getNode() const { return node; }

   private:
    KTNODE *node, *parent;
};

#endif
