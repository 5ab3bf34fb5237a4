// SPDX-License-Identifier: Zlib
#ifndef KELTRA_ANIM_H
#define KELTRA_ANIM_H

#include <keltra/registered.h>
#include <keltra/vector.h>

#include <cstdint>

class KTANIM;
class KTMESH;
class KTNODE;
KT_LISTED_CLASS(KTANIM);

/** The pose of one bone in one frame. */
struct KTBONEFRAME {
    R3XVECTOR3D rotation;  ///< degrees about X, Y, Z
    R3XVECTOR3D position;
    bool set;  ///< given explicitly, not interpolated
};

/** A skeletal animation: a grid of keyframes, one for each frame and bone, which is played by writing one
 * frame into the nodes of the bones' names. It is read from and written to KTA files, or made in code: take
 * the bones from a mesh, set some keyframes, fill the frames between them.
 *
 * All animations are on one list, which owns those made with `new`. An object holds the whole grid, about
 * 3.7 MB: never put it on the stack. Made with `new`, it takes memory only for the rows that are used, where
 * the system allows. */
class KT_API KTANIM : public KTREGISTERED<KTANIM> {
   public:
    static const unsigned int maxBones = 128;
    static const unsigned int maxFrames = 1024;

    /** Without bones and frames, named after its identifier. */
    KTANIM();
    /** A copy has a grid of its own, and is on no list. */
    KTANIM(const KTANIM &other);
    KTANIM &operator=(const KTANIM &other);
    ~KTANIM();

    /** Reads the file KTA path + `fileName`, whose name becomes the animation's. False, with nothing changed,
     * for null, a missing or damaged file, or one of more than 128 bones or 1024 frames. */
    bool load(const char *fileName);
    /** Writes the file `path`, as it is given, without the KTA path. False for null or when it cannot be
     * written. */
    bool save(const char *path);

    /** First animation of that name; a loaded one has the name of its file. Null when `name` is null or
     * unknown. */
    static KTANIM *findByFilename(const char *name);
    /** First animation of that identifier; null when there is none. */
    static KTANIM *findById(unsigned int id);
    static unsigned int getNumberOfAnims();
    static KTANIM *getFirst() { return firstAnim; }
    /** Destroys every animation; false when there is none. */
    static bool cleanUp();
    /** Prefix of file names, up to 255 characters; null empties it. */
    static void setKTAPath(const char *path);
    static char *getKTAPath() { return ktaPath; }

    /** Counts beyond the limits become the limits. */
    void setNumberOfFrames(unsigned int count);
    void setNumberOfBones(unsigned int count);
    unsigned int getNumberOfFrames() const { return numberOfFrames; }
    unsigned int getNumberOfBones() const { return numberOfBones; }
    /** Whether `apply` writes positions too. */
    void setTranslating(bool status) { translating = status; }
    bool getTranslating() const { return translating; }
    unsigned int getId() const { return id; }
    const char *getName() const { return name; }

    /** Names a bone; false in every case, which does not mean failure. Longer names are cut at 255
     * characters. */
    bool setBoneName(unsigned int index, const char *text);
    /** Null for an index of 128 or more. */
    const char *getBoneName(unsigned int index) const;
    /** Index of the first bone of that name; -1 when there is none. */
    int findBoneByName(const char *text) const;

    /** A keyframe of the grid; null outside it (frames 0 to 1024, of which the last is a spare one). */
    KTBONEFRAME *getKeyframe(unsigned int frame, unsigned int bone);
    /** The rotation of a keyframe, in degrees; zero outside the grid. */
    R3XVECTOR3D getFrameRotation(unsigned int frame, unsigned int bone);
    /** Takes number and names of the bones from a mesh; false for null and for a mesh without bones. */
    bool acquireStructure(KTMESH *mesh);
    /** Set a keyframe's rotation, or one component of it, in degrees. False when `frame` is beyond the number
     * of frames (which itself is accepted, one past the last frame) or there is no such bone. */
    bool setFrame(unsigned int frame, unsigned int bone, float x, float y, float z);
    bool setFrameRotationX(unsigned int frame, unsigned int bone, float degrees);
    bool setFrameRotationY(unsigned int frame, unsigned int bone, float degrees);
    bool setFrameRotationZ(unsigned int frame, unsigned int bone, float degrees);
    /** Marks a keyframe as not set; false when it was not, and outside the range of `setFrame`. */
    bool unsetFrame(unsigned int frame, unsigned int bone);
    /** Zeroes all keyframes inside the present counts. */
    void reset();
    /** Fills the frames between set keyframes from `first` up to `last` by linear interpolation of the
     * rotations. False unless first < number of frames, last <= number of frames and first < last. */
    bool createKeyframes(unsigned int first, unsigned int last);
    /** Writes a frame into the nodes below `root` that have the bones' names; bones without a node are
     * skipped. False for a frame beyond the last and for a null root. */
    bool apply(unsigned int frame, KTNODE *root);

    unsigned int id;
    char name[256];
    bool translating;
    std::uint16_t numberOfBones;
    std::uint16_t numberOfFrames;
    char boneNames[maxBones][256];
    union {  // no constructor clears memory that is clear
        /** The last row is the frame one past the last of a full animation. */
        KTBONEFRAME keyframes[maxFrames + 1][maxBones];
    };
    KTANIM *previous, *next;
    KTANIM *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTANIM *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }

    static KTANIM *firstAnim;
    static char ktaPath[256];

   private:
    void clearGrid();
    void release() { delist(); }
    void copyFields(const KTANIM &other);
    KTBONEFRAME *settable(unsigned int frame, unsigned int bone);
    void interpolate(unsigned int bone, unsigned int from, unsigned int to);
    unsigned int bones() const;
    unsigned int frames() const;
};

#endif
