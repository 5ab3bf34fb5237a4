// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SCENE_RENDER_LIST_H
#define KELTRA_SCENE_RENDER_LIST_H

namespace keltra {

// How often the render list was started: pointers kept from an earlier start are invalid.
unsigned int renderListStarts();

}  // namespace keltra

#endif
