// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_PANEL_TEXT_H
#define KELTRA_VIEW_PANEL_TEXT_H

// The texts of the panel and of the overlay.

#include <functional>
#include <string>

namespace keltra::view {

// The width of a text in pixels.
using Measure = std::function<unsigned(const std::string &text)>;

// Replaces all characters that the font does not have, and the '^' of escapes, by '?'.
std::string plainText(const std::string &text);
// `text`, or its beginning with ".." if it is wider than `width` pixels. Empty if even these do not fit.
std::string cutText(const std::string &text, unsigned width, const Measure &measure);
// `text` with escapes that move it to the middle of a box.
std::string centredText(const std::string &text, int width, int height, const Measure &measure);

std::string switchText(bool on, const std::string &what);
std::string frameText(unsigned frame, unsigned frames);

struct Figures {
    double milliseconds = 0.0, framesPerSecond = 0.0;
    unsigned nodes = 0, drawn = 0;
    unsigned long triangles = 0, calls = 0;
    unsigned long textureBytes = 0, textureBudget = 0;
};

std::string timeText(const Figures &figures);
std::string sceneText(const Figures &figures);
std::string driverText(const Figures &figures);

}  // namespace keltra::view

#endif
