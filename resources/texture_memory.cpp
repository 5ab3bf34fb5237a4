// SPDX-License-Identifier: Zlib
#include <keltra/engine_state.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "core/holders.h"
#include "foundation/block.h"
#include "foundation/fault.h"
#include "foundation/quiet.h"
#include "resources/mipmap.h"

#include <GLES/gl.h>

#include <algorithm>

unsigned int KTTEXTURE::deletions = 0;
KTTEXTURE *KTTEXTURE::updating = nullptr;

namespace {

struct Candidate {
    KTTEXTURE *texture;
    unsigned int order;
};

void uploadLevel(unsigned int level, unsigned int sizeX, unsigned int sizeY, unsigned int bpp,
                 const void *pixels) {
    const GLenum format = bpp == 3 ? GL_RGB : GL_RGBA;
    glTexImage2D(GL_TEXTURE_2D, static_cast<GLint>(level), static_cast<GLint>(format),
                 static_cast<GLsizei>(sizeX), static_cast<GLsizei>(sizeY), 0, format, GL_UNSIGNED_BYTE,
                 pixels);
}

}  // namespace

bool KTTEXTURE::update() {
    if (upload()) return true;
    return keltra::failState(KT_CALL("KTTEXTURE::update"), bitmap ? KT_TEXT("there is no GL context")
                                                                  : KT_TEXT("the texture has no bitmap"));
}

// Without a fault: a texture is rendered even without its file.
bool KTTEXTURE::upload() {
    const bool isTarget = bpp == 5 || bpp == 6;
    if (!isTarget && !bitmap) return false;
    if (deleteGLTexture()) KTENGINESTATE::popVideoMemory(memory);
    const unsigned int need = memory;
    // Doubled at every upload with mipmaps, so that repeated updates charge more and more: applications'
    // budgets are tuned to these counts.
    if (mipmapped) memory *= 2;
    if (KTENGINESTATE::videoMemoryTotal - KTENGINESTATE::videoMemoryUsed < need) {
        updating = this;
        garbageCollect(KTENGINESTATE::videoMemoryTotal - need);
        updating = nullptr;
    }
    GLuint name = 0;
    glGenTextures(1, &name);
    if (!name) return false;
    glId = name;
    ownsGLTexture = true;
    channelCache[0] = nullptr;
    keltra::bindForUpload(glId);
    setParameters();
    if (bpp == 3 || bpp == 4) uploadImage();
    // The GL texture stays as it is: a new upload in each frame would charge more each time.
    if (glGetError() == GL_OUT_OF_MEMORY) keltra::warnMemory(KT_CALL("KTTEXTURE::update"));
    mipmapResident = mipmapped;
    KTENGINESTATE::pushVideoMemory(mipmapped ? 2 * memory : memory);
    return true;
}

void KTTEXTURE::setParameters() const {
    const GLfixed wrap = clamped ? GL_CLAMP_TO_EDGE : GL_REPEAT;
    const GLfixed magnification = trilinear ? GL_LINEAR : GL_NEAREST;
    GLfixed minification = magnification;
    if (mipmapped) minification = trilinear ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_NEAREST;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, wrap);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, wrap);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, magnification);
    glTexParameterx(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, minification);
}

// The smaller levels are made in the bitmap itself, which no longer holds the full image afterwards: the
// device has no memory for both.
void KTTEXTURE::uploadImage() {
    uploadLevel(0, sizeX, sizeY, bpp, bitmap);
    uploadedX = sizeX;
    uploadedY = sizeY;
    uploadedBpp = bpp;
    if (!mipmapped) return;
    unsigned int width = sizeX, height = sizeY;
    const unsigned int levels = keltra::mipmapLevels(width, height);
    for (unsigned int level = 1; level <= levels; ++level) {
        keltra::halveImage(bitmap, width, height, bpp);
        uploadLevel(level, width, height, bpp, bitmap);
    }
}

