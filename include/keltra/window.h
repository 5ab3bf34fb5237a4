// SPDX-License-Identifier: Zlib
#ifndef KELTRA_WINDOW_H
#define KELTRA_WINDOW_H

#include <keltra/button.h>
#include <keltra/scrollbar.h>

#if defined(__GNUC__)
#define KELTRA_WINDOW_PRINTF_LIKE __attribute__((format(printf, 2, 3)))
#else
#define KELTRA_WINDOW_PRINTF_LIKE
#endif

/** A movable panel with a title bar, a scroll bar and a block of wrapped text. What is linked below it is
 * clipped to its body and scrolled with its text. It owns its title bar and its scroll bar, which are its
 * first two children; a copied window points to the original's. Set the size and the font, write, then
 * format. Hiding a window (`setDisplayStatus`) leaves its children visible: to hide all of it, do not pass
 * it. */
class KT_API KTWINDOW : public KTBUTTON {
   public:
    static const unsigned int textSize = 3968;

    /** 128 x 128 pixels, with a title bar above and a scroll bar at the right; unfolded. A copy points to the
     * original's parts. */
    KTWINDOW();
    KTWINDOW(const KTWINDOW &other);
    KTWINDOW &operator=(const KTWINDOW &other);
    ~KTWINDOW() override;

    /** Caption of the title bar; null and text of 256 characters or more leave it as it was. */
    void setCaption(const char *text);
    /** Font of the window and of its title bar. */
    void setFont(KTFONT *newFont);
    /** Size of the body in pixels; title bar and scroll bar follow, and the window is scrolled to its top. */
    void setSizes(int width, int height);
    /** Null when the title bar was destroyed. */
    KTBUTTON *getTitleBar() const { return titleBar; }
    /** What the contents are scrolled by, in pixels; each render sets it from the scroll bar. */
    int getScrollLine() const { return scrollLine; }
    void setScrollLine(int pixels) { scrollLine = pixels; }
    /** Folded to its title bar. */
    bool isMinimized() const { return !maximized; }

    /** Empties the text. */
    void clear();
    /** Appends formatted text (printf rules). False, with nothing appended, for null and when the whole text
     * would take 3,968 characters or more. End the last line with a line feed: without, it lies below what
     * the scroll bar reaches. */
    bool write(const char *format, ...) KELTRA_WINDOW_PRINTF_LIKE;
    /** Wraps the text to the window's width; new text shows only then. False without a font. */
    bool format();
    /** Folds or unfolds the window, with "[+] " before the title of a folded one; returns whether it is
     * unfolded now. */
    bool minmaximize();
    /** Clips drawing to the window's body, and to the whole screen again. */
    void enableScissor();
    void disableScissor();
    /** Measures the contents, adapts the scroll bar and moves the children by what was scrolled. True. Each
     * render does it; call it before setting the scroll bar of a window that was not drawn since its
     * contents changed. */
    bool updateScroll();
    /** Draws body and text; nothing while folded. True. */
    bool render(void *data) override;

    using KTNODE::maximized;  ///< a bool
    char text[textSize];
    char formattedText[textSize];
    KTBUTTON *titleBar;
    KTVSCROLLBAR *scrollBar;
    int scrollLine;      ///< pixels
    int previousScroll;  ///< what the children are moved by now
    int contentHeight;
    int lineCount;  ///< pixels of height that line breaks add to the text

   private:
    void copyWindow(const KTWINDOW &other);
};

#undef KELTRA_WINDOW_PRINTF_LIKE

#endif
