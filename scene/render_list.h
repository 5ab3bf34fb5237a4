#ifndef KELTRA_SCENE_RENDER_LIST_H
#define KELTRA_SCENE_RENDER_LIST_H

namespace keltra {

// How often the render list was started: what was remembered of an earlier one is out of date.
unsigned int renderListStarts();

}  // namespace keltra

#endif
