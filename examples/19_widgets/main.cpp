// SPDX-License-Identifier: Zlib
// Every widget, in code: boxes and labels, buttons of three kinds, a text field, both scroll bars, a window.
// Each line says when a widget reports itself: by the identifier that `KTINPUT::dispatch` returns, or by
// being asked. Next: windows and text that scrolls (20_scrolling).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/19_widgets/page.h"
#include "examples/19_widgets/script.h"
#include "examples/support/example.h"

namespace {

void act(Page *page, unsigned id) {
    const char *const names[] = {"the normal button", "the inverted button", "the switch"};
    for (int i = 0; i < 3; ++i)
        if (id == page->buttons[i]->getId()) page->told->write("^c8888Reported: %s", names[i]);
    if (id == page->field->getId()) page->told->write("^c8888Reported: the field");
    if (id == page->across->getCursor()->getId()) page->told->write("^c8888Reported: a cursor");
    page->buttons[2]->setColor(page->buttons[2]->isClicked() ? R3XVECTOR4D(0.8f, 0.3f, 0.0f, 1.0f)
                                                             : page->buttons[0]->getColor());
}

// What reports nothing is asked in each frame.
void update(Page *page) {
    const float hue = page->across->getValue(), light = page->down->getValue();
    page->swatch->setColor(light, light * (1.0f - 0.6f * hue), light * (0.3f + 0.7f * hue), 1.0f);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows every widget", &options, &exitCode)) return exitCode;

    // 1. Start.
    Page page;
    bool ok = example::start(options);
    if (ok) buildPage(&page);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    clock.start();  // the caret of the field blinks by it
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        clock.tick();
        update(&page);
        options.frames > 0 ? playWidgets(frame, &input) : input.update(clock.getRealSeconds());

        // 3. Draw, then hand over the input: widgets are looked for in the list that was just drawn.
        ok =
            KELTRA::clear(true, true, false) && KELTRA::begin2D() && page.interface.pass() && KELTRA::end2D();
        if (const unsigned id = input.dispatch()) act(&page, id);
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
