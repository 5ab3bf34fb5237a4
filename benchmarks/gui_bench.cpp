// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/keltra.h>

#include <memory>
#include <random>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace {

using keltra::test::GlRecorder;

constexpr unsigned int kWidgets = 100;
constexpr unsigned int kWindows = 4;
constexpr unsigned int kPointers = 1024;

struct Pointer {
    int x, y;
};

// Four windows with title bars, scroll bars and 21 widgets each, text in all of them. The GL does nothing and
// notes nothing.
class Interface {
   public:
    Interface() {
        GlRecorder::setRecording(false);
        KTSETTINGS::windowX = 240;
        KTSETTINGS::windowY = 320;
        KELTRA::videoMemoryTotal = 8388608;
        KTELEMENT::init(0);
        KTFONT::init();
        font = new KTFONT;
        KTTEXTURE *glyphs = new KTTEXTURE;
        glyphs->create(256, 256, 4);
        font->setTexture(glyphs);
        std::mt19937 generator(20040614);
        for (unsigned int i = 0; i < kWindows; ++i) addWindow(generator, i);
        for (Pointer &pointer : pointers) pointer = {int(generator() % 240), int(generator() % 320)};
        draw();
    }
    ~Interface() {
        KTFONT::cleanUp();
        KTNODE::cleanUp();
        KTTEXTURE::cleanUp();
        KTFONT::free();
        KTELEMENT::free();
        KTSETTINGS::windowX = KTSETTINGS::windowY = 0;
        KELTRA::videoMemoryTotal = 0;
    }

    void draw() {
        KELTRA::begin2D();
        for (KTWINDOW *window : windows) window->pass();
        KELTRA::end2D();
    }

    Pointer pointers[kPointers];

   private:
    void addWindow(std::mt19937 &generator, unsigned int index) {
        KTWINDOW *window = new KTWINDOW;
        window->setSizes(110, 130);
        window->setPosition(static_cast<float>(index % 2 * 120), static_cast<float>(20 + index / 2 * 155));
        window->setFont(font);
        window->write("some words that fill the window behind its widgets");
        window->format();
        windows.push_back(window);
        for (unsigned int i = 0; i < kWidgets / kWindows - 4; ++i) {
            KTBUTTON *button = i % 5 == 0 ? new KTTEXTFIELD : new KTBUTTON;
            button->setSizes(50, 18);
            button->setCaption("ok");
            button->setFont(font);
            button->setPosition(static_cast<float>(generator() % 60), static_cast<float>(generator() % 112));
            button->link(window);
        }
    }

    const GlRecorder::Stub stub;
    KTFONT *font;
    std::vector<KTWINDOW *> windows;
};

// One call of the event handling with the pointer up: every widget of the list is tested.
void hitTest(benchmark::State &state) {
    Interface interface;
    if (KTELEMENT::getNumberOfPassedElements() != kWidgets)
        return state.SkipWithError("not the expected widgets");
    unsigned int i = 0, hits = 0;
    for (auto _ : state) {
        const Pointer &pointer = interface.pointers[i++ % kPointers];
        hits += KTELEMENT::manageGUIEvents(0, pointer.x, pointer.y, 0, 0, nullptr);
    }
    if (!hits) return state.SkipWithError("no widget was hit");
    state.SetItemsProcessed(state.iterations() * kWidgets);
}
BENCHMARK(hitTest);

// The least that a hit test does: the rectangles alone, without parents, windows and stacking.
void plainHitTest(benchmark::State &state) {
    Interface interface;
    std::vector<KTBOX *> boxes;
    for (unsigned int i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i)
        boxes.push_back(static_cast<KTBOX *>(KTELEMENT::element[i].getNode()));
    unsigned int i = 0;
    for (auto _ : state) {
        const Pointer &pointer = interface.pointers[i++ % kPointers];
        const float x = static_cast<float>(pointer.x), y = static_cast<float>(pointer.y);
        unsigned int hits = 0;
        for (const KTBOX *box : boxes)
            hits += x >= box->position.x && y >= box->position.y &&
                    x <= box->position.x + static_cast<float>(box->sizeX) &&
                    y <= box->position.y + static_cast<float>(box->sizeY);
        benchmark::DoNotOptimize(hits);
    }
    state.SetItemsProcessed(state.iterations() * kWidgets);
}
BENCHMARK(plainHitTest);

// A whole 2D pass: begin, pass, sort, draw.
void drawWidgets(benchmark::State &state) {
    Interface interface;
    GlRecorder::setRecording(true);
    GlRecorder::clear();
    interface.draw();
    const int quads = GlRecorder::count("glDrawArrays"), strings = GlRecorder::count("glDrawElements");
    GlRecorder::setRecording(false);
    if (quads < int(kWidgets) || strings < int(kWidgets) / 2)
        return state.SkipWithError("too little was drawn");
    for (auto _ : state) interface.draw();
    state.SetItemsProcessed(state.iterations() * kWidgets);
    state.counters["quads"] = quads;
    state.counters["strings"] = strings;
}
BENCHMARK(drawWidgets)->Unit(benchmark::kMicrosecond);

}  // namespace
