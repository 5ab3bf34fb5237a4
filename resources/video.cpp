// SPDX-License-Identifier: Zlib
#include <keltra/video.h>

#include <keltra/foundation.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "core/holders.h"
#include "foundation/argument.h"
#include "foundation/block.h"
#include "foundation/fault.h"
#include "foundation/file_bytes.h"
#include "foundation/registry.h"
#include "foundation/text.h"
#include "resources/video_stream.h"

#include <GLES/gl.h>

#include <cstring>

template <>
struct keltra::PublicFields<KTVIDEO>
    : keltra::UsualFields<KTVIDEO, &KTVIDEO::filename, &KTVIDEO::firstVideo> {};
template class KTREGISTERED<KTVIDEO>;

const unsigned int KTVIDEO::maxSize;
KTVIDEO *KTVIDEO::firstVideo = nullptr;
char KTVIDEO::mpgPath[256] = "";
KTLISTED<KTVIDEO> *KTVIDEO::allVideos = nullptr;
const keltra::OnGone<KTTEXTURE> KTVIDEO::onTextureGone(&KTVIDEO::forgetTexture);

static_assert(KTVIDEO::maxSize == KTTEXTURE::maxSize, "what is decoded can be shown");

KTVIDEO::KTVIDEO()
    : texture(nullptr),
      previous(nullptr),
      next(nullptr),
      status(KT_VIDEO_STOPPED),
      stream(static_cast<KTVIDEOSTREAM *>(keltra::newBlock(sizeof(KTVIDEOSTREAM)))) {
    joinList(allVideos);
    if (stream) std::memset(stream, 0, sizeof *stream);
    id = enlist();
    keltra::writeName(filename, "[video %d]", id);
}

KTVIDEO::KTVIDEO(const KTVIDEO &other) : KTREGISTERED<KTVIDEO>(other), KTLISTED<KTVIDEO>() {
    joinList(allVideos);
    copyFields(other);
    stream = static_cast<KTVIDEOSTREAM *>(keltra::retainBlock(other.stream));
}

KTVIDEO &KTVIDEO::operator=(const KTVIDEO &other) {
    if (this == &other) return *this;
    void *shared = keltra::retainBlock(other.stream);
    keltra::releaseBlock(stream);
    textureUse.take(texture);
    copyFields(other);
    fieldsAssigned();
    stream = static_cast<KTVIDEOSTREAM *>(shared);
    return *this;
}

KTVIDEO::~KTVIDEO() { release(); }

void KTVIDEO::copyFields(const KTVIDEO &other) {
    id = other.id;
    std::memcpy(filename, other.filename, sizeof filename);
    texture = other.texture;
    previous = other.previous;
    next = other.next;
    status = other.status;
    stream = other.stream;
}

// Deliberate: a film that is open keeps its file and decoder, which applications may have taken from the
// stream. They close it with `load(nullptr)`.
void KTVIDEO::release() {
    textureUse.take(texture);
    keltra::releaseBlock(stream);
    stream = nullptr;
    delist();
}

bool KTVIDEO::cleanUp() { return destroyAll(&KTVIDEO::release); }

unsigned int KTVIDEO::getNumberOfVideos() { return count(); }

KTVIDEO *KTVIDEO::findByFilename(const char *name) { return findRegistered(name); }

KTVIDEO *KTVIDEO::findById(unsigned int wanted) { return findRegistered(wanted); }

void KTVIDEO::setMPGPath(const char *path) {
    keltra::takeText(mpgPath, path, KT_CALL("KTVIDEO::setMPGPath"));
}

void KTVIDEO::setTexture(KTTEXTURE *target) { textureUse.set(texture, target); }

void KTVIDEO::forgetTexture(const keltra::Gone<KTTEXTURE> &gone) {
    visitList(allVideos, gone.mostVisited(), [&gone](KTVIDEO &video) {
        if (gone.has(video.texture)) video.textureUse.forget(video.texture);
    });
}

bool KTVIDEO::load(const char *name) {
    status = KT_VIDEO_STOPPED;
    const keltra::FilePath path(mpgPath, name);
    keltra::FaultScope scope(KT_CALL("KTVIDEO::load"), path.text);
    if (!stream) return scope.fail(KT_FAULT_OUT_OF_MEMORY);
    keltra::closeStream(*stream);
    if (!name) return false;  // only closes the film
    if (std::strlen(name) >= sizeof filename) return scope.fail(KT_FAULT_FILE_NAME);
    if (!vnfFileExists(path.text)) return scope.failFile();
    if (!keltra::hasVideo())
        return keltra::failState(KT_CALL("KTVIDEO::load"), KT_TEXT("the library is built without video"));
    if (!keltra::openStream(*stream, path.text)) return scope.fail(KT_FAULT_OUT_OF_MEMORY);
    keltra::copyText(filename, name);
    nameChanged();
    return true;
}

// Back to the beginning, where only a looping film continues.
bool KTVIDEO::startAgain() {
    const bool loops = status == KT_VIDEO_LOOPING;
    const keltra::FaultScope scope(KT_CALL("KTVIDEO::update"));
    const bool opened = load(filename);
    if (loops) status = KT_VIDEO_LOOPING;
    return opened;
}

bool KTVIDEO::update(unsigned int steps) {
    if (!stream) return false;
    // Only a film that could not be opened again at its end is still there; rewinding it tries again.
    if (status == KT_VIDEO_REWINDING && stream->lastRead == 0) {
        const keltra::FaultSilence silence;
        return load(filename);
    }
    if (status == KT_VIDEO_STOPPED || !stream->file) return false;
    // Deliberate: the steps left at the end of a film are made from its beginning, whether it loops or stops;
    // applications rely on the number of steps of a call.
    for (; steps; --steps) {
        keltra::VideoPicture picture;
        if (keltra::stepStream(*stream, picture)) show(picture.width, picture.height, picture.pixels);
        if (!stream->file) {
            status = KT_VIDEO_STOPPED;
            return keltra::failMemory(KT_CALL("KTVIDEO::update"));
        }
        if (stream->lastRead == 0 && !startAgain()) return false;
    }
    return true;
}

// Deliberate: the texture class's channels do not register the texture bound here; a film belongs to none of
// them. A row is a multiple of 48 bytes long, so every unpack alignment will do.
void KTVIDEO::show(unsigned int width, unsigned int height, const unsigned char *pixels) {
    if (!texture || !texture->takesPicture(width, height)) return;
    keltra::bindForUpload(texture->getGLId());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGB,
                    GL_UNSIGNED_BYTE, pixels);
}