bool KTTEXTURE::unload(bool freeBitmap) {
    if (freeBitmap && bitmap) {
        if (ownsBitmap) usedMemory -= memory;
        releaseBitmap();
    }
    const bool hadMipmaps = mipmapResident;
    if (deleteGLTexture()) {
        KTENGINESTATE::popVideoMemory(memory);
        if (hadMipmaps) KTENGINESTATE::popVideoMemory(memory);
    }
    return true;
}

void KTTEXTURE::releaseBitmap() {
    keltra::releaseBlock(bitmap);
    bitmap = nullptr;
    ownsBitmap = false;
}

// Leaves the texture not resident. True when the GL texture was its own, which is deleted then; a copy only
// forgets it.
bool KTTEXTURE::deleteGLTexture() {
    const bool own = glId && ownsGLTexture;
    if (own) {
        for (KTTEXTURE *&cached : channelCache)
            if (cached && cached->glId == glId) cached = nullptr;
        keltra::deleteTexture(glId);
        ++deletions;
    }
    glId = 0;
    ownsGLTexture = false;
    mipmapResident = false;
    uploadedX = uploadedY = uploadedBpp = 0;
    return own;
}

// A copy cannot know which GL texture was deleted, and names are used again: it then uploads one of its own.
void KTTEXTURE::forgetDeletedGLTexture() {
    if (glId && !ownsGLTexture && deletionsSeen != deletions) deleteGLTexture();
}

// Whether an RGB picture of that size can be written to the image in GL, whatever the size fields hold.
bool KTTEXTURE::takesPicture(unsigned int width, unsigned int height) {
    forgetDeletedGLTexture();
    return glId && uploadedBpp == 3 && uploadedX >= width && uploadedY >= height;
}

void KTTEXTURE::release() {
    unload(true);
    for (KTTEXTURE *&cached : channelCache)
        if (cached == this) cached = nullptr;
    keltra::OnGone<KTTEXTURE>::notify({*this, isHeld()});
    delist();
}

bool KTTEXTURE::garbageCollect(unsigned long limit) {
    const unsigned int total = count();
    if (!total) return false;
    Candidate *candidates =
        static_cast<Candidate *>(keltra::allocate(total * static_cast<unsigned int>(sizeof(Candidate))));
    if (!candidates) return keltra::failMemory(KT_CALL("KTTEXTURE::garbageCollect"));
    unsigned int order = 0;
    for (KTTEXTURE *texture = firstRegistered(); texture; texture = texture->registeredNext(), ++order)
        candidates[order] = {texture, order};
    // The newest go first. Deliberate: a frame draws its textures in the same order each time, so when they
    // do not all fit, evicting the oldest would evict just the one that is needed next.
    std::sort(candidates, candidates + total, [](const Candidate &a, const Candidate &b) {
        return a.texture->timeStamp != b.texture->timeStamp ? a.texture->timeStamp > b.texture->timeStamp
                                                            : a.order < b.order;
    });
    for (unsigned int i = 0; i < total; ++i) {
        KTTEXTURE *texture = candidates[i].texture;
        if (texture != updating && KTENGINESTATE::videoMemoryUsed >= limit) texture->unload(true);
    }
    const Candidate *unused = std::remove_if(candidates, candidates + total, [](const Candidate &each) {
        return each.texture == updating || each.texture->references > 0;
    });
    keltra::GoneMany<KTTEXTURE> gone(static_cast<unsigned int>(unused - candidates));
    for (const Candidate *each = candidates; each != unused; ++each) gone.add(*each->texture);
    gone.notify();
    for (const Candidate *each = candidates; each != unused; ++each) destroy(*each->texture);
    vnfFree(candidates);
    return true;
}

bool KTTEXTURE::cleanUp() {
    keltra::notifyGoneFrom(firstRegistered());
    return destroyAll(&KTTEXTURE::release);
}
