// SPDX-License-Identifier: Zlib
#ifndef KELTRA_RESOURCES_VIDEO_STREAM_H
#define KELTRA_RESOURCES_VIDEO_STREAM_H

// The decoder behind a video: the only place that knows libmpeg2. An engine without video has
// no_video_stream.cpp instead.

#include <keltra/video_stream.h>

namespace keltra {

// One finished picture: packed RGB, rows from the top, owned by the decoder and good until its next step.
struct VideoPicture {
    unsigned int width, height;
    const unsigned char *pixels;
};

// Opens the file in a stream that is closed. False leaves it closed.
bool openStream(KTVIDEOSTREAM &stream, const char *path);
// The same for a file that is open, or null; the stream closes it, at once when the result is false.
bool openStream(KTVIDEOSTREAM &stream, std::FILE *file);
void closeStream(KTVIDEOSTREAM &stream);
// What the header of the stream's present sequence says, all 0 outside of one.
struct VideoSequence {
    unsigned int width, height;
    unsigned int bytesPerSecond;  // 0 when it varies
    double rate;                  // pictures a second
    double aspect;                // width of a pixel by its height
};
VideoSequence sequenceOf(const KTVIDEOSTREAM &stream);
// False for an engine without video.
bool hasVideo();
// One step of the decoder of an open stream. True when a picture is to be shown. Closes the stream when
// memory runs out.
bool stepStream(KTVIDEOSTREAM &stream, VideoPicture &picture);

}  // namespace keltra

#endif
