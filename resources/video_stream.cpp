// SPDX-License-Identifier: Zlib
#include "resources/video_stream.h"

#include <keltra/foundation.h>

#include "formats/limits.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

#include <stdint.h>  // the decoder's headers use its types and do not include it

extern "C" {
#include <mpeg2.h>
#include <mpeg2convert.h>
}

#include <csetjmp>
#include <cstring>

namespace keltra {
namespace {

// The decoder does not check where a slice ends: it reads on, and past its buffer when all that follows is
// valid. So the buffer is followed by zeros, which end every slice.
constexpr unsigned int kSliceMargin = 4096;

// While one exists, the decoder's memory is cleared: damaged streams refer to pictures that were never
// decoded, and what they show is then always the same, and never what another program part left in memory.
// The blocks are the decoder's own, linked to one another: when memory runs out the decoder itself does not
// know any more which of them it has, and they are released along the links.
class DecoderMemory {
   public:
    // Null for a decoder that is to be made.
    explicit DecoderMemory(mpeg2dec_t *decoder) {
        first = decoder ? linksOf(decoder) : nullptr;
        mpeg2_malloc_hooks(allocate, unlink);
    }
    ~DecoderMemory() { mpeg2_malloc_hooks(nullptr, nullptr); }
    DecoderMemory(const DecoderMemory &) = delete;
    DecoderMemory &operator=(const DecoderMemory &) = delete;

    // Where memory that runs out leads to: the decoder does not look and would write to null. All that is
    // left on the way is C code of the decoder.
    static std::jmp_buf exhausted;

    // Releases the decoder and all that it has.
    static void release() {
        mpeg2_malloc_hooks(nullptr, nullptr);
        while (first && first->next != first) {
            void *block = blockOf(first->next);
            unlink(block);
            mpeg2_free(block);
        }
        if (first) mpeg2_free(blockOf(first));
    }

   private:
    struct Links {
        Links *previous, *next;
    };
    static constexpr unsigned int kLinksSize = 64;  // blocks lie at multiples of it

    static Links *linksOf(void *block) {
        return reinterpret_cast<Links *>(static_cast<char *>(block) - kLinksSize);
    }
    static void *blockOf(Links *links) { return reinterpret_cast<char *>(links) + kLinksSize; }

    static void *allocate(unsigned int size, mpeg2_alloc_t purpose) {
        if (size == 0) return nullptr;
        if (purpose == MPEG2_ALLOC_CHUNK) size += kSliceMargin;
        mpeg2_malloc_hooks(nullptr, nullptr);
        void *allocation = mpeg2_malloc(size + kLinksSize, purpose);
        mpeg2_malloc_hooks(allocate, unlink);
        if (!allocation) std::longjmp(exhausted, 1);
        void *block = blockOf(static_cast<Links *>(allocation));
        // What the decoder frees stands before each block.
        std::memcpy(static_cast<void **>(block) - 1, static_cast<void **>(allocation) - 1, sizeof(void *));
        const int grey = 128;
        std::memset(block, purpose == MPEG2_ALLOC_YUV ? grey : 0, size);
        link(static_cast<Links *>(allocation));
        return block;
    }
    // The decoder is the first of its blocks.
    static void link(Links *links) {
        if (!first) first = links->previous = links->next = links;
        links->previous = first;
        links->next = first->next;
        first->next->previous = links;
        first->next = links;
    }
    // The decoder frees the block itself.
    static int unlink(void *block) {
        if (!block) return 0;
        Links *links = linksOf(block);
        links->previous->next = links->next;
        links->next->previous = links->previous;
        return 0;
    }

