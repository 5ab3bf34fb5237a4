// SPDX-License-Identifier: Zlib
#include <keltra/scrollbar.h>

#include "foundation/fault.h"
#include "gui/geometry.h"

#include <algorithm>
#include <cstdint>
#include <new>

namespace {

// The horizontal and the vertical bar differ only in their axes.
struct Horizontal {
    static constexpr keltra::FaultCall kMaker = KT_CALL("KTHSCROLLBAR::KTHSCROLLBAR");
    static int &length(KTBOX &box) { return box.sizeX; }
    static int &width(KTBOX &box) { return box.sizeY; }
    static float &place(KTBOX &box) { return box.position.x; }
    static float &offset(KTBOX &box) { return box.position.y; }
    static void setLimits(KTBOX &box, int start, int across, int end, int acrossEnd) {
        box.setLimits(start, across, end, acrossEnd);
    }
};

struct Vertical {
    static constexpr keltra::FaultCall kMaker = KT_CALL("KTVSCROLLBAR::KTVSCROLLBAR");
    static int &length(KTBOX &box) { return box.sizeY; }
    static int &width(KTBOX &box) { return box.sizeX; }
    static float &place(KTBOX &box) { return box.position.y; }
    static float &offset(KTBOX &box) { return box.position.x; }
    static void setLimits(KTBOX &box, int start, int across, int end, int acrossEnd) {
        box.setLimits(across, start, acrossEnd, end);
    }
};

// The cursor's centre travels from one end of the track to the other.
template <class Axis>
void limitCursor(KTBOX &track, KTBOX *cursor) {
    if (!cursor) return;
    int half = Axis::length(*cursor) / 2, width = Axis::width(*cursor), quarter = width / 4;
    int end = keltra::toInt(std::int64_t{Axis::length(track)} + half);
    Axis::setLimits(*cursor, -half, -quarter, end, width - quarter);
}

// The initial track and cursor; the cursor is null when out of memory.
template <class Axis>
KTBUTTON *build(KTBOX &track) {
    Axis::length(track) = 64;
    Axis::width(track) = 4;
    track.setColor(0.6f, 0.2f, 0.0f, 0.35f);
    KTBUTTON *cursor = new (std::nothrow) KTBUTTON;
    if (!cursor) return keltra::warnMemory(Axis::kMaker), nullptr;
    Axis::length(*cursor) = 16;
    Axis::width(*cursor) = 8;
    cursor->setColor(0.8f, 0.3f, 0.0f, 0.9f);
    cursor->setStaticStatus(false);
    cursor->setLimitStatus(true);
    cursor->link(&track);
    Axis::place(*cursor) = 64 / 2 - 16 / 2;
    Axis::offset(*cursor) = -8 / 4;
    limitCursor<Axis>(track, cursor);
    return cursor;
}

float halfLength(int length) { return static_cast<float>(length / 2); }

// Within the range for any value, not-a-number included.
float clampValue(float value, float low, float high) {
    if (!(value > low)) return low;
    return value < high ? value : high;
}

// Deliberate: an empty range divides 0 by 0, and the cursor's position is not a number; applications set the
// range first.
template <class Axis>
void placeCursor(KTBOX &track, KTBOX *cursor, float value, float low, float high) {
    if (!cursor) return;
    float share = (clampValue(value, low, high) - low) / (high - low);
    Axis::place(*cursor) =
        share * static_cast<float>(Axis::length(track)) - halfLength(Axis::length(*cursor));
}

template <class Axis>
float valueOf(KTBOX &track, KTBOX *cursor, float low, float high) {
    if (!cursor) return 0.0f;
    float length = static_cast<float>(Axis::length(track));
    float centre = halfLength(Axis::length(*cursor)) + Axis::place(*cursor);
    float share = 1.0f - (length - centre) / length;
    return clampValue(share * (high - low) + low, low, high);
}

template <class Axis>
void resizeCursor(KTBOX *cursor, int pixels) {
    if (!cursor) return;
    float &place = Axis::place(*cursor);
    place = place + halfLength(Axis::length(*cursor)) - halfLength(pixels);
    Axis::length(*cursor) = pixels;
}

template <class Bar>
void copyBar(Bar &bar, const Bar &other) {
    std::copy(other.reserved, other.reserved + 2, bar.reserved);
    bar.minValue = other.minValue;
    bar.maxValue = other.maxValue;
    bar.cursor = other.cursor;
    if (bar.cursor) bar.cursor->markHeld();
}

}  // namespace

