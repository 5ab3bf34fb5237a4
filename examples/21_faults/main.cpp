// SPDX-License-Identifier: Zlib
// Faults: an interface whose file has five mistakes. It is shown as far as it goes, and a window tells what
// was left out, with the line of the file and what was meant. Mend lanterns.xml beside the program while this
// runs, and tap "Again". Next: particles made in code (22_weather).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cstdio>
#include <cstring>

#include "examples/support/example.h"

namespace {

struct Show {
    KTNODE own, *shown = nullptr;
    KTWINDOW *window = nullptr;
    KTBUTTON *again = nullptr;
    int faults = 0;
};

// Is called within the call that goes wrong: it keeps what it is told, and leaves the engine alone. Paths are
// long: the file's name is enough.
void takeFault(const KTFAULT *fault, void *user) {
    Show *show = static_cast<Show *>(user);
    KTFAULT brief = *fault;
    const char *const slash = std::strrchr(fault->file, '/');
    if (slash) std::snprintf(brief.file, sizeof brief.file, "%s", slash + 1);
    const char *const neededBy = std::strrchr(fault->neededBy, '/');
    if (neededBy) std::snprintf(brief.neededBy, sizeof brief.neededBy, "%s", neededBy + 1);
    char sentence[512];
    KTFAULTS::format(&brief, sentence, sizeof sentence);
    const bool isError = fault->severity == KT_FAULT_ERROR;
    show->window->write("%s%d^c8888 %s\n\n", isError ? "^c8448" : "^c8748", ++show->faults, sentence);
}

void build(Show *show) {
    KTFONT *font = example::loadFont();
    show->window = new KTWINDOW;
    show->window->setFont(font);
    show->window->setSizes(228, 156);
    show->window->setPosition(6.0f, 132.0f);
    show->window->setColor(0.10f, 0.09f, 0.18f, 1.0f);
    show->window->getTitleBar()->setColor(0.55f, 0.28f, 0.20f, 1.0f);
    show->window->link(&show->own);
    show->again = new KTBUTTON;
    show->again->setFont(font);
    show->again->setCaption("^x0016Again");
    show->again->setSizes(72, 20);
    show->again->setPosition(162.0f, 294.0f);
    show->again->setColor(0.30f, 0.26f, 0.44f, 1.0f);
    show->again->link(&show->own);
    KTOPENGL::setBackgroundColor(0.08f, 0.07f, 0.14f, 1.0f);
}

// Everything that can be loaded is there; null comes only of a file that is no XML, or is missing.
void read(Show *show) {
    example::destroyTree(show->shown);
    while (KTFONT *font = KTFONT::findByName("text")) delete font;  // the file's own
    show->window->clear();
    show->faults = 0;
    KTFAULTS::setHandler(takeFault, show);
    show->shown = KELTRA::load("lanterns.xml");
    KTFAULTS::setHandler(nullptr, nullptr);
    char caption[64];
    std::snprintf(caption, sizeof caption, "lanterns.xml: %d faults", show->faults);
    show->window->setCaption(caption);
    if (show->faults == 0) show->window->write("It is as it should be.\n");
    show->window->format();
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows what is wrong with a file", &options, &exitCode)) return exitCode;

    // 1. Start.
    Show show;
    bool ok = example::start(options);
    if (ok) build(&show);
    if (ok) read(&show);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame.
        clock.tick();
        input.update(clock.getRealSeconds());

        // 3. Draw. What could not be loaded is not passed.
        ok = KELTRA::clear(true, true, false) && KELTRA::begin2D() && show.own.pass();
        if (ok && show.shown) ok = show.shown->pass();
        ok = ok && KELTRA::end2D();
        if (input.dispatch() == show.again->getId()) read(&show);
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
