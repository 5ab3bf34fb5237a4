// SPDX-License-Identifier: Zlib
#include "core/glbridge.h"
#include <keltra/glbridge.h>

#include <keltra/matrix.h>

#include "core/gl_state.h"
#include "foundation/cold.h"
#include "foundation/fault.h"
#include "math/fixed.h"
#include "math/soft_arm.h"
#include "math/sparse.h"

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

using keltra::toFixed;

constexpr unsigned int kLevels = 32;  // matrices a stack, and the deepest push
constexpr int kStacks = 2;            // 0 model-view, 1 projection
// Below these levels trees nest in a store of their own: with the levels above it, room for the deepest tree
// and the skeleton of its deepest mesh.
constexpr unsigned int kTreeLevels = kLevels - 1;
constexpr unsigned int kDeepLevels = 228;

// The stacks are contiguous, and depth runs from 0 to 32. So level 32 of the model-view stack is the base of
// the projection stack: deliberate, applications have been tuned against it. Level 32 of the projection gets
// room of its own.
float mirror[kStacks * kLevels + 1][16];
unsigned int depths[kStacks];
int current;
unsigned int sizes[kStacks];  // matrices that the GL's stacks hold; 0 while that is not known
float deepLevels[kDeepLevels][16];
unsigned int deepDepth;

// Whether the GL has a level for the current depth.
bool isInGL() { return sizes[current] == 0 || depths[current] < sizes[current]; }

constexpr GLfixed kOne = 1 << 16;
constexpr float kIdentity[16] = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f,
                                 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};

float *top() { return mirror[current * kLevels + depths[current]]; }

// Matrices that do not overlap.
inline void copyMatrix(const float *from, float *to) {
#if defined(KELTRA_SOFT_ARM)
    keltraCopyWords(from, to);
#else
    std::memcpy(to, from, sizeof mirror[0]);
#endif
}

#if defined(__SSE2__)
// The first three columns of the top, each of which becomes a sum of products of all three.
class Columns {
   public:
    explicit Columns(float *t) : t(t), x(_mm_loadu_ps(t)), y(_mm_loadu_ps(t + 4)), z(_mm_loadu_ps(t + 8)) {}
    void set(int column, float a, float b, float c) const {
        const __m128 two = _mm_add_ps(_mm_mul_ps(_mm_set1_ps(a), x), _mm_mul_ps(_mm_set1_ps(b), y));
        _mm_storeu_ps(t + 4 * column, _mm_add_ps(two, _mm_mul_ps(_mm_set1_ps(c), z)));
    }

   private:
    float *const t;
    const __m128 x, y, z;
};

// top := m x top, where the last row of m is (0, 0, 0, 1) and m does not translate.
void multiplyTopByRotation(const float *m) {
    const Columns columns(top());
    for (int i = 0; i < 3; ++i) columns.set(i, m[4 * i], m[4 * i + 1], m[4 * i + 2]);
}

// The same for the matrix of keltra::setTurn.
void multiplyTopByTurn(const keltra::Rotation &turn, int axis) {
    const bool isNone = keltra::isZero(turn.sine);
    const float c = turn.cosine, u = turn.unit, s = isNone ? 0.0f : turn.sine, b = isNone ? 0.0f : -turn.sine;
    const Columns columns(top());
    if (axis == 0) {
        columns.set(0, u, 0.0f, 0.0f);
        columns.set(1, 0.0f, c, s);
        columns.set(2, 0.0f, b, c);
    } else if (axis == 1) {
        columns.set(0, c, 0.0f, b);
        columns.set(1, 0.0f, u, 0.0f);
        columns.set(2, s, 0.0f, c);
    } else {
        columns.set(0, c, s, 0.0f);
        columns.set(1, b, c, 0.0f);
        columns.set(2, 0.0f, 0.0f, u);
    }
}
#else
// top := m x top, where the last row of m is (0, 0, 0, 1) and m does not translate.
void multiplyTopByRotation(const float *m) {
    float *t = top();
    for (int j = 0; j < 4; ++j) {
        float x = t[j], y = t[4 + j], z = t[8 + j];
        t[j] = m[0] * x + m[1] * y + m[2] * z;
        t[4 + j] = m[4] * x + m[5] * y + m[6] * z;
        t[8 + j] = m[8] * x + m[9] * y + m[10] * z;
    }
}
#endif

