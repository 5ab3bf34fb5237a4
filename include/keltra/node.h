// SPDX-License-Identifier: Zlib
#ifndef KELTRA_NODE_H
#define KELTRA_NODE_H

#include <keltra/matrix.h>
#include <keltra/registered.h>
#include <keltra/vector.h>

/** Node type codes, as `KTNODE::type` holds them. */
enum KT_NODE_TYPE {
    KT_NODE = 0,
    KT_ROOT = 1,
    KT_LIGHT = 2,
    KT_MESH = 3,
    KT_CAMERA = 4,
    KT_EMITTER = 5,
    KT_SKYDOME = 6,
    KT_WATER = 7,
    KT_TERRAIN = 8,
    KT_HELPER = 9,
    KT_SOUND = 10,
    KT_BOX = 11,
    KT_LABEL = 12,
    KT_BUTTON = 13,
    KT_WINDOW = 14,
    KT_TEXTFIELD = 15,
    KT_HSCROLLBAR = 16,
    KT_VSCROLLBAR = 17,
    KT_CUSTOM = 18
};

namespace keltra {
class TreeBuilder;
struct Aiming;  // the list of the nodes that aim at a node
}  // namespace keltra

class KTNODE;
KT_LISTED_CLASS(KTNODE);

/** A node of a tree: a transform, a name, an identifier and children. Everything that is drawn derives from
 * it; a plain node draws nothing itself. The local transform is position plus origin, then rotation about X,
 * Y, Z in degrees; or an explicit matrix.
 *
 * Every node is also on one list of all nodes in creation order, which owns those made with `new`; a parent
 * does not own its children. Trees nest at most 256 deep: what hangs deeper is neither searched nor
 * drawn. */
