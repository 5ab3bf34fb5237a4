// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_CLIP_H
#define KELTRA_KIT_CLIP_H

/** @file
 *
 * Clips, as compact as their files, and players that put them on characters: with a rate, looped or once,
 * cross-faded, in layers, with events. Characters share clips. See `docs/kit.md`. */

#include <keltra/kit/export.h>
#include <keltra/vector.h>

#include <cstdint>

class KTANIM;
class KTNODE;

/** A skeletal animation of bones and frames, with a rotation and a position each, in one block of memory: of
 * 30 bones and 60 frames some 45 KB. It is shared by all players that play it and has to outlive them. */
class KTKIT_API KTCLIP {
   public:
    static const unsigned int maxEvents = 8;

    /** Empty: without bones and frames, 24 frames a second. */
    KTCLIP();
    ~KTCLIP();
    KTCLIP(const KTCLIP &) = delete;
    KTCLIP &operator=(const KTCLIP &) = delete;

    /** Reads the file KTA path + `fileName` as `KTANIM::load` does, which refuses what it refuses, and takes
     * 3.7 MB of address space until it is done. False, with nothing changed, when it fails. */
    bool load(const char *fileName);
    /** Takes over what an animation holds; the animation is not needed afterwards. False, with nothing
     * changed and a fault, for null and when out of memory. */
    bool take(const KTANIM *animation);

    /** 0 for a clip that holds nothing. */
    unsigned int getNumberOfBones() const { return bones; }
    unsigned int getNumberOfFrames() const { return frames; }
    /** Null for an index beyond the last. */
    const char *getBoneName(unsigned int bone) const;
    /** -1 when there is none. */
    int findBone(const char *name) const;
    /** Degrees and position in a frame; 0 beyond the last bone or frame. */
    R3XVECTOR3D getRotation(unsigned int frame, unsigned int bone) const;
    R3XVECTOR3D getPosition(unsigned int frame, unsigned int bone) const;

    /** Frames a second; 24 at first. Not above 0: 24. */
    void setFrameRate(float framesPerSecond) { rate = framesPerSecond > 0.0f ? framesPerSecond : 24.0f; }
    float getFrameRate() const { return rate; }
    /** Seconds that all frames take at the rate 1. */
    float getLength() const { return static_cast<float>(frames) / rate; }

    /** A player that comes to this frame reports `code` (not 0). False, with a fault, for a frame beyond the
     * last, the code 0, and a ninth event. */
    bool addEvent(unsigned int frame, int code);

    /** Bytes of the block that holds names and frames. */
    unsigned int getMemory() const { return memory; }

   private:
    friend class KTPLAYER;
    struct KEY {
        float rotation[3], position[3];
    };
    struct EVENT {
        unsigned int frame;
        int code;
    };
    void copyNames(const KTANIM &animation);
    const KEY &key(unsigned int frame, unsigned int bone) const { return keys[frame * bones + bone]; }

    KEY *keys;  // the block: the keys, then where each name begins, then the names
    std::uint32_t *nameStarts;
    char *names;
    unsigned int bones, frames, memory;
    float rate;
    EVENT events[maxEvents];
    unsigned int numberOfEvents;
};

/** What a layer does with the pose below it. */
enum KT_LAYER {
    KT_LAYER_REPLACE = 0,  ///< turns it into the layer's pose, as far as the weight says
    KT_LAYER_ADD = 1       ///< adds what the layer's pose differs from the clip's first frame
};

/** Plays clips on one character, whose nodes it writes to as `KTANIM::apply` does: one base clip, which fades
 * over to the next, and layers above it. The nodes have to outlive it, or be unbound first. */
class KTKIT_API KTPLAYER {
   public:
    static const unsigned int layers = 2;
    static const unsigned int maxWaiting = 16;  ///< events that wait to be taken

    KTPLAYER();
    ~KTPLAYER();
    KTPLAYER(const KTPLAYER &) = delete;
    KTPLAYER &operator=(const KTPLAYER &) = delete;

    /** Binds it to the character below `root` and makes room for clips of up to `bones` bones (1 to 128; some
     * 150 bytes each). Stops what was playing. False, with a fault, for null, another number of bones, and
     * when out of memory; it is not bound then. */
    bool bind(KTNODE *root, unsigned int bones = 64);
    /** Forgets all nodes and clips. */
    void unbind();
    KTNODE *getRoot() const { return root; }

    /** Positions are written too; off at first, as `KTANIM::setTranslating`. */
    void setTranslating(bool status) { translating = status; }
    /** Poses between two frames are interpolated; off at first. Smoother in slow motion, at some cost. */
    void setSmooth(bool status) { smooth = status; }

