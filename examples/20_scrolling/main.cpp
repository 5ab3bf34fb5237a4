// SPDX-License-Identifier: Zlib
// Windows: drag them by their titles, click a title to fold its window, scroll by the bar, and let a program
// write and scroll to the end. Next: what is wrong with a file (21_faults).

#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include "examples/support/example.h"

namespace {

const char *const kTale[] = {
    "In the garden of paper lanterns, the boy in the long cap lights one after the other.",
    "The ^c8520red^c8888 one first. It hangs highest, and it sways.",
    "Then the ^c5848violet^c8888 one, which takes its time.",
    "Far away a frog says what it thinks of the matter.",
    "The last one is by the gate. He keeps the match until it is nearly out.",
    "Then he sits down in the grass, and looks at all of them."};
constexpr unsigned kLines = sizeof kTale / sizeof kTale[0];

struct Show {
    KTNODE interface;
    KTWINDOW *tale = nullptr, *log = nullptr;
    unsigned told = 0;
    float sinceLine = 0.0f;
};

KTWINDOW *makeWindow(KTNODE *interface, KTFONT *font, const char *title, int x, int y, int width,
                     int height) {
    KTWINDOW *window = new KTWINDOW;
    window->setFont(font);
    window->setCaption(title);
    window->setSizes(width, height);
    window->setPosition(static_cast<float>(x), static_cast<float>(y));
    window->setColor(0.13f, 0.11f, 0.22f, 0.92f);
    window->getTitleBar()->setColor(0.55f, 0.28f, 0.20f, 1.0f);
    window->link(interface);
    return window;
}

// Text shows once it is formatted. A bar is set to the end only after the contents have been measured.
void tell(KTWINDOW *window, const char *line) {
    window->write("%s\n\n", line);
    window->format();
    window->updateScroll();
    window->scrollBar->setValue(1.0f);
}

void build(Show *show) {
    KTFONT *font = example::loadFont();
    KTBOX *back = new KTBOX;
    back->setSizes(KTSETTINGS::getSDLWindowX(), KTSETTINGS::getSDLWindowY());
    back->setThickness(0);
    back->setTexture(example::loadTexture("garden_dusksky_d.tga"));
    back->setColor(1.0f, 1.0f, 1.0f, 1.0f);
    back->link(&show->interface);
    show->tale = makeWindow(&show->interface, font, "The tale", 20, 40, 200, 120);
    show->log = makeWindow(&show->interface, font, "Behind it", 44, 196, 176, 96);
    show->log->write("Windows nest widgets.\n\nThis one has a button of its own.\n");
    show->log->format();
    KTBUTTON *button = new KTBUTTON;  // scrolled and clipped with the text of its window
    button->setFont(font);
    button->setCaption("^x0008Again");
    button->setSizes(64, 20);
    button->setPosition(8.0f, 70.0f);
    button->setColor(0.30f, 0.26f, 0.44f, 1.0f);
    button->setName("again");
    button->link(show->log);
}

void update(Show *show, float seconds) {
    show->sinceLine += seconds;
    if (show->sinceLine < 0.3f || show->told == kLines) return;
    show->sinceLine = 0.0f;
    tell(show->tale, kTale[show->told++]);
}

}  // namespace

int main(int argc, char **argv) {
    example::Options options;
    int exitCode = 0;
    if (!example::parse(argc, argv, "Shows windows and text that scrolls", &options, &exitCode))
        return exitCode;

    // 1. Start.
    bool ok = example::start(options);
    Show show;
    if (ok) build(&show);
    KTINPUT input;
    KTCLOCK clock;
    clock.setStep(options.step);
    for (int frame = 1; ok && !input.hasQuit(); ++frame) {
        // 2. Per frame: another line of the tale.
        const float seconds = clock.tick();
        input.update(clock.getRealSeconds());
        update(&show, seconds);

        // 3. Draw, then hand over the input: widgets are looked for in the list that was just drawn.
        ok =
            KELTRA::clear(true, true, false) && KELTRA::begin2D() && show.interface.pass() && KELTRA::end2D();
        const unsigned id = input.dispatch();
        if (id != 0 && id == KTNODE::findByName("again")->getId()) {
            show.tale->clear();
            show.told = 0;
        }
        if (!example::endFrame(options, frame, &ok)) break;
    }

    // 4. Stop.
    return example::stop(ok);
}