KTHSCROLLBAR::KTHSCROLLBAR() : reserved(), minValue(0.0f), maxValue(1.0f), cursor(build<Horizontal>(*this)) {
    joinClass(KT_HSCROLLBAR);
    setIdentity(KT_HSCROLLBAR, "[hscrollbar %d]");
    if (cursor) makePart(*cursor);
}

KTHSCROLLBAR::KTHSCROLLBAR(const KTHSCROLLBAR &other) : KTBOX(other) {
    joinClass(KT_HSCROLLBAR);
    copyBar(*this, other);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): members are copied one by one
KTHSCROLLBAR &KTHSCROLLBAR::operator=(const KTHSCROLLBAR &other) {
    KTBOX::operator=(other);
    copyBar(*this, other);
    return *this;
}

KTHSCROLLBAR::~KTHSCROLLBAR() { destroyParts(); }

void KTHSCROLLBAR::setValue(float value) {
    placeCursor<Horizontal>(*this, cursor, value, minValue, maxValue);
}

float KTHSCROLLBAR::getValue() const {
    return valueOf<Horizontal>(const_cast<KTHSCROLLBAR &>(*this), cursor, minValue, maxValue);
}

void KTHSCROLLBAR::setCursorSize(int pixels) { resizeCursor<Horizontal>(cursor, pixels); }

void KTHSCROLLBAR::setDisplayStatus(bool status) {
    displayStatus = status;
    if (cursor) cursor->displayStatus = status;
}

bool KTHSCROLLBAR::render(void *data) {
    limitCursor<Horizontal>(*this, cursor);
    KTBOX::render(data);
    return true;
}

// Deliberate: the horizontal bar's name; applications find the bars of both kinds by it.
KTVSCROLLBAR::KTVSCROLLBAR() : reserved(), minValue(0.0f), maxValue(1.0f), cursor(build<Vertical>(*this)) {
    joinClass(KT_VSCROLLBAR);
    setIdentity(KT_VSCROLLBAR, "[hscrollbar %d]");
    if (cursor) makePart(*cursor);
}

KTVSCROLLBAR::KTVSCROLLBAR(const KTVSCROLLBAR &other) : KTBOX(other) {
    joinClass(KT_VSCROLLBAR);
    copyBar(*this, other);
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): members are copied one by one
KTVSCROLLBAR &KTVSCROLLBAR::operator=(const KTVSCROLLBAR &other) {
    KTBOX::operator=(other);
    copyBar(*this, other);
    return *this;
}

KTVSCROLLBAR::~KTVSCROLLBAR() { destroyParts(); }

void KTVSCROLLBAR::setValue(float value) { placeCursor<Vertical>(*this, cursor, value, minValue, maxValue); }

float KTVSCROLLBAR::getValue() const {
    return valueOf<Vertical>(const_cast<KTVSCROLLBAR &>(*this), cursor, minValue, maxValue);
}

void KTVSCROLLBAR::setCursorSize(int pixels) { resizeCursor<Vertical>(cursor, pixels); }

void KTVSCROLLBAR::setDisplayStatus(bool status) {
    displayStatus = status;
    if (cursor) cursor->displayStatus = status;
}

bool KTVSCROLLBAR::render(void *data) {
    limitCursor<Vertical>(*this, cursor);
    KTBOX::render(data);
    return true;
}
