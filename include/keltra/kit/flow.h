// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_FLOW_H
#define KELTRA_KIT_FLOW_H

/** @file
 *
 * Values that change over time, and the screens of a game: title, play, pause. */

#include <keltra/kit/export.h>

/** How a value goes from its start to its end. */
enum KT_EASE {
    KT_EASE_LINEAR = 0,
    KT_EASE_IN = 1,      ///< begins slowly
    KT_EASE_OUT = 2,     ///< ends slowly
    KT_EASE_IN_OUT = 3,  ///< both
    KT_EASE_BACK = 4,    ///< goes a tenth too far, and back
    KT_EASE_BOUNCE = 5   ///< falls and bounces
};

/** A value on its way. To move more than one, mix with `getValue` from 0 to 1: `a.lerp(b, tween.getValue())`.
 */
class KTKIT_API KTTWEEN {
   public:
    /** Ended, at 0. */
    KTTWEEN() : from(0.0f), to(0.0f), length(0.0f), time(0.0f), kind(KT_EASE_LINEAR) {}
    /** From one value to another within so many seconds; 0 and less is there at once. */
    void start(float fromValue, float toValue, float seconds, KT_EASE ease = KT_EASE_IN_OUT);
    /** The same from the present value. */
    void go(float toValue, float seconds, KT_EASE ease = KT_EASE_IN_OUT) {
        start(getValue(), toValue, seconds, ease);
    }
    /** Moves on; returns `getValue`. */
    float update(float seconds);
    /** Exactly the end once it has ended. */
    float getValue() const;
    bool hasEnded() const { return time >= length; }
    /** The curve itself: `t` from 0 to 1, which gives 0 and 1 at its ends. */
    static float ease(KT_EASE kind, float t);

   private:
    float from, to, length, time;
    KT_EASE kind;
};

/** One screen of a game. An application derives its own; nothing here is called by the engine. */
class KTKIT_API KTSCREEN {
   public:
    virtual ~KTSCREEN();
    /** It comes to the top for the first time; another one comes above it, or goes again; it is taken off. */
    virtual void enter() {}
    virtual void cover() {}
    virtual void uncover() {}
    virtual void leave() {}
    /** Once a frame while it is on top. */
    virtual void update(float seconds);
    /** Between `begin3D` and `end3D`, and between `begin2D` and `end2D`. */
    virtual void draw3D() {}
    virtual void draw2D() {}
    /** Whether the screen below shows: true for a menu over a halted game. */
    virtual bool isOverlay() const { return false; }
};

/** A stack of screens, of which the top one runs. It owns none of them; they have to outlive it, or be taken
 * off first. Changes that screens ask for take effect at the next `update`. */
class KTKIT_API KTSCREENS {
   public:
    static const unsigned int maxScreens = 8;

    KTSCREENS() : screens(), count(0), pending(KT_NOTHING), next(nullptr) {}
    KTSCREENS(const KTSCREENS &) = delete;
    KTSCREENS &operator=(const KTSCREENS &) = delete;

    /** In place of all others. Null takes all off. */
    void change(KTSCREEN *screen) { ask(KT_CHANGE, screen); }
    /** Above the others. False, with a fault, for null, one that is on already, and beyond 8. */
    bool push(KTSCREEN *screen);
    /** Takes the top one off. */
    void pop() { ask(KT_POP, nullptr); }
    /** Makes the change that was asked for last since the last frame, and updates the top screen. */
    void update(float seconds);
    /** Draws the top screen, and those that show below it first. */
    void draw3D() const;
    void draw2D() const;
    /** Null for none. */
    KTSCREEN *getTop() const { return count ? screens[count - 1] : nullptr; }
    unsigned int getNumberOfScreens() const { return count; }

   private:
    enum CHANGE { KT_NOTHING, KT_CHANGE, KT_PUSH, KT_POP };
    void ask(CHANGE change, KTSCREEN *screen) { pending = change, next = screen; }
    unsigned int firstShown() const;

    KTSCREEN *screens[maxScreens];
    unsigned int count;
    CHANGE pending;
    KTSCREEN *next;
};

#endif
