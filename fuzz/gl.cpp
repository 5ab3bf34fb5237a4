// SPDX-License-Identifier: Zlib
// An OpenGL ES 1.1 that draws nothing and looks at every argument: memory is read as far as the driver would
// read it, so that the address checker sees it, and what a driver answers with an error ends the program.

#include <GLES/gl.h>

#include <algorithm>
#include <initializer_list>
#include <set>

#include "fuzz/check.h"

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define KELTRA_ADDRESS_CHECKS
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define KELTRA_ADDRESS_CHECKS
#endif
#ifdef KELTRA_ADDRESS_CHECKS
#include <sanitizer/asan_interface.h>
#endif

namespace keltra::fuzz {
namespace {

struct Array {
    bool enabled = false;
    GLint size = 4;
    GLenum type = GL_FIXED;
    GLsizei stride = 0;
    const void *pointer = nullptr;
};

struct State {
    Array vertices, colors, normals, texCoords;
    int modelview = 1, projection = 1, texture = 1;
    GLenum matrixMode = GL_MODELVIEW;
    GLuint nextTexture = 1;
    std::set<GLuint> textures;
    unsigned hash = 0;
};

State &state() {
    static State *const instance = new State;
    return *instance;
}

void check(bool valid, const char *call) { require(valid, call); }

bool isOneOf(GLenum value, std::initializer_list<GLenum> known) {
    return std::find(known.begin(), known.end(), value) != known.end();
}

// Reads all bytes; those that the address checker allows at once are not read one by one.
void touch(const void *memory, std::size_t size) {
    if (size == 0) return;
    const auto *bytes = static_cast<const volatile unsigned char *>(memory);
    state().hash += bytes[0] + 3u * bytes[size - 1];
#ifdef KELTRA_ADDRESS_CHECKS
    if (!__asan_region_is_poisoned(const_cast<void *>(memory), size)) return;
#endif
    unsigned sum = 0;
    for (std::size_t i = 0; i < size; ++i) sum += bytes[i];
    state().hash += sum;
}

std::size_t sizeOf(GLenum type) {
    if (isOneOf(type, {GL_BYTE, GL_UNSIGNED_BYTE})) return 1;
    return isOneOf(type, {GL_SHORT, GL_UNSIGNED_SHORT}) ? 2 : 4;
}

// What lies between two elements belongs to the same records.
void touchElements(const Array &array, std::size_t first, std::size_t count) {
    if (!array.enabled) return;
    check(array.pointer, "a client array is on and null");
    const std::size_t size = sizeOf(array.type) * static_cast<std::size_t>(array.size);
    const std::size_t stride = array.stride ? static_cast<std::size_t>(array.stride) : size;
    touch(static_cast<const char *>(array.pointer) + first * stride, (count - 1) * stride + size);
}

void touchVertices(std::size_t first, std::size_t count) {
    if (count == 0) return;
    const State &now = state();
    for (const Array *array : {&now.vertices, &now.colors, &now.normals, &now.texCoords})
        touchElements(*array, first, count);
}

int &depth() {
    State &now = state();
    return now.matrixMode == GL_MODELVIEW    ? now.modelview
           : now.matrixMode == GL_PROJECTION ? now.projection
                                             : now.texture;
}

void setArray(Array &array, GLint size, GLenum type, GLsizei stride, const void *pointer) {
    check(stride >= 0, "stride");
    check(isOneOf(type, {GL_BYTE, GL_UNSIGNED_BYTE, GL_SHORT, GL_FIXED, GL_FLOAT}), "array type");
    array.size = size;
    array.type = type;
    array.stride = stride;
    array.pointer = pointer;
}

Array *arrayOf(GLenum name) {
    switch (name) {
        case GL_VERTEX_ARRAY:
            return &state().vertices;
        case GL_COLOR_ARRAY:
            return &state().colors;
        case GL_NORMAL_ARRAY:
            return &state().normals;
        case GL_TEXTURE_COORD_ARRAY:
            return &state().texCoords;
        default:
            return nullptr;
    }
}

void checkImage(GLsizei width, GLsizei height, GLenum format, GLenum type, const void *pixels) {
    check(width >= 0 && height >= 0 && width <= 512 && height <= 512, "size of a texture");
    check(isOneOf(format, {GL_RGB, GL_RGBA}) && type == GL_UNSIGNED_BYTE, "format of a texture");
    if (pixels)
        touch(pixels, static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                          (format == GL_RGB ? 3 : 4));
}

bool isMode(GLenum mode) { return mode <= GL_TRIANGLE_FAN; }

bool isCapability(GLenum name) {
    return (name >= GL_LIGHT0 && name <= GL_LIGHT7) ||
           isOneOf(name, {GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_COLOR_MATERIAL, GL_CULL_FACE,
                          GL_DEPTH_TEST, GL_DITHER, GL_FOG, GL_LIGHTING, GL_LINE_SMOOTH, GL_MULTISAMPLE,
                          GL_NORMALIZE, GL_POINT_SMOOTH, GL_POLYGON_OFFSET_FILL, GL_RESCALE_NORMAL,
                          GL_SCISSOR_TEST, GL_STENCIL_TEST, GL_TEXTURE_2D});
}

// What a light refuses: an exponent outside 0 to 128, a cut-off outside 0 to 90 but 180, negative
// attenuation.
bool isLightValue(GLenum name, GLfixed value) {
    const GLfixed one = 65536;
    if (name == GL_SPOT_EXPONENT) return value >= 0 && value <= 128 * one;
    if (name == GL_SPOT_CUTOFF) return value == 180 * one || (value >= 0 && value <= 90 * one);
    return isOneOf(name, {GL_CONSTANT_ATTENUATION, GL_LINEAR_ATTENUATION, GL_QUADRATIC_ATTENUATION}) &&
           value >= 0;
}

bool isBlendFactor(GLenum factor, bool isSource) {
    if (isOneOf(factor, {GL_ZERO, GL_ONE, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_DST_ALPHA,
                         GL_ONE_MINUS_DST_ALPHA}))
        return true;
    return isSource ? isOneOf(factor, {GL_DST_COLOR, GL_ONE_MINUS_DST_COLOR, GL_SRC_ALPHA_SATURATE})
                    : isOneOf(factor, {GL_SRC_COLOR, GL_ONE_MINUS_SRC_COLOR});
}

}  // namespace

int matrixDepths() {
    const State &now = state();
    return now.modelview + 100 * now.projection + 10000 * now.texture;
}

void newContext() { state() = State(); }

std::size_t texturesInGL() { return state().textures.size(); }

}  // namespace keltra::fuzz

