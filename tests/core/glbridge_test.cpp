// SPDX-License-Identifier: Zlib
#include "core/glbridge.h"

#include <gmock/gmock.h>
#include <keltra/glbridge.h>
#include <keltra/matrix.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

#include "math/float_bits.h"
#include "tests/support/gl_recorder.h"

namespace keltra::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

using Top = std::array<float, 16>;

constexpr int kModelView = 0;
constexpr int kProjection = 1;
constexpr int kLevels = 32;
constexpr std::int64_t kOutOfRange = std::numeric_limits<std::int32_t>::min();

Top top(int which) {
    Top values;
    values.fill(-1.0f);
    KT_glGetFloatv(which, values.data());
    return values;
}

Top elements(const R3XMATRIX &matrix) {
    Top values;
    std::copy(matrix.m, matrix.m + 16, values.begin());
    return values;
}

// Read before any test has changed the mirror.
const std::array<Top, 2> kAtLoad = {top(kModelView), top(kProjection)};

R3XMATRIX counting(float first) {
    R3XMATRIX matrix;
    for (int i = 0; i < 16; ++i) matrix.m[i] = first + static_cast<float>(i);
    return matrix;
}

class GlBridgeTest : public ::testing::Test {
   protected:
    void SetUp() override { startAfresh(); }
    void TearDown() override {
        EXPECT_EQ(GlRecorder::countFloat(), 0) << "a floating-point entry point of the GL was called";
        startAfresh();
    }

    static void startAfresh() {
        resetMatrixMirror();
        for (GLenum mode : {GL_PROJECTION, GL_MODELVIEW}) {
            KT_glMatrixMode(mode);
            KT_glLoadIdentity();
        }
        GlRecorder::clear();
    }

    static void push(int times) {
        for (int i = 0; i < times; ++i) KT_glPushMatrix();
    }

    float random(float from, float to) { return std::uniform_real_distribution<float>(from, to)(generator); }

    R3XMATRIX randomMatrix() {
        R3XMATRIX matrix;
        for (float &element : matrix.m) element = random(-4.0f, 4.0f);
        return matrix;
    }

    const GlRecorder::Stub stub;
    std::mt19937 generator{20040117};
};

TEST_F(GlBridgeTest, MirrorIsZeroWhenTheLibraryIsLoaded) {
    EXPECT_THAT(kAtLoad[kModelView], Each(0.0f));
    EXPECT_THAT(kAtLoad[kProjection], Each(0.0f));
}

TEST_F(GlBridgeTest, ConvertsByTruncatingTowardZero) {
    KT_glColor4f(1.5f, -0.5f, 0.00001f, -0.00001f);
    EXPECT_THAT(GlRecorder::last("glColor4x").arguments, ElementsAre(98304, -32768, 0, 0));
    KT_glColor4f(2.99f / 65536.0f, -2.99f / 65536.0f, 32767.998f, -32768.0f);
    EXPECT_THAT(GlRecorder::last("glColor4x").arguments, ElementsAre(2, -2, 2147483520, kOutOfRange));
}

TEST_F(GlBridgeTest, GivesTheMostNegativeValueOutsideTheRange) {
    const float infinity = std::numeric_limits<float>::infinity();
    KT_glColor4f(32768.0f, -40000.0f, infinity, std::nanf(""));
    EXPECT_THAT(GlRecorder::last("glColor4x").arguments, Each(kOutOfRange));
    // The vector forms convert four at a time, and agree.
    const float values[4] = {32768.0f, -40000.0f, -infinity, std::nanf("")};
    KT_glLightModelfv(GL_LIGHT_MODEL_AMBIENT, values);
    EXPECT_THAT(GlRecorder::last("glLightModelxv").contents, Each(kOutOfRange));
}

