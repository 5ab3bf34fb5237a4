// SPDX-License-Identifier: Zlib
#include "resources/video_stream.h"

// An engine without video opens no film, so the other functions do nothing.

namespace keltra {

bool openStream(KTVIDEOSTREAM &, const char *) { return false; }

bool openStream(KTVIDEOSTREAM &, std::FILE *file) {
    if (file) std::fclose(file);
    return false;
}

bool hasVideo() { return false; }

VideoSequence sequenceOf(const KTVIDEOSTREAM &) { return {}; }

void closeStream(KTVIDEOSTREAM &) {}

bool stepStream(KTVIDEOSTREAM &, VideoPicture &) { return false; }

}  // namespace keltra
