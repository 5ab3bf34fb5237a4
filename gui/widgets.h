#ifndef KELTRA_GUI_WIDGETS_H
#define KELTRA_GUI_WIDGETS_H

// What the widgets share.

#include <keltra/box.h>

#include <cstdint>

#include "scene/node_class.h"

namespace keltra {

// A box of any type code: applications give the classes that they derive codes of their own.
inline KTBOX *asBox(KTNODE *node) { return as<KTBOX>(node); }

// Loads the matrix of a render list entry; null keeps the current one.
void loadEntryMatrix(void *entry);

// Draws the bevelled border of a rectangle of the box's colour, `width` x `height` from the current origin.
void drawBorder(const KTBOX &box, std::int64_t width, std::int64_t height, bool sunken);

}  // namespace keltra

#endif