TEST_F(GlBridgeTest, EveryScalarCallMakesItsOneFixedPointCall) {
    KT_glLightModelf(GL_LIGHT_MODEL_TWO_SIDE, 1.0f);
    KT_glColor4f(0.25f, 0.5f, 0.75f, 1.0f);
    KT_glClearColor(1.0f, 0.75f, 0.5f, 0.25f);
    KT_glLightf(GL_LIGHT2, GL_SPOT_CUTOFF, 180.0f);
    KT_glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 12.5f);
    KT_glAlphaFunc(GL_GREATER, 0.5f);
    KT_glClearDepthf(1.0f);

    EXPECT_THAT(GlRecorder::names(), ElementsAre("glLightModelx", "glColor4x", "glClearColorx", "glLightx",
                                                 "glMaterialx", "glAlphaFuncx", "glClearDepthx"));
    EXPECT_THAT(GlRecorder::calls()[0].arguments, ElementsAre(GL_LIGHT_MODEL_TWO_SIDE, 65536));
    EXPECT_THAT(GlRecorder::calls()[1].arguments, ElementsAre(16384, 32768, 49152, 65536));
    EXPECT_THAT(GlRecorder::calls()[2].arguments, ElementsAre(65536, 49152, 32768, 16384));
    EXPECT_THAT(GlRecorder::calls()[3].arguments, ElementsAre(GL_LIGHT2, GL_SPOT_CUTOFF, 180 * 65536));
    EXPECT_THAT(GlRecorder::calls()[4].arguments, ElementsAre(GL_FRONT_AND_BACK, GL_SHININESS, 819200));
    EXPECT_THAT(GlRecorder::calls()[5].arguments, ElementsAre(GL_GREATER, 32768));
    EXPECT_THAT(GlRecorder::calls()[6].arguments, ElementsAre(65536));
}

TEST_F(GlBridgeTest, AnAngleWithoutASineLeavesNoNumbers) {
    KT_glRotatef(std::numeric_limits<float>::infinity(), 0.0f, 0.0f, 1.0f);
    const Top turned = top(kModelView);
    for (int i : {0, 1, 4, 5}) EXPECT_TRUE(std::isnan(turned[i])) << i;
    EXPECT_EQ(turned[15], 1.0f);
}

TEST_F(GlBridgeTest, VectorCallsAlwaysConvertFourValues) {
    const float values[4] = {1.0f, -2.0f, 0.5f, 4.0f};
    KT_glLightModelfv(GL_LIGHT_MODEL_AMBIENT, values);
    KT_glLightfv(GL_LIGHT1, GL_SPOT_DIRECTION, values);
    KT_glLightfv(GL_LIGHT1, GL_SPOT_CUTOFF, values);
    KT_glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, values);

    EXPECT_THAT(GlRecorder::names(), ElementsAre("glLightModelxv", "glLightxv", "glLightxv", "glMaterialxv"));
    for (const Call &call : GlRecorder::calls())
        EXPECT_THAT(call.contents, ElementsAre(65536, -131072, 32768, 262144)) << call.name;
}

TEST_F(GlBridgeTest, NullArraysAreIgnored) {
    const Top before = top(kModelView);
    KT_glLightModelfv(GL_LIGHT_MODEL_AMBIENT, nullptr);
    KT_glLightfv(GL_LIGHT0, GL_POSITION, nullptr);
    KT_glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, nullptr);
    KT_glLoadMatrixf(nullptr);
    KT_glMultMatrixf(nullptr);
    KT_glGetFloatv(kModelView, nullptr);
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
    EXPECT_EQ(top(kModelView), before);
}

TEST_F(GlBridgeTest, LoadIdentityInModelViewModeReadsBackAsTheIdentity) {
    KT_glTranslatef(1.0f, 2.0f, 3.0f);
    KT_glLoadIdentity();
    EXPECT_EQ(top(kModelView), elements(R3XMATRIX()));
    EXPECT_EQ(GlRecorder::count("glLoadIdentity"), 1);
}

TEST_F(GlBridgeTest, LoadMatrixConvertsTheSixteenValuesInOrder) {
    const R3XMATRIX matrix = counting(-3.5f);
    KT_glLoadMatrixf(matrix.m);
    std::vector<std::int64_t> expected;
    for (float element : matrix.m) expected.push_back(static_cast<std::int64_t>(element * 65536.0f));
    EXPECT_THAT(GlRecorder::last("glLoadMatrixx").contents, ElementsAreArray(expected));
    EXPECT_EQ(top(kModelView), elements(matrix));
}