void rotateTop(float angle, float x, float y, float z) {
    R3XMATRIX rotation;
    rotation.setRotation(angle, x, y, z);
    multiplyTopByRotation(rotation.m);
}

GLfixed turnTopByAngle(int axis, float degrees) {
#if defined(__SSE2__)
    const keltra::Rotation &turn = keltra::rotationOf(degrees);
    if (keltra::isFinite(turn.sine)) {
        multiplyTopByTurn(turn, axis);
        return toFixed(degrees);
    }
#endif
    if (!keltra::kSoftFloat || !keltra::turnBy(keltra::rotationOf(degrees), axis, top()))
        rotateTop(degrees, axis == 0, axis == 1, axis == 2);
    return toFixed(degrees);
}

// Returns the angle as the GL reads it. A rotation by 0 degrees is the identity, which leaves the mirror as
// it is; most nodes turn about one axis or none.
inline GLfixed turnTop(int axis, float degrees) {
    return keltra::isZero(degrees) ? 0 : turnTopByAngle(axis, degrees);
}

void translateTop(float x, float y, float z) {
    float *t = top();
    if (keltra::kSoftFloat && keltra::translateBy(x, y, z, t)) return;
    for (int j = 0; j < 4; ++j) t[12 + j] = x * t[j] + y * t[4 + j] + z * t[8 + j] + t[12 + j];
}

void multiplyTop(const R3XMATRIX &matrix) {
    R3XMATRIX product = matrix;
    product *= R3XMATRIX(top());
    std::memcpy(top(), product.m, sizeof product.m);
}

struct Fixed4 {
    explicit Fixed4(const float *values) { keltra::toFixed(values, v, 4); }
    GLfixed v[4];
};

struct Fixed16 {
    explicit Fixed16(const float *values) { keltra::toFixed(values, v, 16); }
    GLfixed v[16];
};

// Each lit mesh loads the matrices of its lights, so the same few come again and again within a frame.
// Without a floating-point unit it takes a third of the instructions to see that a matrix is the same.
constexpr unsigned int kKnownMatrices = 16;
struct KnownMatrix {
    std::uint32_t bits[16];
    GLfixed fixed[16];
};
KnownMatrix knownMatrices[kKnownMatrices];  // zeros are right from the start

// Copies the matrix to `mirrored` as well, while it is compared.
void loadKnown(const float *m, float *mirrored, unsigned int id) {
    KnownMatrix &known = knownMatrices[id % kKnownMatrices];
#if defined(KELTRA_SOFT_ARM)
    const bool isKnown = keltraCopySame(m, mirrored, known.bits);
#else
    std::memcpy(mirrored, m, sizeof known.bits);
    // Bits, of which a not-a-number is equal to itself. NOLINTNEXTLINE(*-memory-comparison,cert-*)
    const bool isKnown = std::memcmp(m, known.bits, sizeof known.bits) == 0;
#endif
    if (!isKnown) {
        for (int i = 0; i < 16; ++i) known.bits[i] = keltra::bitsOf(mirrored[i]);
        keltra::toFixed(mirrored, known.fixed, 16);
    }
    glLoadMatrixx(known.fixed);
}

}  // namespace

