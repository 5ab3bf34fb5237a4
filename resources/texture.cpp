// SPDX-License-Identifier: Zlib
#include <keltra/texture.h>

#include <keltra/engine_state.h>
#include <keltra/shader.h>

#include "core/gl_state.h"
#include "formats/limits.h"
#include "formats/tga_file.h"
#include "foundation/argument.h"
#include "foundation/block.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "foundation/file_bytes.h"
#include "foundation/registry.h"
#include "foundation/text.h"

#include <GLES/gl.h>

#include <algorithm>
#include <cstring>

template <>
struct keltra::PublicFields<KTTEXTURE>
    : keltra::UsualFields<KTTEXTURE, &KTTEXTURE::filename, &KTTEXTURE::firstTexture> {};
template class KTREGISTERED<KTTEXTURE>;

static_assert(KTTEXTURE::maxSize == keltra::kMaxTextureSize, "what a file may hold is loaded");

const unsigned int KTTEXTURE::channels;
const unsigned int KTTEXTURE::maxSize;
KTTEXTURE *KTTEXTURE::firstTexture = nullptr;
unsigned long KTTEXTURE::usedMemory = 0;
char KTTEXTURE::texturePath[256] = "";
KTTEXTURE *KTTEXTURE::channelCache[KTTEXTURE::channels] = {};
alignas(std::uint32_t) bool KTTEXTURE::channelActive[KTTEXTURE::channels] = {};

namespace {

constexpr char kDynamicName[] = "[dynamic]";

const keltra::OnNewContext forgetChannels([] {
    std::fill_n(KTTEXTURE::channelActive, KTTEXTURE::channels, false);
    std::fill_n(KTTEXTURE::channelCache, KTTEXTURE::channels, nullptr);
});

// A compiler makes a call of a loop, which takes three times as many instructions; each box does this twice.
void clearCache() {
    static_assert(KTTEXTURE::channels == 16, "all of them");
    KTTEXTURE **const cache = KTTEXTURE::channelCache;
    cache[0] = cache[1] = cache[2] = cache[3] = cache[4] = cache[5] = cache[6] = cache[7] = nullptr;
    cache[8] = cache[9] = cache[10] = cache[11] = cache[12] = cache[13] = cache[14] = cache[15] = nullptr;
}

bool deactivate(bool &active) {
    if (!active) return false;
    keltra::setTexturing(false);
    active = false;
    return true;
}

unsigned char *newImage(unsigned int sizeX, unsigned int sizeY, unsigned int bpp) {
    const std::size_t bytes = std::size_t{sizeX} * sizeY * bpp;
    void *pixels = keltra::newBlock(bytes);
    if (pixels) std::memset(pixels, 0, bytes);
    return static_cast<unsigned char *>(pixels);
}

}  // namespace

KELTRA_COLD KTTEXTURE::KTTEXTURE()
    : timeStamp(0),
      references(0),
      bitmap(nullptr),
      sizeX(0),
      sizeY(0),
      memory(0),
      bpp(0),
      cubeType(0),
      glId(0),
      trilinear(false),
      mipmapped(true),
      clamped(false),
      mipmapResident(false),
      ownsBitmap(false),
      ownsGLTexture(false),
      toldMissing(false),
      deletionsSeen(0),
      uploadedX(0),
      uploadedY(0),
      uploadedBpp(0) {
    id = enlist();
    keltra::writeName(filename, "[texture %d]", id);
}

KELTRA_COLD KTTEXTURE::KTTEXTURE(const KTTEXTURE &other) : KTREGISTERED<KTTEXTURE>(other) {
    unsigned char *shared = static_cast<unsigned char *>(keltra::retainBlock(other.bitmap));
    copyFields(other);
    bitmap = shared;
}

KELTRA_COLD KTTEXTURE &KTTEXTURE::operator=(const KTTEXTURE &other) {
    if (this == &other) return *this;
    unsigned char *shared = static_cast<unsigned char *>(keltra::retainBlock(other.bitmap));
    unload(true);
    for (KTTEXTURE *&cached : channelCache)
        if (cached == this) cached = nullptr;
    copyFields(other);
    bitmap = shared;
    fieldsAssigned();
    forgetDeletedGLTexture();
    return *this;
}