TEST_F(GlBridgeTest, ProductsConvertTheirOwnArgumentsAndNotTheResult) {
    KT_glLoadMatrixf(counting(1.0f).m);
    const R3XMATRIX factor = counting(-8.0f);
    KT_glMultMatrixf(factor.m);
    KT_glRotatef(-90.5f, 0.0f, 1.0f, 0.0f);
    KT_glTranslatef(1.0f, -2.5f, 3.0f);
    KT_glFrustum(-1.0f, 1.0f, -0.75f, 0.75f, 1.0f, 1024.0f);
    KT_glOrtho(0.0f, 240.0f, 320.0f, 0.0f, 0.0f, 1.0f);

    std::vector<std::int64_t> expected;
    for (float element : factor.m) expected.push_back(static_cast<std::int64_t>(element * 65536.0f));
    EXPECT_THAT(GlRecorder::last("glMultMatrixx").contents, ElementsAreArray(expected));
    EXPECT_THAT(GlRecorder::last("glRotatex").arguments, ElementsAre(-5931008, 0, 65536, 0));
    EXPECT_THAT(GlRecorder::last("glTranslatex").arguments, ElementsAre(65536, -163840, 196608));
    EXPECT_THAT(GlRecorder::last("glFrustumx").arguments,
                ElementsAre(-65536, 65536, -49152, 49152, 65536, 67108864));
    EXPECT_THAT(GlRecorder::last("glOrthox").arguments, ElementsAre(0, 15728640, 20971520, 0, 0, 65536));
    EXPECT_EQ(GlRecorder::calls().size(), 6u);
}

// The shortcuts of translations and rotations must give exactly the floats of the full product.
TEST_F(GlBridgeTest, MirrorEqualsTheProductsOfMatrices) {
    for (int round = 0; round < 500; ++round) {
        const R3XMATRIX start = randomMatrix(), factor = randomMatrix();

        KT_glLoadMatrixf(start.m);
        KT_glMultMatrixf(factor.m);
        EXPECT_EQ(top(kModelView), elements(factor * start));

        const float x = random(-900.0f, 900.0f), y = random(-1.0f, 1.0f), z = random(-0.001f, 0.001f);
        R3XMATRIX translation;
        translation.setTranslation(x, y, z);
        KT_glLoadMatrixf(start.m);
        KT_glTranslatef(x, y, z);
        EXPECT_EQ(top(kModelView), elements(translation * start));

        const float angle = random(-720.0f, 720.0f);
        R3XVECTOR3D axis(random(-1.0f, 1.0f), random(-1.0f, 1.0f), random(-1.0f, 1.0f));
        R3XMATRIX rotation;
        rotation.setRotation(angle, axis.x, axis.y, axis.z);
        KT_glLoadMatrixf(start.m);
        KT_glRotatef(angle, axis.x, axis.y, axis.z);
        EXPECT_EQ(top(kModelView), elements(rotation * start));
        ASSERT_FALSE(HasFailure()) << "in round " << round;
    }
}

TEST_F(GlBridgeTest, RotationByZeroStillCallsTheGl) {
    const R3XMATRIX start = randomMatrix();
    KT_glLoadMatrixf(start.m);
    KT_glRotatef(0.0f, 1.0f, 0.0f, 0.0f);
    EXPECT_EQ(top(kModelView), elements(start));
    EXPECT_THAT(GlRecorder::last("glRotatex").arguments, ElementsAre(0, 65536, 0, 0));
}

/// Whatever the top holds and the angle is: bits of the sums of three products, in their order.
TEST_F(GlBridgeTest, ARotationAboutAMainAxisHasTheBitsOfTheProducts) {
    std::mt19937 generator(1907);
    std::uniform_real_distribution<float> ordinary(-3.0f, 3.0f);
    const float special[] = {0.0f, -0.0f, 1e-40f, -1e38f, 1.0f, std::numeric_limits<float>::infinity()};
    const float angles[] = {90.0f, -90.0f, 180.0f, -360.0f, 0.5f, 1e-38f, -1e-42f, 33.3f, 1e30f};
    for (int round = 0; round < 2000; ++round) {
        Top values;
        for (float &value : values) value = generator() % 4 ? ordinary(generator) : special[generator() % 6];
        const float angle = generator() % 2 ? 100.0f * ordinary(generator) : angles[generator() % 9];
        const int axis = static_cast<int>(generator() % 3);
        KT_glLoadMatrixf(values.data());
        KT_glRotatef(angle, axis == 0, axis == 1, axis == 2);
        R3XMATRIX turn;
        turn.setRotation(angle, axis == 0, axis == 1, axis == 2);
        Top expected = values;
        for (int column = 0; column < 3; ++column)
            for (int row = 0; row < 4; ++row)
                expected[4 * column + row] = turn.m[4 * column] * values[row] +
                                             turn.m[4 * column + 1] * values[4 + row] +
                                             turn.m[4 * column + 2] * values[8 + row];
        const Top actual = top(kModelView);
        for (int i = 0; i < 16; ++i) {
            if (std::isnan(expected[i])) {
                EXPECT_TRUE(std::isnan(actual[i])) << round;
            } else {
                EXPECT_EQ(bitsOf(actual[i]), bitsOf(expected[i])) << i << " of " << round;
            }
        }
    }
}

