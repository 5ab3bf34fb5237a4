#ifndef KELTRA_VIEW_PANEL_TEXT_H
#define KELTRA_VIEW_PANEL_TEXT_H

// The words of the panel and of the overlay.

#include <functional>
#include <string>

namespace keltra::view {

// Pixels that a text takes.
using Measure = std::function<unsigned(const std::string &text)>;

// What the font can draw: every other character becomes '?', and so does the '^' that begins an escape.
std::string plainText(const std::string &text);
// `text`, cut to fit `width` pixels, with ".." at its end then. Empty when even those do not fit.
std::string cutText(const std::string &text, unsigned width, const Measure &measure);
// `text` in the middle of a box, for the GUI: with escapes that move it.
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
