// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_INPUT_H
#define KELTRA_KIT_INPUT_H

/** @file
 *
 * The events of SDL 1.2 as an application wants them: a pen that goes to the interface first and to the
 * scene only when no widget has it, characters for text fields, named actions for keys, and the end of the
 * program. In a frame: `update` at the top, `dispatch` after `KELTRA::end2D`. */

#include <keltra/kit/export.h>
#include <keltra/vector.h>

union SDL_Event;
class KTTEXTFIELD;

/** The actions that exist from the start, by number; in brackets their names and first keys. */
enum KT_INPUT_ACTION {
    KT_ACTION_UP = 0,      ///< ("up": up)
    KT_ACTION_DOWN = 1,    ///< ("down": down)
    KT_ACTION_LEFT = 2,    ///< ("left": left)
    KT_ACTION_RIGHT = 3,   ///< ("right": right)
    KT_ACTION_FIRST = 4,   ///< ("first": return)
    KT_ACTION_SECOND = 5,  ///< ("second": space)
    KT_ACTION_THIRD = 6,   ///< ("third": tab)
    KT_ACTION_EXIT = 7     ///< ("exit": escape), which also asks for the end of the program
};

/** Pen, keys and actions. One object is enough. It owns nothing and allocates nothing. */
class KTKIT_API KTINPUT {
   public:
    static const unsigned int maxActions = 24;
    static const unsigned int keysOfAction = 2;
    static const unsigned int maxWaiting = 16;  ///< states of the pen, and characters, that wait

    /** With the actions of `KT_INPUT_ACTION` and their first keys. */
    KTINPUT();

    // --- actions

    /** Adds an action and binds it to a key of SDL (an `SDLKey`, 0 for none). Returns its number; -1, with a
     * fault, for null, an empty or used name, one of more than 23 characters, and beyond `maxActions`. */
    int addAction(const char *name, int key);
    /** -1 when there is none of that name. */
    int findAction(const char *name) const;
    /** Null for a number without an action. */
    const char *getActionName(unsigned int action) const;
    unsigned int getNumberOfActions() const { return numberOfActions; }
    /** Binds a key (0 for none) to place 0 or 1 of an action; a key may serve several. False, with a fault,
     * for an action or a place that does not exist. */
    bool bind(unsigned int action, unsigned int place, int key);
    /** 0 for none. */
    int getKey(unsigned int action, unsigned int place) const;
    /** Reads bindings from a settings file: lines as `action_up = "up|w"`, with one or two of SDL's names of
     * keys, or none. The engine must be running: SDL does not know its keys before. False for a file that
     * cannot be read; an unknown action or key makes a warning, and that name is left out. */
    bool loadBindings(const char *path);

    // --- the frame

    /** Starts a frame: takes all events from SDL. `seconds` is the real time since the last call; it tells
     * single from double taps. Characters are switched on (`SDL_EnableUNICODE`) when they are off. */
    void update(float seconds);
    /** The same for an application that takes the events itself: `begin`, then `handle` for each. Null and
     * events of other kinds are left alone. */
    void begin(float seconds);
    void handle(const SDL_Event *event);
    /** What `handle` does for pen and keys, for replays and tests: pixels of the window from the top left; an
     * `SDLKey` and the character that it types, 0 for none. */
    void putPen(int x, int y, bool isDown);
    void putKey(int key, int character, bool isDown);
    void putQuit() { quit = true; }

    /** To be called once a frame after `KELTRA::end2D`: hands the oldest waiting state of the pen and the
     * oldest waiting character to the interface (`KTELEMENT::manageGUIEvents`) and finds out whose the pen
     * is. Returns the identifier of the widget that reported itself, 0 for none. The answers about the pen
     * stay as they are until the next call. */
    unsigned int dispatch();

    // --- answers

    /** Whether the window was closed or the key of `KT_ACTION_EXIT` went down; it stays true. */
    bool hasQuit() const { return quit; }
    /** Of an action in this frame; false for a number without an action. While a text field has the focus,
     * keys that type a character start no action. */
    bool isHeld(unsigned int action) const;
    bool wasPressed(unsigned int action) const;
    bool wasReleased(unsigned int action) const;

    /** Where the pen is, in pixels of the window; what `KELTRA::select` and the interface take. */
    int getPenX() const { return penX; }
    int getPenY() const { return penY; }
    /** The same point as the 2D pass counts it, turned in landscape mode. */
    R3XVECTOR2D getPoint() const { return point; }
    bool isPenDown() const { return down; }
    /** The pen is over a widget, or a widget holds it. */
    bool isOnInterface() const { return onInterface; }
    /** The pen is down, and the press began on no widget: the scene has it until it is lifted. */
    bool isOnScene() const { return onScene; }
    /** The scene's press began in this frame. */
    bool hasTouched() const { return touched; }
    /** The scene's pen was lifted in this frame: after a drag, or where it was put down, which is a tap. */
    bool hasDropped() const { return dropped; }
    bool hasTapped() const { return tapped; }
    /** The second tap at one place within 0.4 seconds; it is a tap as well. */
    bool hasDoubleTapped() const { return doubleTapped; }
    /** The scene's pen has moved more than 6 pixels away since it was put down. */
    bool isDragging() const { return dragging; }
    /** While dragging: the movement since the last frame, in pixels of the 2D pass; otherwise 0. */
    R3XVECTOR2D getDrag() const { return drag; }
    /** Where the press on the scene began, in pixels of the 2D pass. */
    R3XVECTOR2D getStart() const { return start; }
    /** The field that has the focus; null for none. Good until widgets are destroyed. */
    KTTEXTFIELD *getFocus() const { return focus; }

   private:
    struct ACTION {
        char name[24];
        int key[keysOfAction];
        bool isDown[keysOfAction];
        bool pressed, released;
    };
    struct PEN {
        int x, y;
        bool isDown, isMove;
    };
    void takePen();
    char takeCharacter();
    void followScene(bool wasDown, R3XVECTOR2D before);
    void lift();
    void findFocus();
    void bindNames(unsigned int action, const char *names, const char *path, unsigned int line);

    ACTION actions[maxActions];
    unsigned int numberOfActions;
    PEN waiting[maxWaiting];
    unsigned int numberOfWaiting;
    char characters[maxWaiting];
    unsigned int numberOfCharacters;
    int penX, penY;
    R3XVECTOR2D point, start, drag, lastTap;
    float time, lastTapTime;
    bool quit, down, onInterface, onScene, touched, dropped, tapped, doubleTapped, dragging;
    KTTEXTFIELD *focus;
};

#endif
