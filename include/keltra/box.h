// SPDX-License-Identifier: Zlib
#ifndef KELTRA_BOX_H
#define KELTRA_BOX_H

#include <keltra/node.h>

namespace keltra {
struct Part;  // the list of the parts of a box
}

class KTFONT;
class KTSHADER;
class KTTEXTURE;

/** Texture coordinates (u, v) of the corners of a box: top left, top right, bottom left, bottom right. */
class KT_API KTBOXCOORD {
   public:
    /** The whole image: (0, 1), (1, 1), (0, 0), (1, 0). */
    KTBOXCOORD();
    /** The part from (0, 0) to (u, v); `flipped` for an image that is stored upside down. */
    KTBOXCOORD(float u, float v, bool flipped);

    float coord[8];
};

/** The base of every widget of the interface: a coloured, optionally textured rectangle with a bevelled
 * border, in pixels, x to the right and y downward from the parent's position. Boxes nest: a window carries
 * its widgets as children.
 *
 * Pass the outermost ones between `KELTRA::begin2D` and `end2D`, then hand pointer and keys to
 * `KTELEMENT::manageGUIEvents`. Textures and shaders are not owned; they are forgotten when they are
 * destroyed. */
class KT_API KTBOX : public KTNODE, public KTLISTED<KTBOX>, public KTLISTED<KTBOX, keltra::Part> {
   public:
    /** 64 x 64 pixels, grey, opaque, in front of all older boxes; displayed, not checked, static. */
    KTBOX();
    /** Copies every field, place in the stacking order included. The texture's count of uses stays. */
    KTBOX(const KTBOX &other);
    KTBOX &operator=(const KTBOX &other);
    ~KTBOX() override;

    /** Width and height in pixels. */
    void setSizes(int width, int height);
    R3XVECTOR2D getSizes() const { return R3XVECTOR2D(sizeX, sizeY); }
    void setSizeY(int height) { sizeY = height; }
    int getSizeY() const { return sizeY; }
    /** Rectangle that a drag keeps the box in, relative to the parent, while `limitStatus` is set. */
    void setLimits(int startX, int startY, int endX, int endY);
    int getStartX() const { return startX; }
    int getStartY() const { return startY; }
    int getEndX() const { return endX; }
    int getEndY() const { return endY; }
    /** Border width in pixels; of more than 1,024 the first 1,024 are drawn. */
    void setThickness(unsigned int pixels) { thickness = pixels; }
    unsigned int getThickness() const { return thickness; }
    /** RGBA from 0 to 1. */
    void setColor(float r, float g, float b, float a) { color.set(r, g, b, a); }
    void setColor(R3XVECTOR4D rgba) { color = rgba; }
    R3XVECTOR4D getColor() const { return color; }
    /** True when alpha is not exactly 1. Only then the box blends, and a texture shows its own alpha. */
    bool isTransparent() const { return color.w != 1.0f; }
    /** Whether the pointer finds the box; off at first but for buttons, fields and windows. */
    void setCheckStatus(bool status) { checkStatus = status; }
    bool getCheckStatus() const { return checkStatus; }
    /** Whether the box itself is drawn and found; its children decide for themselves, also those of a
     * window. */
    void setDisplayStatus(bool status) { displayStatus = status; }
    bool getDisplayStatus() const { return displayStatus; }
    /** A box that is not static can be dragged. */
    void setStaticStatus(bool status) { staticStatus = status; }
    bool isStatic() const { return staticStatus; }
    /** Pressed now; of a switch: on. */
    void setClickedStatus(bool status) { clickedStatus = status; }
    bool getClickedStatus() const { return clickedStatus; }
    bool isClicked() const { return clickedStatus; }
    /** Whether a drag keeps the box within its limits; off at first. */
    void setLimitStatus(bool status) { limitStatus = status; }
    bool getLimitStatus() const { return limitStatus; }
    /** Whether drawing is clipped to the enclosing window. */
    void setScissorStatus(bool status) { scissorStatus = status; }
    bool getScissorStatus() const { return scissorStatus; }
    /** Stacking order: the larger stamp is in front. */
    long getForemostTimeStamp() const { return foremostTimeStamp; }
    /** Brings the box and its subtree to the front, children above their parents. The argument is not used.
     * True. */
    bool setForemost(long = 0);
    /** The next stamp of the stacking order. */
    static long getNextCounter();
    /** Texture of the face; its count of uses follows. Null for none. True. */
    bool setTexture(KTTEXTURE *texture);
    /** Null for none. True. */
    bool setShader(KTSHADER *shader);
    /** The part of the texture that the face shows. */
    void setBoxCoords(KTBOXCOORD coords) { boxCoord = coords; }
    KTBOXCOORD getBoxCoord() const { return boxCoord; }

    /** Whether the point, in pixels of the 2D pass, lies on the box, edges included, and within the nearest
     * window around it (a title bar stands outside of its window). False while `checkStatus` is off. */
    bool checkBoundaries(int x, int y);
    /** Cuts the movement (*dx, *dy) so that the box stays in its limits; the far edges win in a box that is
     * larger than they are. False, with nothing changed, for null and while `limitStatus` is off. */
    bool checkLimits(int *dx, int *dy);
    /** Draws the box. `data` is its `KTELEMENT`; null draws under the current matrix. False when it is not
     * displayed. */
    bool render(void *data) override;

    int sizeX, sizeY;
    int startX, startY, endX, endY;
    unsigned int thickness;
    R3XVECTOR4D color;
    bool checkStatus;
    bool displayStatus;
    bool staticStatus;
    bool clickedStatus;
    bool limitStatus;
    bool scissorStatus;
    long foremostTimeStamp;
    KTTEXTURE *texture;
    KTSHADER *shader;
    KTBOXCOORD boxCoord;

   protected:
    /** For windows and scroll bars: `part` is a box that this one has made, points to and owns; the pointer
     * is cleared when the part is destroyed. */
    void makePart(KTBOX &part);
    /** For their destructors. */
    void destroyParts();

   private:
    static void forgetFont(const keltra::Gone<KTFONT> &gone);
    static void forgetShader(const keltra::Gone<KTSHADER> &gone);
    static void forgetTexture(const keltra::Gone<KTTEXTURE> &gone);
    void copyBox(const KTBOX &other);
    void forgetPart();
    void losePart(const KTBOX *gone);
    template <class Visit>
    static void visitBoxes(unsigned int most, Visit visit);

    static const keltra::OnGone<KTFONT> onFontGone;
    static const keltra::OnGone<KTSHADER> onShaderGone;
    static const keltra::OnGone<KTTEXTURE> onTextureGone;
    static long counter;
    static KTLISTED<KTBOX> *allBoxes;
    KTLISTED<KTBOX, keltra::Part> *parts;
    KTBOX *partOf;  // the window or scroll bar that made this box as a part of it
};

#endif