class KT_API KTNODE : public KTREGISTERED<KTNODE>,
                      public KTLISTED<KTNODE>,
                      public KTLISTED<KTNODE, keltra::Aiming> {
   public:
    /** Takes a new identifier, the name "[node <id>]" and the tail of the list of all nodes. */
    KTNODE();
    /** The same as `KTNODE()`; the argument is not used. */
    explicit KTNODE(bool);
    /** Copies every field, identifier, name, links and child array included; a copy is on no list and has no
     * children of its own to give away: it shares the array until it is linked to or unlinked from. */
    KTNODE(const KTNODE &other);
    KTNODE &operator=(const KTNODE &other);
    /** Gives the identifier back and leaves the list. Children stay alive without a parent; the parent keeps
     * its count of children, with an empty (null) entry in this node's place. */
    virtual ~KTNODE();
    /** Draws the node. `data` is the node's `KTELEMENT` of this frame. A plain node draws nothing and returns
     * false. */
    virtual bool render(void *data);

    /** Destroys every node; false when there is none. */
    static bool cleanUp();
    static unsigned int getNumberOfNodes();
    /** First node of the list of all nodes in creation order; null when there is none. */
    static KTNODE *getFirstNode();
    KTNODE *getNextNode() const;
    KTNODE *getPreviousNode() const;

    /** Appends this node to the children of `parent`. False, with nothing changed, when `parent` is null or
     * this node, or when this node already has a parent. Linking below one's own descendant is not detected.
     */
    bool link(KTNODE *parent);
    /** Takes this node from its parent's children; false without a parent or when the parent does not list
     * it. An only child is taken without being compared. */
    bool unlink();
    /** Hands the children to this node's parent, in order, behind its own, and unlinks this node. False
     * without a parent. The node is not destroyed. When out of memory it returns false too; children that
     * were on their way may then be left without a parent. */
    bool remove();
    KTNODE *getParent() const { return parent; }
    bool isRoot() const { return parent == nullptr; }
    unsigned int getNumberOfChildren() const { return numberOfChildren; }
    /** Child `index` in linking order; null when there is no such child or it was destroyed. */
    KTNODE *getChild(unsigned int index) const;

    /** First node of that name in creation order (exact, case-sensitive); null when `name` is null or
     * unknown. */
    static KTNODE *findByName(const char *name);
    /** First node of that identifier; null when there is none. */
    static KTNODE *findById(unsigned int id);
    /** Searches this node and its subtree, depth first, a node before its children, children in order. */
    KTNODE *findByNameInHierarchy(const char *name);
    KTNODE *findByIdInHierarchy(unsigned int id);

    /** Identifier, 1 to 65,535; 0 when all were taken. */
    unsigned int getId() const { return id; }
    /** An identifier that the application chooses, 0 for none; what picking reports in place of the
     * identifier. */
    void setAuxId(unsigned int value) { auxId = value; }
    unsigned int getAuxId() const { return auxId; }
    /** Sets the name; null and names of 256 characters or more leave the name as it was. */
    void setName(const char *text);
    const char *getName() const { return name; }
    unsigned int getType() const { return type; }
    /** Name of the node's type, "node" to "custom"; "unknown" for a code beyond 18. */
    const char *getTypeName() const;
    /** Whether the object was constructed as the class of that type code or as one derived from it, whatever
     * `type` holds: a plain node that a mesh was assigned to is no mesh, a derived box with type `KT_CUSTOM`
     * is a box. Classes are known for codes 2 to 5, 9 and 11 to 17. */
    bool isOfClass(KT_NODE_TYPE code) const { return (classes >> code & 1u) != 0; }
    /** A pointer for the application; the engine neither reads nor frees it. */
    void setData(void *pointer) { data = pointer; }
    void *getData() const { return data; }
    /** A flag for the application; the engine does not read it. */
    void setSharedStatus(bool status) { shared = status; }
    bool isShared() const { return shared; }

    /** Setters of position, rotation (degrees), origin (added to the position), direction and target. The
     * forms with two arguments keep Z. */
    void setPosition(float x, float y);
    void setPosition(float x, float y, float z);
    void setPosition(R3XVECTOR3D value);
    R3XVECTOR3D getPosition() const { return position; }
    void setRotation(float x, float y);
    void setRotation(float x, float y, float z);
    void setRotation(R3XVECTOR3D value);
    R3XVECTOR3D getRotation() const { return rotation; }
    void setOrigin(float x, float y);
    void setOrigin(float x, float y, float z);
    void setOrigin(R3XVECTOR3D value);
    R3XVECTOR3D getOrigin() const { return origin; }
    void setDirection(float x, float y);
    void setDirection(float x, float y, float z);
    void setDirection(R3XVECTOR3D value);
    R3XVECTOR3D getDirection() const { return direction; }
    void setTarget(float x, float y);
    void setTarget(float x, float y, float z);
    void setTarget(R3XVECTOR3D value);
    R3XVECTOR3D getTarget() const { return target; }
    /** Adds to the position; the form with two arguments leaves Z alone. */
    void move(float x, float y);
    void move(float x, float y, float z);
    void move(R3XVECTOR3D step);
    /** Adds degrees to the rotation, without wrapping. */
    void rotate(float x, float y);
    void rotate(float x, float y, float z);
    void rotate(R3XVECTOR3D step);
    /** The node that a camera or a light aims at (itself: the fixed `target`); null for none. It is forgotten
     * when that node is destroyed. */
    void setTargetNode(KTNODE *node);
    KTNODE *getTargetNode() const { return targetNode; }
    /** Stores the explicit matrix; it is used while `transformMode` is 1, which this call does not set. */
    void setMatrix(R3XMATRIX value) { matrix = value; }
    R3XMATRIX getMatrix() const { return matrix; }
    /** The model-view matrix under which the node was passed last. */
    R3XMATRIX *getCachedMatrix() { return &cachedMatrix; }
    /** World matrix of this node; with `stopName`, the matrix up to and including the nearest ancestor of
     * that name. Identity when there are 64 ancestors or more. The model-view stack must be selected; its top
     * is kept. */
    R3XMATRIX getFinalMatrix(const char *stopName);

    /** Stamps the node with the frame and queues it and its subtree for drawing (`KTELEMENT::pass`). Always
     * true. */
    bool pass(bool flag = false);
    /** Whether a pass takes the first child only: true for a window that is folded to its title bar. */
    bool isFolded() const { return !maximized; }
    /** Writes the subtree to the run log, one line a node, two more blanks a level. */
    static void displayTreeRecursive(KTNODE *node, int indent);
    /** Reads the body of one plain node record at `buffer + *cursor` and advances the cursor. It trusts that
     * a whole record stands there; `KELTRA::load` checks files before it comes here. Null on bad data. */
    static KTNODE *load(const char *buffer, long *cursor);

    unsigned int id;
    unsigned int auxId;
    char name[256];
    unsigned int type;
    unsigned int timeStamp;
    bool shared;
    void *data;
    unsigned int transformMode;
    R3XVECTOR3D position;
    R3XVECTOR3D rotation;
    R3XVECTOR3D origin;
    R3XVECTOR3D direction;
    R3XVECTOR3D target;
    KTNODE *targetNode;
    R3XMATRIX matrix;
    R3XMATRIX cachedMatrix;
    KTNODE *previousNode;
    KTNODE *nextNode;
    unsigned int numberOfChildren;
    KTNODE *parent;
    KTNODE **children;

   protected:
    /** For the constructors of node classes: sets the type and the default name, `pattern` formatted with the
     * id. */
    void setIdentity(unsigned int typeCode, const char *pattern);
    /** For the constructors of the engine's node classes, those that copy included: `isOfClass` answers true
     * for the code from now on. */
    void joinClass(KT_NODE_TYPE code) { classes |= 1u << code; }

    bool maximized;  ///< true but for folded windows; not copied with a node

   private:
    friend class keltra::TreeBuilder;
    void release() { delist(); }
    void copyFields(const KTNODE &other);
    bool allocateChildren(unsigned int count);
    bool makeRoomForChild();
    bool takeChild(unsigned int index);
    void setChildren(KTNODE **block, unsigned int count);
    unsigned int findChild(const KTNODE *child) const;
    KTNODE *lister() const { return borrows ? listedBy : parent; }
    void leaveLister();
    void abandonChildren();
    void borrow(KTNODE *listingNode);
    void aimAt(KTNODE *node);
    void forget(const KTNODE *gone);
    void forgetEverywhere();

    static KTNODE *ancestors[64];

    // A borrower has pointers that `link` did not give it: a copy, or a node that was assigned to. They lead
    // to nodes that are marked as held; those are looked for in all borrowers when they are destroyed.
    static KTLISTED<KTNODE> *borrowers;
    bool borrows;

    KTLISTED<KTNODE, keltra::Aiming> *aiming;  // the nodes that aim at this one, but for itself
    unsigned int classes;                      // one bit for each type code whose class the object is of
    unsigned int slot;   // index in the parent's children when it was linked, plus what was taken before
    unsigned int taken;  // how many children were unlinked from the front half
    KTNODE *listedBy;    // of a borrower: the node whose children really list this one
};

#endif