namespace keltra {

KELTRA_COLD void resetMatrixMirror() {
    for (current = kStacks - 1; current > 0; --current)
        while (depths[current])
            std::memcpy(mirror[current * kLevels + depths[current]--], kIdentity, sizeof mirror[0]);
    while (depths[0]) std::memcpy(mirror[depths[0]--], kIdentity, sizeof mirror[0]);
    deepDepth = 0;
}

void setStackSizes(unsigned int modelView, unsigned int projection) {
    sizes[0] = modelView;
    sizes[1] = projection;
}

// Level 32, which lies on the projection's base, is left to the pushes of applications.
bool pushMatrix() {
    if (depths[current] < kTreeLevels) {
        KT_glPushMatrix();
        return true;
    }
    if (current != 0 || deepDepth == kDeepLevels) return false;
    std::memcpy(deepLevels[deepDepth++], top(), sizeof mirror[0]);
    return true;
}

void popMatrix() {
    if (deepDepth == 0) {
        KT_glPopMatrix();
        return;
    }
    KT_glLoadMatrixf(deepLevels[--deepDepth]);
}

void applyRotation(const R3XVECTOR3D &degrees) {
    glRotatex(turnTop(0, degrees.x), kOne, 0, 0);
    glRotatex(turnTop(1, degrees.y), 0, kOne, 0);
    glRotatex(turnTop(2, degrees.z), 0, 0, kOne);
}

void copyModelView(float *to, float *also) {
    const float *from = mirror[depths[0]];
#if defined(KELTRA_SOFT_ARM)
    keltraCopyTwice(from, to, also);
#else
    std::memcpy(to, from, sizeof mirror[0]);
    std::memcpy(also, from, sizeof mirror[0]);
#endif
}

void loadMatrixAgain(const float *m, unsigned int id) {
    if (kSoftFloat)
        loadKnown(m, top(), id);
    else
        KT_glLoadMatrixf(m);
}

}  // namespace keltra

void KT_glLightModelf(GLenum pname, float param) { glLightModelx(pname, toFixed(param)); }

void KT_glLightModelfv(GLenum pname, const float *params) {
    if (!params) return void(keltra::failNull(KT_CALL("KT_glLightModelfv"), KT_TEXT("params")));
    glLightModelxv(pname, Fixed4(params).v);
}

void KT_glColor4f(float r, float g, float b, float a) {
    keltra::setColor({{toFixed(r), toFixed(g), toFixed(b), toFixed(a)}});
}

void KT_glClearColor(float r, float g, float b, float a) {
    glClearColorx(toFixed(r), toFixed(g), toFixed(b), toFixed(a));
}

void KT_glLightf(GLenum light, GLenum pname, float param) { glLightx(light, pname, toFixed(param)); }

void KT_glLightfv(GLenum light, GLenum pname, const float *params) {
    if (!params) return void(keltra::failNull(KT_CALL("KT_glLightfv"), KT_TEXT("params")));
    glLightxv(light, pname, Fixed4(params).v);
}

void KT_glMaterialf(GLenum face, GLenum pname, float param) { glMaterialx(face, pname, toFixed(param)); }

void KT_glMaterialfv(GLenum face, GLenum pname, const float *params) {
    if (!params) return void(keltra::failNull(KT_CALL("KT_glMaterialfv"), KT_TEXT("params")));
    glMaterialxv(face, pname, Fixed4(params).v);
}

void KT_glAlphaFunc(GLenum func, float ref) { glAlphaFuncx(func, toFixed(ref)); }

void KT_glClearDepthf(float depth) { glClearDepthx(toFixed(depth)); }

void KT_glMatrixMode(GLenum mode) {
    if (mode == GL_MODELVIEW) current = 0;
    if (mode == GL_PROJECTION) current = 1;
    glMatrixMode(mode);
}

void KT_glLoadIdentity() {
    copyMatrix(kIdentity, top());
    glLoadIdentity();
}