TEST_F(GlBridgeTest, FrustumAndOrthoMultiplyByTheMatricesOfTheGlStandard) {
    const R3XMATRIX start = randomMatrix();
    const R3XMATRIX frustum(1.0f, 0.0f, 0.0f, 0.0f,     //
                            0.0f, 2.0f, 0.0f, 0.0f,     //
                            2.0f, -2.0f, -1.5f, -1.0f,  //
                            0.0f, 0.0f, -5.0f, 0.0f);
    KT_glMatrixMode(GL_PROJECTION);
    KT_glLoadMatrixf(start.m);
    KT_glFrustum(2.0f, 6.0f, -3.0f, -1.0f, 2.0f, 10.0f);
    EXPECT_EQ(top(kProjection), elements(frustum * start));

    const R3XMATRIX ortho(0.5f, 0.0f, 0.0f, 0.0f,    //
                          0.0f, 1.0f, 0.0f, 0.0f,    //
                          0.0f, 0.0f, -0.25f, 0.0f,  //
                          -2.0f, 2.0f, -1.5f, 1.0f);
    KT_glLoadMatrixf(start.m);
    KT_glOrtho(2.0f, 6.0f, -3.0f, -1.0f, 2.0f, 10.0f);
    EXPECT_EQ(top(kProjection), elements(ortho * start));
}

TEST_F(GlBridgeTest, EmptyVolumesDoNoHarm) {
    KT_glFrustum(1.0f, 1.0f, 2.0f, 2.0f, 3.0f, 3.0f);
    KT_glOrtho(0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0f);
    EXPECT_EQ(GlRecorder::count("glFrustumx"), 1);
    EXPECT_EQ(GlRecorder::count("glOrthox"), 1);
    KT_glLoadIdentity();
    EXPECT_EQ(top(kModelView), elements(R3XMATRIX()));
}

TEST_F(GlBridgeTest, EachStackHasItsOwnTop) {
    const R3XMATRIX view = counting(1.0f), projection = counting(100.0f);
    KT_glLoadMatrixf(view.m);
    KT_glMatrixMode(GL_PROJECTION);
    KT_glLoadMatrixf(projection.m);
    EXPECT_EQ(top(kModelView), elements(view));
    EXPECT_EQ(top(kProjection), elements(projection));
}

// The texture matrix has no mirror: calls for it change the mirror of the stack selected before.
TEST_F(GlBridgeTest, TextureModeLeavesTheMirrorOnTheStackSelectedBefore) {
    KT_glMatrixMode(GL_PROJECTION);
    KT_glTranslatef(1.0f, 2.0f, 3.0f);
    KT_glMatrixMode(GL_TEXTURE);
    KT_glLoadIdentity();
    EXPECT_EQ(top(kProjection), elements(R3XMATRIX()));
    EXPECT_THAT(GlRecorder::names(),
                ElementsAre("glMatrixMode", "glTranslatex", "glMatrixMode", "glLoadIdentity"));
    EXPECT_THAT(GlRecorder::last("glMatrixMode").arguments, ElementsAre(GL_TEXTURE));
}

TEST_F(GlBridgeTest, PushCopiesTheTopAndPopBringsItBack) {
    const R3XMATRIX matrix = counting(1.0f);
    KT_glLoadMatrixf(matrix.m);
    KT_glPushMatrix();
    EXPECT_EQ(top(kModelView), elements(matrix));
    KT_glLoadIdentity();
    KT_glPopMatrix();
    EXPECT_EQ(top(kModelView), elements(matrix));
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 1);
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 1);
}

TEST_F(GlBridgeTest, ThirtyThreePushesAreThirtyTwo) {
    push(kLevels + 1);
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), kLevels);
}

TEST_F(GlBridgeTest, PopAtDepthZeroIsIgnored) {
    KT_glTranslatef(1.0f, 2.0f, 3.0f);
    const Top before = top(kModelView);
    KT_glPopMatrix();
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 0);
    EXPECT_EQ(top(kModelView), before);
}

TEST_F(GlBridgeTest, AsManyPopsAreAcceptedAsPushes) {
    push(kLevels + 8);
    for (int i = 0; i < kLevels + 8; ++i) KT_glPopMatrix();
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), kLevels);
}

