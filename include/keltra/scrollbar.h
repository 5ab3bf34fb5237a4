// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCROLLBAR_H
#define KELTRA_SCROLLBAR_H

#include <keltra/button.h>

/** A horizontal scroll bar: a thin track with a cursor that the user drags. It owns its cursor, a button and
 * its first child; a copied bar points to the original's. Set the range first, then the value, and ask for
 * the value each frame: the bar reports nothing. Its cursor does, as the normal button that it is: let go
 * of, it is the widget that `KTELEMENT::manageGUIEvents` reports. */
class KT_API KTHSCROLLBAR : public KTBOX {
   public:
    /** 64 x 4 pixels, with a cursor of 16 x 8 in the middle. A copy points to the original's cursor. */
    KTHSCROLLBAR();
    KTHSCROLLBAR(const KTHSCROLLBAR &other);
    KTHSCROLLBAR &operator=(const KTHSCROLLBAR &other);
    ~KTHSCROLLBAR() override;

    /** The value is kept within the range. An empty range gives the cursor no place: the value is then the
     * minimum. */
    void setValue(float value);
    float getValue() const;
    /** Range of the value; 0 to 1 at first. To be set before the value. */
    void setMinValue(float value) { minValue = value; }
    float getMinValue() const { return minValue; }
    void setMaxValue(float value) { maxValue = value; }
    float getMaxValue() const { return maxValue; }
    /** Length of the cursor in pixels; its centre stays. */
    void setCursorSize(int pixels);
    /** Shows or hides the track and the cursor. */
    void setDisplayStatus(bool status);
    /** Null when the cursor was destroyed. */
    KTBUTTON *getCursor() const { return cursor; }
    /** Draws the track and adapts the cursor's limits to it. True. */
    bool render(void *data) override;

    unsigned int reserved[2];  ///< carried along by copies; nothing reads them
    float minValue, maxValue;
    KTBUTTON *cursor;
};

/** A vertical scroll bar: the horizontal one with the axes exchanged; its minimum is at the top. */
class KT_API KTVSCROLLBAR : public KTBOX {
   public:
    /** 4 x 64 pixels, with a cursor of 8 x 16 in the middle. A copy points to the original's cursor. */
    KTVSCROLLBAR();
    KTVSCROLLBAR(const KTVSCROLLBAR &other);
    KTVSCROLLBAR &operator=(const KTVSCROLLBAR &other);
    ~KTVSCROLLBAR() override;

    /** As those of the horizontal bar, along y. */
    void setValue(float value);
    float getValue() const;
    void setMinValue(float value) { minValue = value; }
    float getMinValue() const { return minValue; }
    void setMaxValue(float value) { maxValue = value; }
    float getMaxValue() const { return maxValue; }
    void setCursorSize(int pixels);
    void setDisplayStatus(bool status);
    KTBUTTON *getCursor() const { return cursor; }
    bool render(void *data) override;

    unsigned int reserved[2];
    float minValue, maxValue;
    KTBUTTON *cursor;
};

#endif