using namespace keltra::fuzz;

// The calls that the engine makes and that have something to check; the library's own take no part, and all
// others do nothing.
extern "C" {

void glVertexPointer(GLint size, GLenum type, GLsizei stride, const void *pointer) {
    check(size >= 2 && size <= 4, "glVertexPointer");
    setArray(state().vertices, size, type, stride, pointer);
}
void glColorPointer(GLint size, GLenum type, GLsizei stride, const void *pointer) {
    check(size == 4, "glColorPointer");
    setArray(state().colors, size, type, stride, pointer);
}
void glNormalPointer(GLenum type, GLsizei stride, const void *pointer) {
    setArray(state().normals, 3, type, stride, pointer);
}
void glTexCoordPointer(GLint size, GLenum type, GLsizei stride, const void *pointer) {
    check(size >= 2 && size <= 4, "glTexCoordPointer");
    setArray(state().texCoords, size, type, stride, pointer);
}
void glEnableClientState(GLenum name) {
    check(arrayOf(name), "glEnableClientState");
    arrayOf(name)->enabled = true;
}
void glDisableClientState(GLenum name) {
    check(arrayOf(name), "glDisableClientState");
    arrayOf(name)->enabled = false;
}
void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    check(isMode(mode) && first >= 0 && count >= 0, "glDrawArrays");
    touchVertices(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
}
void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void *indices) {
    check(isMode(mode) && count >= 0 && type == GL_UNSIGNED_SHORT, "glDrawElements");
    check(indices || count == 0, "glDrawElements without indices");
    const auto *index = static_cast<const GLushort *>(indices);
    // All vertices of a large mesh are the same to the checker as each once.
    GLushort last = 0;
    for (GLsizei i = 0; i < count; ++i) last = std::max(last, index[i]);
    if (count > 0) touchVertices(0, last + std::size_t{1});
}
void glEnable(GLenum name) { check(isCapability(name), "glEnable"); }
void glDisable(GLenum name) { check(isCapability(name), "glDisable"); }
void glMatrixMode(GLenum mode) {
    check(isOneOf(mode, {GL_MODELVIEW, GL_PROJECTION, GL_TEXTURE}), "glMatrixMode");
    state().matrixMode = mode;
}
void glPushMatrix() { check(++depth() <= (state().matrixMode == GL_MODELVIEW ? 16 : 2), "glPushMatrix"); }
void glPopMatrix() { check(--depth() >= 1, "glPopMatrix"); }
void glLoadMatrixx(const GLfixed *matrix) { touch(matrix, 16 * sizeof *matrix); }
void glMultMatrixx(const GLfixed *matrix) { touch(matrix, 16 * sizeof *matrix); }
void glFrustumx(GLfixed left, GLfixed right, GLfixed bottom, GLfixed top, GLfixed near, GLfixed far) {
    check(left != right && bottom != top && near != far && near > 0 && far > 0, "glFrustumx");
}
void glOrthox(GLfixed left, GLfixed right, GLfixed bottom, GLfixed top, GLfixed near, GLfixed far) {
    check(left != right && bottom != top && near != far, "glOrthox");
}
void glLightx(GLenum light, GLenum name, GLfixed value) {
    check(light >= GL_LIGHT0 && light <= GL_LIGHT7 && isLightValue(name, value), "glLightx");
}
void glLightxv(GLenum light, GLenum name, const GLfixed *values) {
    check(light >= GL_LIGHT0 && light <= GL_LIGHT7, "glLightxv");
    check(isOneOf(name, {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_POSITION, GL_SPOT_DIRECTION}), "glLightxv");
    touch(values, (name == GL_SPOT_DIRECTION ? 3 : 4) * sizeof *values);
}
void glLightModelxv(GLenum name, const GLfixed *values) {
    check(name == GL_LIGHT_MODEL_AMBIENT, "glLightModelxv");
    touch(values, 4 * sizeof *values);
}
void glMaterialx(GLenum face, GLenum name, GLfixed value) {
    check(face == GL_FRONT_AND_BACK && name == GL_SHININESS && value >= 0 && value <= 128 * 65536,
          "glMaterialx");
}
void glMaterialxv(GLenum face, GLenum name, const GLfixed *values) {
    check(face == GL_FRONT_AND_BACK, "glMaterialxv");
    check(isOneOf(name, {GL_AMBIENT, GL_DIFFUSE, GL_SPECULAR, GL_EMISSION, GL_AMBIENT_AND_DIFFUSE}),
          "glMaterialxv");
    touch(values, 4 * sizeof *values);
}
void glBlendFunc(GLenum source, GLenum target) {
    check(isBlendFactor(source, true) && isBlendFactor(target, false), "glBlendFunc");
}
void glScissor(GLint, GLint, GLsizei width, GLsizei height) { check(width >= 0 && height >= 0, "glScissor"); }
void glViewport(GLint, GLint, GLsizei width, GLsizei height) {
    check(width >= 0 && height >= 0, "glViewport");
}
void glGenTextures(GLsizei count, GLuint *names) {
    for (GLsizei i = 0; i < count; ++i) state().textures.insert(names[i] = state().nextTexture++);
}
void glDeleteTextures(GLsizei count, const GLuint *names) {
    for (GLsizei i = 0; i < count; ++i) check(state().textures.erase(names[i]) == 1, "glDeleteTextures");
}
void glBindTexture(GLenum target, GLuint name) {
    check(target == GL_TEXTURE_2D && (name == 0 || state().textures.count(name)), "glBindTexture");
}
void glTexImage2D(GLenum target, GLint level, GLint, GLsizei width, GLsizei height, GLint border,
                  GLenum format, GLenum type, const void *pixels) {
    check(target == GL_TEXTURE_2D && level >= 0 && level < 10 && border == 0, "glTexImage2D");
    checkImage(width, height, format, type, pixels);
}
void glTexSubImage2D(GLenum target, GLint level, GLint, GLint, GLsizei width, GLsizei height, GLenum format,
                     GLenum type, const void *pixels) {
    check(target == GL_TEXTURE_2D && level == 0, "glTexSubImage2D");
    checkImage(width, height, format, type, pixels);
}
void glReadPixels(GLint, GLint, GLsizei width, GLsizei height, GLenum, GLenum, void *pixels) {
    std::fill_n(static_cast<unsigned char *>(pixels), 4 * width * height, state().hash & 0xff);
}
void glGetIntegerv(GLenum name, GLint *values) {
    *values = name == GL_MAX_MODELVIEW_STACK_DEPTH ? 16 : name == GL_MAX_LIGHTS ? 8 : 2;
}
const GLubyte *glGetString(GLenum) { return reinterpret_cast<const GLubyte *>(""); }
GLenum glGetError() { return GL_NO_ERROR; }

void glAlphaFuncx(GLenum, GLfixed) {}
void glClear(GLbitfield) {}
void glClearColorx(GLfixed, GLfixed, GLfixed, GLfixed) {}
void glClearDepthx(GLfixed) {}
void glClearStencil(GLint) {}
void glColor4x(GLfixed, GLfixed, GLfixed, GLfixed) {}
void glCullFace(GLenum) {}
void glDepthFunc(GLenum) {}
void glDepthMask(GLboolean) {}
void glFinish() {}
void glFlush() {}
void glHint(GLenum, GLenum) {}
void glLightModelx(GLenum, GLfixed) {}
void glLoadIdentity() {}
void glMultiTexCoord4x(GLenum, GLfixed, GLfixed, GLfixed, GLfixed) {}
void glNormal3x(GLfixed, GLfixed, GLfixed) {}
void glPixelStorei(GLenum, GLint) {}
void glRotatex(GLfixed, GLfixed, GLfixed, GLfixed) {}
void glShadeModel(GLenum) {}
void glTexParameterx(GLenum, GLenum, GLfixed) {}
void glTranslatex(GLfixed, GLfixed, GLfixed) {}
}
