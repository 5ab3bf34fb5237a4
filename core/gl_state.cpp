// SPDX-License-Identifier: Zlib
#include "core/gl_state.h"

#include <keltra/opengl.h>

#include "foundation/cold.h"

#include <cstring>

namespace keltra {

namespace {

constexpr GLfixed kOne = 1 << 16;
constexpr Color kWhite = {{kOne, kOne, kOne, kOne}};

// State of the GL without a public flag. These are the values of a new context.
struct State {
    unsigned int suspensions = 0;  // of face culling
    bool in2DPass = false;
    bool depthTest = true;  // KTOPENGL::reset switches it on
    bool depthWrites = true;
    bool alphaTest = false;
    GLenum blendSource = GL_ONE, blendDestination = GL_ZERO;
    bool texturing = false;
    GLuint texture = 0, bound = 0;  // the texture for drawing, and the one bound in the GL
    Color color = kWhite;
    bool colorHolds = true, normalHolds = true, texCoordHolds = true;
    bool initialMaterial = false;  // its values in 16.16, which a new context does not have
};

State state;
unsigned int stamp = 0;
OnNewContext *firstToNotify = nullptr;

bool isCulling() { return KTOPENGL::culling && state.suspensions == 0; }

}  // namespace

OnNewContext::OnNewContext(void (*function)()) : forget(function), next(firstToNotify) {
    firstToNotify = this;
}

void OnNewContext::notify() {
    for (const OnNewContext *each = firstToNotify; each; each = each->next) each->forget();
}

KELTRA_COLD void beginContext() {
    state = State();
    stampSurface();
    KTOPENGL::blending = KTOPENGL::scissor = KTOPENGL::culling = KTOPENGL::twoSide = false;
    KTOPENGL::vertexArrayStatus = KTOPENGL::indexArrayStatus = KTOPENGL::normalArrayStatus = false;
    KTOPENGL::colorArrayStatus = KTOPENGL::textureArrayStatus = false;
    OnNewContext::notify();
}

void setCapability(bool &cached, GLenum capability, bool on) {
    if (cached == on) return;
    if (on)
        glEnable(capability);
    else
        glDisable(capability);
    cached = on;
}

void suspendCulling(CullingSuspension by) {
    state.suspensions |= by;
    glDisable(GL_CULL_FACE);
}

void resumeCulling(CullingSuspension by) {
    if (!(state.suspensions & by)) return;
    state.suspensions &= ~static_cast<unsigned int>(by);
    if (isCulling()) glEnable(GL_CULL_FACE);
}

bool isCullingSuspended() { return state.suspensions != 0; }

ForcedCulling::ForcedCulling() : wasOn(isCulling()) {
    if (!wasOn) glEnable(GL_CULL_FACE);
}

ForcedCulling::~ForcedCulling() {
    if (!wasOn) glDisable(GL_CULL_FACE);
}

void enter2DPass() {
    state.in2DPass = true;
    suspendCulling(kBy2DPass);
    setDepthTest(false);
}

void leave2DPass() {
    state.in2DPass = false;
    state.suspensions = 0;
    setDepthTest(true);
    if (KTOPENGL::culling) glEnable(GL_CULL_FACE);
}

void settle2DPass() {
    if (!state.in2DPass) return;
    if (state.depthTest) setDepthTest(false);
    useFlatArrays();
}

void useFlatArrays() {
    KTOPENGL::vertexArrayOn();
    KTOPENGL::normalArrayOff();
    KTOPENGL::colorArrayOn();
    KTOPENGL::textureArrayOn();
}

void setDepthTest(bool on) {
    state.depthTest = on;
    if (on)
        glEnable(GL_DEPTH_TEST);
    else
        glDisable(GL_DEPTH_TEST);
}

void setDepthWrites(bool on) {
    if (state.depthWrites == on) return;
    glDepthMask(on ? GL_TRUE : GL_FALSE);
    state.depthWrites = on;
}

void setAlphaTest(bool on) { setCapability(state.alphaTest, GL_ALPHA_TEST, on); }

void setBlendFunction(GLenum source, GLenum destination) {
    glBlendFunc(source, destination);
    if (source == state.blendSource && destination == state.blendDestination) return;
    state.blendSource = source;
    state.blendDestination = destination;
    stampSurface();
}

void setTexturing(bool on) {
    if (on)
        glEnable(GL_TEXTURE_2D);
    else
        glDisable(GL_TEXTURE_2D);
    state.texturing = on;
    stampSurface();
}

bool isTexturing() { return state.texturing; }

void bindTexture(GLuint name) {
    bindForUpload(name);
    if (name == state.texture) return;
    state.texture = name;
    stampSurface();
}

void bindForUpload(GLuint name) {
    glBindTexture(GL_TEXTURE_2D, name);
    state.bound = name;
}

GLuint boundTexture() { return state.texture; }

void useTexture() {
    if (state.texturing && state.bound != state.texture) bindForUpload(state.texture);
}

void deleteTexture(GLuint name) {
    glDeleteTextures(1, &name);
    if (name == state.bound) state.bound = 0;
    if (name != state.texture) return;
    state.texture = 0;
    stampSurface();
}

unsigned int surfaceStamp() { return stamp; }

void stampSurface() { ++stamp; }

void setColor(const Color &color) {
    state.color = color;
    setPassColor(color);
    state.colorHolds = true;
}

Color getColor() { return state.color; }

void setPassColor(const Color &color) {
    glColor4x(color.rgba[0], color.rgba[1], color.rgba[2], color.rgba[3]);
    state.colorHolds = false;
}

void useColor() {
    if (!state.colorHolds) setColor(state.color);
}

void useNormal() {
    if (!state.normalHolds) glNormal3x(0, 0, kOne);
    state.normalHolds = true;
}

void useTexCoord() {
    if (!state.texCoordHolds) glMultiTexCoord4x(GL_TEXTURE0, 0, 0, 0, kOne);
    state.texCoordHolds = true;
}

void forgetColor() { state.colorHolds = false; }
void forgetNormal() { state.normalHolds = false; }
void forgetTexCoord() { state.texCoordHolds = false; }

KELTRA_COLD void useInitialMaterial() {
    if (state.initialMaterial) return;
    const GLfixed black[4] = {0, 0, 0, kOne}, dark[4] = {kOne / 5, kOne / 5, kOne / 5, kOne};
    const GLfixed light[4] = {kOne * 4 / 5, kOne * 4 / 5, kOne * 4 / 5, kOne};
    glMaterialxv(GL_FRONT_AND_BACK, GL_EMISSION, black);
    glMaterialxv(GL_FRONT_AND_BACK, GL_AMBIENT, dark);
    glMaterialxv(GL_FRONT_AND_BACK, GL_DIFFUSE, light);
    glMaterialxv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
    glMaterialx(GL_FRONT_AND_BACK, GL_SHININESS, 0);
    state.initialMaterial = true;
}

void forgetInitialMaterial() { state.initialMaterial = false; }

}  // namespace keltra
