#ifndef KELTRA_RESOURCES_VIDEO_STREAM_H
#define KELTRA_RESOURCES_VIDEO_STREAM_H

// The decoder behind a video: the only place that knows libmpeg2. An engine without video has
// no_video_stream.cpp instead.

#include <keltra/video.h>

namespace keltra {

// One finished picture: packed RGB, rows from the top, owned by the decoder and good until its next step.
struct VideoPicture {
    unsigned int width, height;
    const unsigned char *pixels;
};

// Opens the file in a stream that is closed. False leaves it closed.
bool openStream(KTVIDEOSTREAM &stream, const char *path);
void closeStream(KTVIDEOSTREAM &stream);
// One step of the decoder of an open stream. True when a picture is to be shown.
bool stepStream(KTVIDEOSTREAM &stream, VideoPicture &picture);

}  // namespace keltra

#endif