void KT_glLoadMatrixf(const float *m) {
    if (!m) return void(keltra::failNull(KT_CALL("KT_glLoadMatrixf"), KT_TEXT("m")));
#if defined(KELTRA_SOFT_ARM)
    GLfixed fixed[16];
    keltraToFixed(m, top(), fixed, 4);
    glLoadMatrixx(fixed);
#else
    std::memmove(top(), m, sizeof mirror[0]);
    glLoadMatrixx(Fixed16(m).v);
#endif
}

void KT_glMultMatrixf(const float *m) {
    if (!m) return void(keltra::failNull(KT_CALL("KT_glMultMatrixf"), KT_TEXT("m")));
    multiplyTop(R3XMATRIX(m));
    glMultMatrixx(Fixed16(m).v);
}

void KT_glRotatef(float angle, float x, float y, float z) {
    const int axis = keltra::mainAxis(x, y, z);
    if (axis >= 0)
        return glRotatex(turnTop(axis, angle), axis == 0 ? kOne : 0, axis == 1 ? kOne : 0,
                         axis == 2 ? kOne : 0);
    if (!keltra::isZero(angle)) rotateTop(angle, x, y, z);
    glRotatex(toFixed(angle), toFixed(x), toFixed(y), toFixed(z));
}

void KT_glTranslatef(float x, float y, float z) {
    translateTop(x, y, z);
    glTranslatex(toFixed(x), toFixed(y), toFixed(z));
}

KELTRA_COLD void KT_glFrustum(float l, float r, float b, float t, float n, float f) {
    multiplyTop(R3XMATRIX(2.0f * n / (r - l), 0.0f, 0.0f, 0.0f,                             //
                          0.0f, 2.0f * n / (t - b), 0.0f, 0.0f,                             //
                          (r + l) / (r - l), (t + b) / (t - b), -(f + n) / (f - n), -1.0f,  //
                          0.0f, 0.0f, -2.0f * f * n / (f - n), 0.0f));
    glFrustumx(toFixed(l), toFixed(r), toFixed(b), toFixed(t), toFixed(n), toFixed(f));
}

KELTRA_COLD void KT_glOrtho(float l, float r, float b, float t, float n, float f) {
    multiplyTop(R3XMATRIX(2.0f / (r - l), 0.0f, 0.0f, 0.0f,   //
                          0.0f, 2.0f / (t - b), 0.0f, 0.0f,   //
                          0.0f, 0.0f, -2.0f / (f - n), 0.0f,  //
                          -(r + l) / (r - l), -(t + b) / (t - b), -(f + n) / (f - n), 1.0f));
    glOrthox(toFixed(l), toFixed(r), toFixed(b), toFixed(t), toFixed(n), toFixed(f));
}

// Nothing is pushed onto a full stack of the GL: the levels above are in the mirror only, and the GL's own
// top is loaded again when one of them is popped.
void KT_glPushMatrix() {
    if (depths[current] >= kLevels)
        return void(keltra::failFull(KT_CALL("KT_glPushMatrix"), KT_TEXT("matrix stack"), kLevels));
    const float *below = top();
    ++depths[current];
    copyMatrix(below, top());
    if (isInGL()) glPushMatrix();
}

void KT_glPopMatrix() {
    if (depths[current] == 0)
        return void(keltra::failState(KT_CALL("KT_glPopMatrix"), KT_TEXT("the matrix stack is empty")));
    const bool wasInGL = isInGL();
    copyMatrix(kIdentity, top());
    --depths[current];
    if (wasInGL)
        glPopMatrix();
    else
        glLoadMatrixx(Fixed16(top()).v);
}

void KT_glGetFloatv(int which, float *out) {
    if (!out) return void(keltra::failNull(KT_CALL("KT_glGetFloatv"), KT_TEXT("out")));
    if (which < 0 || which >= kStacks)
        return void(keltra::failRange(KT_CALL("KT_glGetFloatv"), KT_TEXT("which"), which, kStacks - 1));
    std::memcpy(out, mirror[which * kLevels + depths[which]], sizeof mirror[0]);
}
