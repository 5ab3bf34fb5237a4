#ifndef KELTRA_RESOURCES_UNSEEN_TEXTURE_H
#define KELTRA_RESOURCES_UNSEEN_TEXTURE_H

class KTTEXTURE;

namespace keltra {

// For a loader that gives up a texture which it has just made: nothing can refer to it, so nothing is
// searched for it. A scene may name thousands of files that are missing.
struct UnseenTexture {
    static void destroy(KTTEXTURE *texture);
};

}  // namespace keltra

#endif
