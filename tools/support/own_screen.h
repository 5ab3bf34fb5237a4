// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SUPPORT_OWN_SCREEN_H
#define KELTRA_SUPPORT_OWN_SCREEN_H

// A screen in memory for programs that only save pictures.

#include <string>

namespace keltra::support {

// Whether SDL would look for an X server and the environment names none.
bool isWithoutDisplay();

// Runs this program again, in the place of this process, on a screen of 16 bits by `keltra-screen`: that of
// the program's folder or, without one, of the PATH. Returns only on failure, with the reason.
std::string restartOnOwnScreen(char **argv);

}  // namespace keltra::support

#endif