    /** Plays a clip from its beginning: `loop`ed, or once and then held in its last frame. The pose so far
     * fades into it within `fade` seconds (0: at once). A clip that plays already and loops goes on. Looks up
     * the bones by their names in the tree; those that are not there are left out. False, with a fault, for
     * null, an empty clip, one of more bones than there is room for, and while it is not bound. */
    bool play(const KTCLIP *clip, bool loop = true, float fade = 0.0f);
    /** The same from frame `first` up to frame `last`, both included. False for a range that the clip has
     * not. */
    bool playRange(const KTCLIP *clip, unsigned int first, unsigned int last, bool loop = true,
                   float fade = 0.0f);
    /** Nothing plays any more, layers included; the pose stays. */
    void stop();
    /** The base clip; null for none. */
    const KTCLIP *getClip() const { return base.clip; }
    /** Rate of the base clip; 1 at first, 0 holds it. Below 0, and not a number, is 0. */
    void setRate(float factor) { base.rate = factor > 0.0f ? factor : 0.0f; }
    float getRate() const { return base.rate; }
    /** The base clip played once has come to its end. */
    bool hasEnded() const { return base.ended; }
    /** Whether a fade is not over yet. */
    bool isFading() const { return fadeLeft > 0.0f; }
    /** Seconds into the base clip, or into its range; setting it makes no events. Outside it is wrapped, or
     * limited for a clip that does not loop. */
    float getTime() const { return base.time; }
    void setTime(float seconds);
    /** The frame of the base clip that is shown. */
    unsigned int getFrame() const;

    /** Plays a clip in layer 0 or 1 above the base, for the bones below `bone` and it, or for all for null.
     * It fades in within `fade` seconds. Of layers played once, the weight fades out before the end as it
     * faded in, and the layer is free then. False as `play`, and for a layer or a bone that does not exist.
     */
    bool playLayer(unsigned int layer, const KTCLIP *clip, KT_LAYER kind, const char *bone, bool loop,
                   float fade);
    /** Fades the layer out within so many seconds. */
    void stopLayer(unsigned int layer, float fade);
    /** 0 to 1, on top of the fades; 1 at first. */
    void setLayerWeight(unsigned int layer, float weight);
    bool isLayerPlaying(unsigned int layer) const {
        return layer < layers && above[layer].track.clip != nullptr;
    }

    /** Takes the horizontal movement of a bone (its x and z) out of the pose, which stays where the base
     * clip's first frame has it, and tells it by `getStep`. Null for none, as at first. Takes effect with the
     * next `play`; it needs `setTranslating`. */
    void setRootBone(const char *name);
    /** The movement of the last `update` in the coordinates of the character's root, turned by the root's
     * rotation about y: to be added to its position. Over the seam of a loop it is that of the last two
     * frames. */
    R3XVECTOR3D getStep() const { return step; }

    /** Moves all clips on by so many seconds (0 or more) and writes the pose. With one clip and no fade it is
     * bit for bit what `KTANIM::apply` writes for `getFrame`. */
    void update(float seconds);
    /** Takes the oldest event that has come: its code, or 0 when there is none. The base clip makes events;
     * of more than 16 that wait the newest are dropped. */
    int takeEvent();

    /** Hangs a node below a bone of the character, such as a lantern into a hand: it moves with it from then
     * on, with its own position and rotation as the offset. It is unlinked from its former parent. False,
     * with a fault, for null, a bone that does not exist, and while it is not bound. */
    bool attach(KTNODE *node, const char *bone);

   private:
    struct POSE {
        R3XVECTOR3D rotation, position;
    };
    struct TRACK {
        const KTCLIP *clip;
        KTNODE **nodes;  // of each bone of the clip; null for those that are not there
        unsigned int first, last;
        float time, rate;  // seconds since the first frame
        bool loop, ended;
        int rootBone;
    };
    struct LAYER {
        TRACK track;
        KT_LAYER kind;
        float weight, level, speed, fade;  // the level goes from 0 to 1 and back, so much a second
        POSE *rest;                        // of bones that the base clip does not write
        bool *isResting;
    };

    bool accept(const char *call, const KTCLIP *clip, unsigned int first, unsigned int last) const;
    void startTrack(TRACK *track, const KTCLIP *clip, KTNODE *from, bool loop);
    void startFade(float fade);
    void markResting(LAYER *layer);
    static void resetResting(const LAYER &layer);
    static float lengthOf(const TRACK &track);
    static unsigned int frameOf(const TRACK &track);
    static int boneOf(const TRACK &track, const KTNODE *node);
    static unsigned int advance(TRACK *track, float seconds);
    POSE poseOf(const TRACK &track, unsigned int bone) const;
    POSE basePose(unsigned int bone) const;
    float fadeWeight() const;
    static R3XVECTOR3D rootPosition(const TRACK &track, float time);
    static R3XVECTOR3D rootStep(const TRACK &track, float before, unsigned int wraps);
    void passEvents(float before, unsigned int wraps);
    void passEventsBetween(float from, float to);
    void moveBase(float seconds);
    void writeBase();
    void moveLayer(LAYER *layer, float seconds);
    void writeLayer(const LAYER &layer);

    KTNODE *root;
    unsigned int room;  // bones
    void *block;
    TRACK base, former;
    LAYER above[layers];
    POSE *faded, *spare;      // of each bone of the base clip: where the fade began
    std::uint8_t *fadedBone;  // its number in the former clip, or 255
    float fadeLength, fadeLeft;
    bool translating, smooth;
    int waiting[maxWaiting];
    unsigned int numberOfWaiting;
    char rootName[64];
    R3XVECTOR3D step;
};

#endif
