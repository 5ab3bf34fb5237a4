// SPDX-License-Identifier: Zlib
#include <keltra/window.h>

#include <keltra/font.h>
#include <keltra/glbridge.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>

#include "core/glbridge.h"
#include "foundation/fault.h"
#include "foundation/text.h"
#include "gui/geometry.h"
#include "gui/widgets.h"

#include <GLES/gl.h>

#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

const unsigned int KTWINDOW::textSize;

namespace {

constexpr int kTitleHeight = 19;
constexpr int kScrollWidth = 8;
constexpr int kScrollMargin = 16;  // above and below the scroll bar
constexpr int kLabelHeight = 16;
constexpr int kShortestCursor = 8;
constexpr unsigned int kFirstWidget = 2;  // children before it are the title bar and the scroll bar
constexpr unsigned int kWriteBuffer = 4000;
constexpr char kFoldedMark[] = "[+] ";
constexpr std::size_t kMarkLength = sizeof kFoldedMark - 1;
// This part of the scroll offset is added to the contents, as room below the last widget.
constexpr float kScrollSlack = 0.01f;

// Twice the text and its end: each character may get a line break of its own.
char wrapped[2 * KTWINDOW::textSize];

// The larger of `height` and the height that holds the child. Children are at their scrolled positions, so
// the offset is added: that of this frame for a label, that of the frame before for any other child.
// Deliberate: applications rely on the scroll range.
int growByChild(const KTWINDOW &window, KTNODE &child, int height) {
    float y = child.position.y, scrolled = static_cast<float>(window.previousScroll);
    if (child.type == KT_LABEL) {
        float bottom = static_cast<float>(window.scrollLine) + y + kLabelHeight;
        if (!(bottom > static_cast<float>(height))) return height;
        return keltra::toInt(scrolled * kScrollSlack + scrolled + y + kLabelHeight);
    }
    const KTBOX *box = keltra::asBox(&child);
    int size = box ? box->sizeY : 0;
    if (std::int64_t{size} + keltra::toInt(y) + window.previousScroll <= height) return height;
    return keltra::toInt(scrolled * kScrollSlack + static_cast<float>(size) + scrolled + y);
}

// Calls `visit` with each child that scrolls with the text.
template <class Visit>
void forScrolled(const KTWINDOW &window, Visit visit) {
    for (unsigned int i = kFirstWidget; i < window.numberOfChildren; ++i) {
        KTNODE *child = window.getChild(i);
        if (child && child->type != KT_WINDOW) visit(*child);
    }
}

}  // namespace

KTWINDOW::KTWINDOW()
    : text(),
      formattedText(),
      titleBar(new (std::nothrow) KTBUTTON),
      scrollBar(new (std::nothrow) KTVSCROLLBAR),
      scrollLine(0),
      previousScroll(0),
      contentHeight(0),
      lineCount(0) {
    joinClass(KT_WINDOW);
    setIdentity(KT_WINDOW, "[window %d]");
    if (!titleBar || !scrollBar) keltra::warnMemory(KT_CALL("KTWINDOW::KTWINDOW"));
    caption[0] = '\0';
    setPosition(0.0f, static_cast<float>(kTitleHeight));
    setColor(0.0f, 0.0f, 0.6f, 0.9f);
    thickness = 2;
    staticStatus = false;
    if (titleBar) {
        makePart(*titleBar);
        titleBar->sizeY = kTitleHeight;
        titleBar->setPosition(0.0f, -static_cast<float>(kTitleHeight));
        titleBar->setColor(0.8f, 0.3f, 0.0f, 0.9f);
        titleBar->setEventType(KT_BUTTON_TITLE);
        titleBar->setStaticStatus(false);
        titleBar->setScissorStatus(false);
        titleBar->link(this);
    }
    if (scrollBar) {
        makePart(*scrollBar);
        scrollBar->link(this);
    }
    setSizes(128, 128);
}

KTWINDOW::KTWINDOW(const KTWINDOW &other) : KTBUTTON(other) {
    joinClass(KT_WINDOW);
    copyWindow(other);
}

KTWINDOW &KTWINDOW::operator=(const KTWINDOW &other) {
    if (this == &other) return *this;
    KTBUTTON::operator=(other);
    copyWindow(other);
    return *this;
}

KTWINDOW::~KTWINDOW() { destroyParts(); }

void KTWINDOW::copyWindow(const KTWINDOW &other) {
    maximized = other.maximized;
    std::memcpy(text, other.text, sizeof text);
    std::memcpy(formattedText, other.formattedText, sizeof formattedText);
    titleBar = other.titleBar;
    scrollBar = other.scrollBar;
    if (titleBar) titleBar->markHeld();
    if (scrollBar) scrollBar->markHeld();
    scrollLine = other.scrollLine;
    previousScroll = other.previousScroll;
    contentHeight = other.contentHeight;
    lineCount = other.lineCount;
}

void KTWINDOW::setCaption(const char *title) {
    if (titleBar) keltra::takeCaption(*titleBar, title, KT_CALL("KTWINDOW::setCaption"));
}

void KTWINDOW::setFont(KTFONT *newFont) {
    KTBUTTON::setFont(newFont);
    if (titleBar) titleBar->setFont(newFont);
}

