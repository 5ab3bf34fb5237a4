// SPDX-License-Identifier: Zlib
// First: with code of two sizes in a source, GCC 12 for ARM takes functions over classes that are only
// declared so far for those of another kind.
#include "core/holders.h"

#include <keltra/material.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

const keltra::OnGone<KTTEXTURE> KTMATERIAL::onTextureGone(&KTMATERIAL::forgetTexture);
const keltra::OnGone<KTSHADER> KTMATERIAL::onShaderGone(&KTMATERIAL::forgetShader);

void KTMATERIAL::forgetTexture(const keltra::Gone<KTTEXTURE> &gone) {
    keltra::Ahead ahead(getNumberOfMaterials());
    visitList(allMaterials, gone.mostVisited(), [gone, &ahead](KTMATERIAL &material) {
        ahead.passes(&material, static_cast<KTLISTED &>(material), material.texture);
        for (KTTEXTURE *&slot : material.texture)
            if (slot) gone.clear(slot);
    });
}

void KTMATERIAL::forgetShader(const keltra::Gone<KTSHADER> &gone) {
    keltra::Ahead ahead(getNumberOfMaterials());
    visitList(allMaterials, gone.mostVisited(), [&gone, &ahead](KTMATERIAL &material) {
        ahead.passes(&material, static_cast<KTLISTED &>(material), material.shader);
        gone.clear(material.shader);
    });
}