    static Links *first;
};
std::jmp_buf DecoderMemory::exhausted;
DecoderMemory::Links *DecoderMemory::first = nullptr;

// A film whose pictures find no memory shows none, and is tried again when it loops: three pictures in RGB,
// and two and a few rows as decoded, in three bytes a pixel at most.
bool hasRoomFor(const mpeg2_sequence_t &sequence) {
    const unsigned int pictures = 3 + 2, bytesPerPixel = 3, extraRows = 32, tables = 65536;
    void *room = allocate(sequence.width * (sequence.height + extraRows) * bytesPerPixel * pictures + tables);
    if (!room) return false;
    vnfFree(room);
    return true;
}

// Lets the decoder look for the next sequence behind a header whose pictures are not to be decoded.
void skipSequence(KTVIDEOSTREAM &stream) {
    const int left = mpeg2_getpos(stream.decoder);
    uint8_t *end = stream.buffer + (stream.lastRead > 0 ? stream.lastRead : 0);
    mpeg2_reset(stream.decoder, 1);
    if (left > 0 && left <= end - stream.buffer) mpeg2_buffer(stream.decoder, end - left, end);
    stream.sequence = nullptr;
}

// The RGB output has to be requested at each sequence header.
void beginSequence(KTVIDEOSTREAM &stream) {
    const mpeg2_sequence_t *sequence = stream.sequence;
    stream.converted = stream.begun = false;
    if (!sequence || sequence->width > kMaxTextureSize || sequence->height > kMaxTextureSize)
        return skipSequence(stream);
    if (!hasRoomFor(*sequence)) {
        warnMemory(KT_CALL("KTVIDEO::update"));
        return skipSequence(stream);
    }
    stream.converted = mpeg2_convert(stream.decoder, mpeg2convert_rgb24, nullptr) == 0;
    if (stream.converted) return;
    warnFault(KT_CALL("KTVIDEO::update"), newFault(KT_FAULT_DATA, KT_TEXT("sequence header"), {},
                                                   KT_TEXT("its pictures cannot be shown in RGB")));
}

void readOn(KTVIDEOSTREAM &stream) {
    const std::size_t count = std::fread(stream.buffer, 1, sizeof stream.buffer, stream.file);
    stream.lastRead = static_cast<std::int32_t>(count);
    mpeg2_buffer(stream.decoder, stream.buffer, stream.buffer + count);
}

}  // namespace

bool openStream(KTVIDEOSTREAM &stream, const char *path) {
    std::int64_t size;
    return openStream(stream, platformOpenFile(path, size));
}

bool openStream(KTVIDEOSTREAM &stream, std::FILE *file) {
    if (!file) return false;
    const DecoderMemory memory(nullptr);
    if (setjmp(DecoderMemory::exhausted) != 0) {
        DecoderMemory::release();
        std::fclose(file);
        return false;
    }
    mpeg2dec_t *decoder = mpeg2_init();
    if (!decoder) {
        std::fclose(file);
        return false;
    }
    stream.file = file;
    stream.decoder = decoder;
    stream.info = mpeg2_info(decoder);
    stream.lastRead = -1;
    stream.converted = stream.begun = false;
    return true;
}

void closeStream(KTVIDEOSTREAM &stream) {
    if (stream.file) std::fclose(stream.file);
    if (stream.decoder) mpeg2_close(stream.decoder);
    stream.file = nullptr;
    stream.decoder = nullptr;
    stream.info = nullptr;
    stream.sequence = nullptr;
}

bool hasVideo() { return true; }

VideoSequence sequenceOf(const KTVIDEOSTREAM &stream) {
    VideoSequence result = {};
    const mpeg2_sequence_t *sequence = stream.sequence;
    if (!sequence) return result;
    const double ticksPerSecond = 27e6;
    const unsigned int variable = 0x3ffff * 50;  // 18 set bits of 400 bits a second
    result.width = sequence->picture_width;
    result.height = sequence->picture_height;
    result.bytesPerSecond = sequence->byte_rate == variable ? 0 : sequence->byte_rate;
    if (sequence->frame_period) result.rate = ticksPerSecond / sequence->frame_period;
    if (sequence->pixel_height) result.aspect = double(sequence->pixel_width) / sequence->pixel_height;
    return result;
}

bool stepStream(KTVIDEOSTREAM &stream, VideoPicture &picture) {
    const DecoderMemory memory(stream.decoder);
    if (setjmp(DecoderMemory::exhausted) != 0) {
        DecoderMemory::release();
        stream.decoder = nullptr;
        closeStream(stream);
        return false;
    }
    const mpeg2_state_t state = mpeg2_parse(stream.decoder);
    stream.state = state;
    stream.sequence = stream.info->sequence;
    if (state == STATE_BUFFER) readOn(stream);
    if (state == STATE_SEQUENCE) beginSequence(stream);
    if (state == STATE_PICTURE) stream.begun = true;
    if (state != STATE_SLICE && state != STATE_END && state != STATE_INVALID_END) return false;
    const mpeg2_fbuf_t *shown = stream.info->display_fbuf;
    // At the end of a sequence without pictures the decoder still names one of the sequence before, which it
    // has freed.
    if (!shown || !shown->buf[0] || !stream.sequence || !stream.converted || !stream.begun) return false;
    picture = {stream.sequence->width, stream.sequence->height, shown->buf[0]};
    return true;
}

}  // namespace keltra
