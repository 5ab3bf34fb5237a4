#include "core/holders.h"

#include <keltra/box.h>
#include <keltra/element.h>
#include <keltra/emitter.h>
#include <keltra/engine.h>
#include <keltra/fbo.h>
#include <keltra/font.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/video.h>

namespace keltra {

void Holders::forget(const KTTEXTURE *gone) {
    KTMATERIAL::forgetTexture(gone);
    KTFBO::forgetTexture(gone);
    KTFONT::forgetTexture(gone);
    KTBOX::forgetTexture(gone);
    KTEMITTER::forgetTexture(gone);
    KTVIDEO::forgetTexture(gone);
}

void Holders::forget(const KTSHADER *gone) {
    KTMATERIAL::forgetShader(gone);
    KTBOX::forgetShader(gone);
}

void Holders::forget(const KTFONT *gone) { KTBOX::forgetFont(gone); }

void Holders::forget(const KTMATERIAL *gone) { KTMESH::forgetMaterial(gone); }

void Holders::forget(const KTNODE *gone) {
    KTELEMENT::forget(gone);
    if (KELTRA::skybox == gone) KELTRA::skybox = nullptr;
}

}  // namespace keltra