KTTEXTURE::~KTTEXTURE() { release(); }

KELTRA_COLD void KTTEXTURE::copyFields(const KTTEXTURE &other) {
    id = other.id;
    std::memcpy(filename, other.filename, sizeof filename);
    timeStamp = other.timeStamp;
    references = other.references;
    bitmap = other.bitmap;
    sizeX = other.sizeX;
    sizeY = other.sizeY;
    memory = other.memory;
    bpp = other.bpp;
    cubeType = other.cubeType;
    glId = other.glId;
    trilinear = other.trilinear;
    mipmapped = other.mipmapped;
    clamped = other.clamped;
    mipmapResident = other.mipmapResident;
    previous = other.previous;
    next = other.next;
    ownsBitmap = false;
    ownsGLTexture = false;
    toldMissing = other.toldMissing;
    deletionsSeen = other.ownsGLTexture ? deletions : other.deletionsSeen;
    uploadedX = other.uploadedX;
    uploadedY = other.uploadedY;
    uploadedBpp = other.uploadedBpp;
}

KELTRA_COLD bool KTTEXTURE::load(const char *name) {
    if (name && std::strcmp(name, kDynamicName) == 0) return true;
    const keltra::FilePath path(texturePath, name);
    keltra::FaultScope scope(KT_CALL("KTTEXTURE::load"), path.text);
    if (!name) return scope.failNull(KT_TEXT("name"));
    if (std::strlen(name) >= sizeof filename) return scope.fail(KT_FAULT_FILE_NAME);
    keltra::TgaImage image;
    unsigned char *pixels = nullptr;
    // A file that cannot be read is tried again at every render, and reported once.
    const bool isRead = keltra::readTga(scope, image, pixels);
    toldMissing = !isRead;
    if (!isRead) return false;

    if (bitmap && ownsBitmap) usedMemory -= memory;
    releaseBitmap();
    bitmap = pixels;
    ownsBitmap = pixels != nullptr;
    bpp = image.bytesPerPixel;
    sizeX = image.sizeX;
    sizeY = image.sizeY;
    // Four bytes a pixel whatever the depth, and also for a file that gave no pixels: deliberate,
    // applications' budgets are tuned to these counts.
    memory = sizeX * sizeY * 4;
    usedMemory += memory;
    keltra::copyText(filename, name);
    nameChanged();
    return true;
}

// Reads its file again. A failure is reported once, until the file can be read, and not at all for a name
// that is not a file's.
KELTRA_COLD bool KTTEXTURE::loadAgain() {
    const keltra::FaultScope scope(KT_CALL("KTTEXTURE::render"));
    const bool isTold = toldMissing || *filename == '[';
    const keltra::FaultOptional optional(isTold ? keltra::kFaultsSilent : keltra::kFaultsOptional);
    return load(filename);
}

KELTRA_COLD bool KTTEXTURE::create(unsigned int width, unsigned int height, unsigned int format) {
    constexpr keltra::FaultCall call = KT_CALL("KTTEXTURE::create");
    if (width > maxSize) return keltra::failRange(call, KT_TEXT("sizeX"), width, maxSize);
    if (height > maxSize) return keltra::failRange(call, KT_TEXT("sizeY"), height, maxSize);
    if (format < 3 || format > 6)
        return keltra::failValue(call, KT_TEXT("bpp"), long(format), KT_TEXT("3 to 6"));
    unsigned char *pixels = nullptr;
    if (format <= 4) {
        pixels = newImage(width, height, format);
        if (!pixels) return keltra::failMemory(call);
    }
    // What the old bitmap was charged stays in `usedMemory`, and `memory` as it was: dynamic textures are not
    // counted.
    releaseBitmap();
    if (deleteGLTexture()) KTENGINESTATE::popVideoMemory(memory);
    bitmap = pixels;
    ownsBitmap = pixels != nullptr;
    sizeX = width;
    sizeY = height;
    bpp = format;
    keltra::copyText(filename, kDynamicName);
    nameChanged();
    upload();
    return true;
}

