// SPDX-License-Identifier: Zlib
#include "tools/view/panel_text.h"

#include <algorithm>
#include <cstdio>

namespace keltra::view {
namespace {

constexpr char kCut[] = "..";
constexpr int kLetterHeight = 16;  // a cell of the font

// "1234567" as "1,234,567".
std::string grouped(unsigned long number) {
    std::string text = std::to_string(number);
    for (std::size_t place = text.size(); place > 3;) {
        place -= 3;
        text.insert(place, 1, ',');
    }
    return text;
}

template <class... Values>
std::string formatted(const char *format, Values... values) {
    char text[160];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

double mebibytes(unsigned long bytes) { return static_cast<double>(bytes) / (1024.0 * 1024.0); }

}  // namespace

std::string plainText(const std::string &text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char byte = static_cast<unsigned char>(text[i]);
        // One '?' per character: bytes 10xxxxxx continue one.
        if (byte >= 0x80 && byte < 0xc0 && i > 0 && static_cast<unsigned char>(text[i - 1]) >= 0x80) continue;
        plain += byte >= 32 && byte < 127 && byte != '^' ? text[i] : '?';
    }
    return plain;
}

std::string cutText(const std::string &text, unsigned width, const Measure &measure) {
    if (measure(text) <= width) return text;
    for (std::size_t length = text.size(); length-- > 0;) {
        const std::string cut = text.substr(0, length) + kCut;
        if (measure(cut) <= width) return cut;
    }
    return "";
}

std::string centredText(const std::string &text, int width, int height, const Measure &measure) {
    // The engine draws a caption one pixel inside its button.
    const std::string shown = cutText(text, static_cast<unsigned>(std::max(width - 4, 0)), measure);
    const int x = (width - static_cast<int>(measure(shown))) / 2 - 1, y = (height - kLetterHeight) / 2 - 1;
    return formatted("^x%04d^y%04d", std::clamp(x, 0, 999), std::clamp(y, -99, 999)) + shown;
}

std::string switchText(bool on, const std::string &what) { return (on ? "[x] " : "[ ] ") + what; }

std::string frameText(unsigned frame, unsigned frames) {
    if (frames == 0) return "-";
    return std::to_string(frame + 1) + " / " + std::to_string(frames);
}

std::string timeText(const Figures &figures) {
    return formatted("%.1f ms  %.0f fps", figures.milliseconds, figures.framesPerSecond);
}

std::string sceneText(const Figures &figures) {
    return formatted("%u nodes  %u drawn  ", figures.nodes, figures.drawn) + grouped(figures.triangles) +
           (figures.triangles == 1 ? " triangle" : " triangles");
}

// The engine's count of video memory can wrap below 0: textures may return more than they were charged.
std::string driverText(const Figures &figures) {
    const unsigned long used = figures.textureBytes > 0x80000000ul ? 0 : figures.textureBytes;
    return grouped(figures.calls) + " GL calls" +
           formatted("  %.1f of %.0f MiB textures", mebibytes(used), mebibytes(figures.textureBudget));
}

}  // namespace keltra::view
