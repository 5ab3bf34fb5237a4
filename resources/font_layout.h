// SPDX-License-Identifier: Zlib
#ifndef KELTRA_RESOURCES_FONT_LAYOUT_H
#define KELTRA_RESOURCES_FONT_LAYOUT_H

#include <cstddef>

class KTFONT;

namespace keltra {

// KTFONT::format into a destination of `size` characters: a text that does not fit ends inside it, never
// within an escape.
int formatText(const KTFONT &font, const char *source, char *destination, std::size_t size,
               unsigned int width);

}  // namespace keltra

#endif
