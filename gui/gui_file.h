// SPDX-License-Identifier: Zlib
#ifndef KELTRA_GUI_GUI_FILE_H
#define KELTRA_GUI_GUI_FILE_H

// Builds interfaces from their descriptions.

#include "formats/fault.h"

class KTNODE;
class TiXmlElement;
class TiXmlNode;

namespace keltra {

// A new node of that name with the widgets of the description below it; null when out of memory. The
// elements know their lines; the scope is that of the load.
KTNODE *buildInterface(const TiXmlElement &description, const char *name, FaultScope &scope);
// Makes the object of an element, and all that is nested in it, below `parent`. Ignores null and nodes that
// are not elements.
void buildWidgets(KTNODE *parent, const TiXmlNode *node);

}  // namespace keltra

#endif
