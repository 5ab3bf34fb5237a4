// SPDX-License-Identifier: Zlib
#ifndef KELTRA_GUI_EVENTS_H
#define KELTRA_GUI_EVENTS_H

class KTBOX;

namespace keltra {

// Clears the events' pointers to a box that is destroyed.
void forgetInEvents(const KTBOX *gone);

}  // namespace keltra

#endif
