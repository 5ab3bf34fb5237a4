// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_SUPPORT_EXAMPLE_H
#define KELTRA_EXAMPLES_SUPPORT_EXAMPLE_H

// Shared by all examples: the command line, the end of a run, and a picture of the last frame.

#include <string>

namespace example {

struct Options {
    int frames = 0;    // frames to draw; 0: until the window is closed
    std::string shot;  // where to save the last frame; empty: nowhere
    std::string data;  // folder of the sample files, with a slash at its end
};

// Reads --frames N, --shot FILE.png and --data FOLDER. A shot without a number of frames is taken after 60.
// False when the program is to end with `*exitCode`: after --help or a mistake, which has been reported.
bool parse(int argc, char **argv, const char *description, Options *options, int *exitCode);

// True once the window was closed, Escape pressed or a mouse button clicked. Needs the engine running.
bool quitRequested();

// Saves the frame just drawn, before it is swapped, and prints where. False, with a message, when it cannot.
bool saveShot(const std::string &path);

}  // namespace example

#endif
