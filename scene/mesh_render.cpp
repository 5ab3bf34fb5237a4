// SPDX-License-Identifier: Zlib
#include <keltra/element.h>
#include <keltra/engine_state.h>
#include <keltra/glbridge.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>
#include <keltra/opengl.h>
#include <keltra/settings.h>
#include <keltra/shader.h>
#include <keltra/texture.h>

#include "core/gl_state.h"
#include "foundation/block.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "math/fixed.h"
#include "resources/transparency.h"
#include "scene/node_class.h"

#include <GLES/gl.h>

// What the GL is given for one draw; null arrays stay off.
struct KTMESH::DRAWING {
    const std::int32_t *vertices, *normals, *uvs;
    GLenum primitive;
    GLsizei indexCount;
    const std::uint16_t *indices;
};

namespace {

constexpr unsigned int kEdgeIndices = 6;       // of a triangle drawn as three lines
constexpr float kNormalLength = 1.0f / 16.0f;  // of the bounding radius
constexpr float kNormalLengthWithoutRadius = 1.0f;

// The colour that picking reads back, as exactly as the display can hold it.
void setPickingColor(unsigned int code) {
    const bool is16 = KTSETTINGS::colorDepth == 16;
    const float rgb565[4] = {float(code >> 11 & 31) / 31.0f, float(code >> 5 & 63) / 63.0f,
                             float(code & 31) / 31.0f, 0.0f};
    const float rgba8888[4] = {float(code & 255) / 255.0f, float(code >> 8 & 255) / 255.0f,
                               float(code >> 16 & 255) / 255.0f, float(code >> 24) / 255.0f};
    keltra::Color color;
    keltra::toFixed(is16 ? rgb565 : rgba8888, color.rgba, 4);
    keltra::setPassColor(color);
}

void bindPassShader(bool skinned) {
    if (!KTSHADER::usePassthrough()) {
        KTSHADER::disable();
        return;
    }
    const bool depth = KTOPENGL::currentProfile == KT_PROFILE_DEPTH;
    KTSHADER *plain = depth ? KTSHADER::passthroughZPass : KTSHADER::passthrough;
    KTSHADER *withBones = depth ? KTSHADER::passthroughZPassA : KTSHADER::passthroughA;
    if (KTSHADER *shader = skinned ? withBones : plain) shader->render(nullptr);
    if (depth) KTSHADER::bindNearAndFarPlane(KTOPENGL::nearPlane, KTOPENGL::farPlane);
}

void setPlainSurface() {
    KTOPENGL::blendingOff();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    if (!KTLIGHT::getLighting()) return;
    keltra::useInitialMaterial();
    KTMATERIAL::reset();
}

// Arrays that are off leave the current values to count, as far as anything reads them.
void useCurrentValues() {
    keltra::useTexture();
    if (KTLIGHT::getLighting()) {
        if (!KTOPENGL::normalArrayStatus) keltra::useNormal();
    } else if (KTOPENGL::currentProfile < KT_PROFILE_PICKING) {
        keltra::useColor();
    }
    if (!KTOPENGL::textureArrayStatus && keltra::isTexturing()) keltra::useTexCoord();
}

std::int32_t farEnd(std::int32_t vertex, std::int32_t normal, std::int32_t length) {
    const std::int64_t step = static_cast<std::int64_t>(normal) * length >> 16;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(vertex) + static_cast<std::uint32_t>(step));
}

}  // namespace

bool KTMESH::render(void *data) {
    if (!data) return keltra::failNull(KT_CALL("KTMESH::render"), KT_TEXT("data"));
    if (hidden) return true;
    KTELEMENT &element = *static_cast<KTELEMENT *>(data);
    const bool special = KTOPENGL::currentProfile >= KT_PROFILE_PICKING;
    if (special) {
        beginSpecialPass();
    } else {
        if (KTLIGHT::getLighting()) KTLIGHT::activateNearest(&element);
        renderMaterial(element);
    }
    if (isSkinned() && !animate(element.getParam1())) return false;

    // Transparent is what its material is, with lighting on or off: a special pass covers what normal drawing
    // covered.
    const bool transparent = keltra::isTransparent(material);
    if (!element.getNearestLight(0)) KTSHADER::disable();
    KT_glLoadMatrixf(element.getMatrix()->m);
    if (KTOPENGL::twoSide != transparent) KTOPENGL::twoSide ? KTOPENGL::twoSideOff() : KTOPENGL::twoSideOn();

    const DRAWING drawing = prepareDrawing(special);
    if (transparent && drawing.primitive == GL_TRIANGLES) {
        const keltra::ForcedCulling culling;
        glCullFace(GL_FRONT);
        draw(drawing);
        glCullFace(GL_BACK);
        draw(drawing);
    } else {
        draw(drawing);
    }
    if (!special && normalsShown) drawNormals(drawing);
    if (isSkinned()) KTSHADER::unbindBones();
    return true;
}

// Flat drawing for picking and for the depth of field. Lighting, texturing and blending change behind the
// back of the current material, which is therefore forgotten.
void KTMESH::beginSpecialPass() const {
    KTLIGHT::lightingOff();
    KTTEXTURE::texturingOff(KTTEXTURE::channels);
    KTOPENGL::blendingOff();
    KTMATERIAL::reset();
    bindPassShader(isSkinned());
    if (KTOPENGL::currentProfile == KT_PROFILE_PICKING) setPickingColor(auxId ? auxId : id);
}