TEST_F(GlBridgeTest, ModelViewLevel32WritesOverTheProjectionsBase) {
    const R3XMATRIX view = counting(1.0f), other = counting(50.0f);
    KT_glMatrixMode(GL_PROJECTION);
    KT_glTranslatef(7.0f, 8.0f, 9.0f);
    const Top projection = top(kProjection);
    KT_glMatrixMode(GL_MODELVIEW);
    KT_glLoadMatrixf(view.m);

    push(kLevels - 1);
    EXPECT_EQ(top(kProjection), projection);
    KT_glPushMatrix();
    EXPECT_EQ(top(kProjection), elements(view));
    KT_glLoadMatrixf(other.m);
    EXPECT_EQ(top(kProjection), elements(other));
    KT_glPopMatrix();
    EXPECT_EQ(top(kProjection), elements(R3XMATRIX())) << "the popped level becomes the identity";
    EXPECT_EQ(top(kModelView), elements(view));
}

TEST_F(GlBridgeTest, ProjectionLevel32HasRoomOfItsOwn) {
    KT_glTranslatef(1.0f, 2.0f, 3.0f);
    const Top view = top(kModelView);
    KT_glMatrixMode(GL_PROJECTION);
    const R3XMATRIX base = counting(1.0f), deepest = counting(50.0f);
    KT_glLoadMatrixf(base.m);
    push(kLevels + 1);
    KT_glLoadMatrixf(deepest.m);
    EXPECT_EQ(top(kProjection), elements(deepest));
    for (int i = 0; i < kLevels; ++i) KT_glPopMatrix();
    EXPECT_EQ(top(kProjection), elements(base));
    EXPECT_EQ(top(kModelView), view);
}

TEST_F(GlBridgeTest, ReadingBackKnowsOnlyTheSelectors0And1) {
    for (int which : {-1, 2, GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX})
        EXPECT_THAT(top(which), Each(-1.0f)) << which;
    EXPECT_THAT(GlRecorder::names(), IsEmpty());
}

// The levels above are in the mirror only, and the GL gets its top back when they are popped.
TEST_F(GlBridgeTest, AGlWithAFullStackIsNotAskedForMore) {
    setStackSizes(4, 2);
    for (int level = 0; level <= kLevels; ++level) {
        KT_glLoadMatrixf(counting(static_cast<float>(level)).m);
        KT_glPushMatrix();
    }
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 3);
    for (int level = kLevels - 1; level >= 0; --level) {
        GlRecorder::clear();
        KT_glPopMatrix();
        const R3XMATRIX expected = counting(static_cast<float>(level));
        EXPECT_EQ(top(kModelView), elements(expected));
        EXPECT_EQ(GlRecorder::count("glPopMatrix"), level < 3 ? 1 : 0) << level;
        ASSERT_EQ(GlRecorder::count("glLoadMatrixx"), level < 3 ? 0 : 1) << level;
        if (level < 3) continue;
        EXPECT_EQ(GlRecorder::last("glLoadMatrixx").contents[15], (level + 15) * 65536) << level;
    }
    KT_glMatrixMode(GL_PROJECTION);
    GlRecorder::clear();
    push(3);
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 1) << "the stacks have sizes of their own";
    setStackSizes(0, 0);
}

TEST_F(GlBridgeTest, WalksOfTreesPushBeyondTheStackAndLeaveTheProjectionAlone) {
    KT_glMatrixMode(GL_PROJECTION);
    KT_glLoadMatrixf(counting(7.0f).m);
    KT_glMatrixMode(GL_MODELVIEW);
    const int deepest = 31 + 228;
    for (int level = 0; level < deepest; ++level) {
        KT_glLoadMatrixf(counting(static_cast<float>(level)).m);
        ASSERT_TRUE(pushMatrix()) << level;
    }
    EXPECT_FALSE(pushMatrix());
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), 31);
    for (int level = deepest; level-- > 0;) {
        popMatrix();
        EXPECT_EQ(top(kModelView), elements(counting(static_cast<float>(level)))) << level;
    }
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 31);
    EXPECT_EQ(top(kProjection), elements(counting(7.0f)));
}

TEST_F(GlBridgeTest, ANewContextStartsWithBothStacksAtDepthZeroInModelViewMode) {
    push(kLevels);
    KT_glMatrixMode(GL_PROJECTION);
    push(5);
    resetMatrixMirror();
    GlRecorder::clear();
    KT_glPopMatrix();
    KT_glLoadIdentity();
    EXPECT_EQ(GlRecorder::count("glPopMatrix"), 0);
    EXPECT_EQ(top(kModelView), elements(R3XMATRIX()));
    push(kLevels + 1);
    EXPECT_EQ(GlRecorder::count("glPushMatrix"), kLevels);
}

}  // namespace
}  // namespace keltra::test