KELTRA_COLD bool KTTEXTURE::modify(const char *pixels, bool keepCopy) {
    constexpr keltra::FaultCall call = KT_CALL("KTTEXTURE::modify");
    if (!pixels) return keltra::failNull(call, KT_TEXT("pixels"));
    if (keepCopy) {
        if (!bitmap) {
            bitmap = newImage(sizeX, sizeY, bpp);
            ownsBitmap = bitmap != nullptr;
            if (!bitmap) return keltra::failMemory(call);
            return keltra::failState(call, KT_TEXT("there was no bitmap: made without the pixels"));
        }
        std::memmove(bitmap, pixels, std::size_t{sizeX} * sizeY * bpp);
    }
    forgetDeletedGLTexture();
    channelCache[0] = nullptr;
    keltra::bindForUpload(glId);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // Anything but the image that was uploaded would only be an error in GL.
    const bool fits = glId && uploadedBpp && uploadedX == sizeX && uploadedY == sizeY && uploadedBpp == bpp;
    if (fits) {
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, static_cast<GLsizei>(sizeX), static_cast<GLsizei>(sizeY),
                        bpp == 3 ? GL_RGB : GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    }
    return true;
}

KELTRA_COLD bool KTTEXTURE::reload() {
    forgetDeletedGLTexture();
    if (isLoaded()) return false;
    if (!bitmap) loadAgain();
    upload();
    return true;
}

KELTRA_COLD bool KTTEXTURE::setFilter(bool linear, bool withMipmaps, bool clampedToEdge) {
    trilinear = linear;
    mipmapped = withMipmaps;
    clamped = clampedToEdge;
    forgetDeletedGLTexture();
    if (isLoaded()) upload();
    return true;
}

bool KTTEXTURE::render(void *data) {
    const unsigned int channel = data ? *static_cast<const unsigned int *>(data) : 0;
    if (channel >= channels)
        return keltra::failRange(KT_CALL("KTTEXTURE::render"), KT_TEXT("data"), channel, channels - 1);
    timeStamp = static_cast<std::int32_t>(KTENGINESTATE::timeStamp);
    markHeld();
    forgetDeletedGLTexture();
    // The channels share one binding and one switch, so that others may have taken them in the meantime. A
    // texture whose file could not be read is bound as name 0 and tried again at every render.
    if (channelCache[channel] == this && isLoaded() && channelActive[channel] &&
        keltra::boundTexture() == glId)
        return true;
    if (!isLoaded()) {
        if (!bitmap) loadAgain();
        upload();
    }
    texturingOn(channel);
    keltra::bindTexture(glId);
    KTSHADER::bindTexture(channel);
    channelCache[channel] = this;
    return true;
}

// The channels share GL's one texture unit: no unit is ever selected, the numbers only index the two caches.
bool KTTEXTURE::texturingOn(unsigned int channel) {
    if (channel >= channels) {
        for (channel = 0; channel < channels; ++channel) texturingOn(channel);
    } else if (!channelActive[channel]) {
        keltra::setTexturing(true);
        channelActive[channel] = true;
    }
    return true;
}

// The switch is that of all channels: it is on again at once while another one is active.
bool KTTEXTURE::texturingOff(unsigned int channel) {
    if (channel >= channels) {
        // Most often all of them are off.
        std::uint32_t active[channels / 4];
        std::memcpy(active, channelActive, sizeof active);
        if (active[0] | active[1] | active[2] | active[3])
            for (bool &on : channelActive) deactivate(on);
        clearCache();
    } else if (deactivate(channelActive[channel])) {
        bool *const end = channelActive + channels;
        if (std::find(channelActive, end, true) != end) keltra::setTexturing(true);
    }
    return true;
}

KTTEXTURE *KTTEXTURE::findByFilename(const char *name) { return findRegistered(name); }

KTTEXTURE *KTTEXTURE::findById(unsigned int wanted) { return findRegistered(wanted); }

unsigned int KTTEXTURE::getNumberOfTextures() { return count(); }

KELTRA_COLD void KTTEXTURE::setPath(const char *path) {
    keltra::takeText(texturePath, path, KT_CALL("KTTEXTURE::setPath"));
}