void KTWINDOW::setSizes(int width, int height) {
    if (titleBar) titleBar->sizeX = width;
    if (scrollBar) {
        scrollBar->sizeY = keltra::toInt(std::int64_t{height} - 2 * kScrollMargin);
        scrollBar->setPosition(static_cast<float>(std::int64_t{width} - kScrollWidth), kScrollMargin);
        scrollBar->setValue(0.0f);
    }
    KTBOX::setSizes(width, height);
}

void KTWINDOW::clear() {
    text[0] = '\0';
    lineCount = 0;
}

bool KTWINDOW::write(const char *format, ...) {
    constexpr keltra::FaultCall call = KT_CALL("KTWINDOW::write");
    if (!format) return keltra::failNull(call, KT_TEXT("format"));
    // Not on the stack, which is small.
    static_assert(sizeof wrapped >= kWriteBuffer, "it has room");
    va_list arguments;
    va_start(arguments, format);
    int length = std::vsnprintf(wrapped, kWriteBuffer, format, arguments);
    va_end(arguments);
    if (length < 0) return keltra::failFormat(call);
    std::size_t present = std::strlen(text), count = static_cast<std::size_t>(length);
    if (count + present >= sizeof text) return keltra::failFull(call, KT_TEXT("text"), sizeof text - 1);
    std::memcpy(text + present, wrapped, count + 1);
    return true;
}

bool KTWINDOW::format() {
    if (!font) return keltra::failState(KT_CALL("KTWINDOW::format"), KT_TEXT("the window has no font"));
    lineCount = font->format(text, wrapped, static_cast<unsigned int>(std::max(sizeX, 0)));
    std::size_t kept = std::min(std::strlen(wrapped), sizeof formattedText - 1);
    std::memcpy(formattedText, wrapped, kept);
    formattedText[kept] = '\0';
    return true;
}

// A caption too long to take the mark stays as it is, and loses its own first characters when the window is
// unfolded.
bool KTWINDOW::minmaximize() {
    maximized = !maximized;
    if (!titleBar) return maximized;
    if (!maximized) {
        char marked[kMarkLength + sizeof titleBar->caption];
        std::snprintf(marked, sizeof marked, "%s%s", kFoldedMark, titleBar->caption);
        keltra::copyName(titleBar->caption, marked);
    } else if (std::strlen(titleBar->caption) >= kMarkLength) {
        titleBar->setCaption(titleBar->caption + kMarkLength);
    }
    return maximized;
}

// The GL counts rows from below. In landscape mode the screen is turned, and the interface's y is the GL's x.
void KTWINDOW::enableScissor() {
    keltra::Origin origin = keltra::originOf(*this);
    int left = keltra::toInt(position.x + origin.x), top = keltra::toInt(position.y + origin.y);
    int width = std::max(sizeX, 0), height = std::max(sizeY, 0);
    KTOPENGL::scissorOn();
    float matrix[16];
    KT_glGetFloatv(0, matrix);
    bool pushed = keltra::pushMatrix();
    KT_glLoadIdentity();
    if (KTSETTINGS::landscape)
        glScissor(top, left, height, width);
    else
        glScissor(left, keltra::toInt(std::int64_t{KTSETTINGS::windowY} - top - height), width, height);
    if (pushed)
        keltra::popMatrix();
    else
        KT_glLoadMatrixf(matrix);
}

void KTWINDOW::disableScissor() {
    if (KTSETTINGS::landscape)
        glScissor(0, 0, KTSETTINGS::windowY, KTSETTINGS::windowX);
    else
        glScissor(0, 0, KTSETTINGS::windowX, KTSETTINGS::windowY);
    KTOPENGL::scissorOff();
}

bool KTWINDOW::updateScroll() {
    contentHeight = lineCount;
    forScrolled(*this, [this](KTNODE &child) { contentHeight = growByChild(*this, child, contentHeight); });
    bool scrolls = contentHeight > std::max(sizeY, 0);
    if (scrollBar) scrollBar->setDisplayStatus(scrolls);
    if (!scrolls) {
        scrollLine = 0;
    } else if (scrollBar) {
        float visible = static_cast<float>(sizeY) / static_cast<float>(contentHeight);
        float track = static_cast<float>(std::int64_t{sizeY} - 2 * kScrollMargin);
        scrollBar->setCursorSize(std::max(kShortestCursor, keltra::toInt(visible * track)));
    }
    if (previousScroll != scrollLine) {
        float delta = static_cast<float>(std::int64_t{previousScroll} - scrollLine);
        forScrolled(*this, [delta](KTNODE &child) { child.position.y += delta; });
    }
    return true;
}

bool KTWINDOW::render(void *data) {
    if (!displayStatus || !maximized) return true;
    float hidden = static_cast<float>(std::int64_t{contentHeight} - sizeY);
    scrollLine = keltra::toInt(hidden * (scrollBar ? scrollBar->getValue() : 0.0f));
    updateScroll();
    const keltra::Unlit unlit;
    KTBUTTON::render(data);
    if (scissorStatus) KTOPENGL::scissorOn();
    if (font) {
        int inset = clickedStatus ? 1 : 0;
        font->putString(inset, keltra::toInt(std::int64_t{inset} - previousScroll), "%s", formattedText);
    }
    previousScroll = scrollLine;
    if (scissorStatus) KTOPENGL::scissorOff();
    return true;
}
