// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIDEO_STREAM_H
#define KELTRA_VIDEO_STREAM_H

// The state of a video's decoder.

#include <cstdint>
#include <cstdio>

// The decoder's own types, of <mpeg2dec/mpeg2.h>.
struct mpeg2dec_s;
struct mpeg2_info_s;
struct mpeg2_sequence_s;

/** What decodes one film. Pointers are null while no film is open. */
struct KTVIDEOSTREAM {
    unsigned char buffer[4096];  ///< bytes of the file that the decoder is working on
    mpeg2dec_s *decoder;
    const mpeg2_info_s *info;
    const mpeg2_sequence_s *sequence;  ///< of the last step; null outside of a sequence
    int state;                         ///< what the last step reached, a mpeg2_state_t
    std::int32_t lastRead;             ///< bytes; -1 before the first read of a film, 0 at its end
    std::FILE *file;
    bool converted;  ///< the decoder gives RGB pictures for this sequence
    bool begun;      ///< and has begun one
};

#endif