void KTMESH::renderMaterial(const KTELEMENT &element) {
    if (!material) {
        setPlainSurface();
        return;
    }
    const KTELEMENT *nearest = KTLIGHT::getLighting() ? element.getNearestLight(0) : nullptr;
    const KTLIGHT *light = nearest ? keltra::asTyped<KTLIGHT>(nearest->getNode()) : nullptr;
    if (!light) {
        material->render(nullptr);
        return;
    }
    std::int32_t lightType = static_cast<std::int32_t>(light->lightType);
    material->render(&lightType);
}

KTMESH::DRAWING KTMESH::prepareDrawing(bool special) {
    const bool skinnedHere = isSkinned() && !usesSkinningShader();
    DRAWING drawing = {vertices, vertexNormals, uvs, GL_TRIANGLES, GLsizei(numberOfFaces * 3), faces};
    if (skinnedHere) {
        drawing.vertices = skinnedVertices;
        drawing.normals = skinnedNormals;
    } else if (isSkinned()) {
        const unsigned int count = countPoolBones();
        KTSHADER::bindBones(count, boneQuaternions[0], boneTranslations[0], 0, count);
    }
    if (numberOfVertices == 0) drawing.vertices = drawing.normals = nullptr;
    if (numberOfUVs == 0 || KTOPENGL::currentProfile == KT_PROFILE_PICKING) drawing.uvs = nullptr;
    if (!faces) drawing.indexCount = 0;
    // Without memory for the lines the triangles are drawn.
    if (!special && KTENGINESTATE::isWireframed() && makeLineIndices()) {
        drawing.primitive = GL_LINES;
        drawing.indexCount = GLsizei(numberOfFaces * kEdgeIndices);
        drawing.indices = lineIndices;
    }
    return drawing;
}

// Most meshes find the arrays switched as they need them.
void KTMESH::draw(const DRAWING &drawing) {
    if (drawing.vertices) {
        if (!KTOPENGL::vertexArrayStatus) KTOPENGL::vertexArrayOn();
        glVertexPointer(3, GL_FIXED, 0, drawing.vertices);
    } else if (KTOPENGL::vertexArrayStatus) {
        KTOPENGL::vertexArrayOff();
    }
    if (drawing.normals) {
        if (!KTOPENGL::normalArrayStatus) KTOPENGL::normalArrayOn();
        glNormalPointer(GL_FIXED, 0, drawing.normals);
    } else if (KTOPENGL::normalArrayStatus) {
        KTOPENGL::normalArrayOff();
    }
    if (drawing.uvs) {
        if (!KTOPENGL::textureArrayStatus) KTOPENGL::textureArrayOn();
        glTexCoordPointer(2, GL_FIXED, 0, drawing.uvs);
    } else if (KTOPENGL::textureArrayStatus) {
        KTOPENGL::textureArrayOff();
    }
    if (KTOPENGL::colorArrayStatus) KTOPENGL::colorArrayOff();
    useCurrentValues();
    if (drawing.indexCount > 0)
        glDrawElements(drawing.primitive, drawing.indexCount, GL_UNSIGNED_SHORT, drawing.indices);
}

bool KTMESH::isMadeFrom(const SOURCE &source, const void *array) const {
    return source.array == array && source.vertices == numberOfVertices && source.faces == numberOfFaces;
}

// Each edge of each triangle; edges that triangles share are drawn with both.
KELTRA_COLD bool KTMESH::makeLineIndices() {
    if (!faces || numberOfFaces == 0) return false;
    if (lineIndices && isMadeFrom(linesMadeFrom, faces)) return true;
    keltra::releaseBlock(lineIndices);
    const std::size_t count = std::size_t(numberOfFaces) * kEdgeIndices;
    lineIndices = static_cast<std::uint16_t *>(keltra::newBlock(count * sizeof(std::uint16_t)));
    if (!lineIndices) return false;
    linesMadeFrom = {faces, numberOfVertices, numberOfFaces};
    std::uint16_t *line = lineIndices;
    for (const std::uint16_t *face = faces, *end = faces + numberOfFaces * 3u; face != end; face += 3) {
        for (int corner = 0; corner < 3; ++corner) {
            *line++ = face[corner];
            *line++ = face[(corner + 1) % 3];
        }
    }
    return true;
}

// From each vertex along its normal. A rigid mesh needs its lines once, a skinned one anew for each pose.
bool KTMESH::makeNormalLines(const DRAWING &drawing) {
    if (!drawing.vertices || !drawing.normals) return false;
    const bool made = normalLines && isMadeFrom(normalsMadeFrom, drawing.vertices);
    if (made && !isSkinned()) return true;
    const std::size_t count = std::size_t(numberOfVertices) * 6;
    if (!made) {
        keltra::releaseBlock(normalLines);
        normalLines = static_cast<std::int32_t *>(keltra::newBlock(count * sizeof(std::int32_t)));
    }
    if (!normalLines) return false;
    normalsMadeFrom = {drawing.vertices, numberOfVertices, numberOfFaces};
    const std::int32_t length =
        keltra::toFixed(radius > 0.0f ? radius * kNormalLength : kNormalLengthWithoutRadius);
    std::int32_t *line = normalLines;
    for (std::size_t v = 0; v < numberOfVertices; ++v, line += 6) {
        for (std::size_t i = 0; i < 3; ++i) {
            line[i] = drawing.vertices[3 * v + i];
            line[3 + i] = farEnd(line[i], drawing.normals[3 * v + i], length);
        }
    }
    return true;
}

KELTRA_COLD void KTMESH::drawNormals(const DRAWING &drawing) {
    if (!makeNormalLines(drawing)) return;
    KTOPENGL::vertexArrayOn();
    KTOPENGL::normalArrayOff();
    KTOPENGL::textureArrayOff();
    glVertexPointer(3, GL_FIXED, 0, normalLines);
    useCurrentValues();
    glDrawArrays(GL_LINES, 0, GLsizei(numberOfVertices) * 2);
}
