// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_RENDER_LIST_H
#define KELTRA_TESTS_RENDER_LIST_H

// A render list without an engine: the GL is stubbed, only the list and the skinning slots are started.

#include <gmock/gmock.h>
#include <keltra/element.h>
#include <keltra/glbridge.h>
#include <keltra/helper.h>
#include <keltra/light.h>
#include <keltra/material.h>
#include <keltra/mesh.h>

#include <array>
#include <initializer_list>
#include <vector>

#include "tests/support/gl_recorder.h"

namespace keltra::test {

using Top = std::array<float, 16>;

inline Top elements(const R3XMATRIX &matrix) {
    Top values;
    for (int i = 0; i < 16; ++i) values[i] = matrix.m[i];
    return values;
}

inline R3XMATRIX translation(float x, float y, float z) {
    R3XMATRIX matrix;
    matrix.setTranslation(x, y, z);
    return matrix;
}

inline R3XMATRIX rotation(float angle, float x, float y, float z) {
    R3XMATRIX matrix;
    matrix.setRotation(angle, x, y, z);
    return matrix;
}

/// The top of the model-view mirror.
inline Top modelView() {
    Top values;
    KT_glGetFloatv(0, values.data());
    return values;
}

/// The nodes of the list in drawing order.
inline std::vector<const KTNODE *> drawn() {
    std::vector<const KTNODE *> nodes;
    for (unsigned int i = 0; i < KTELEMENT::getNumberOfPassedElements(); ++i)
        nodes.push_back(KTELEMENT::elementPointer[i]->getNode());
    return nodes;
}

/// A mesh without geometry whose bones are nodes; it gives the bones back before it is destroyed.
class SkinnedMesh : public KTMESH {
   public:
    explicit SkinnedMesh(std::initializer_list<KTNODE *> nodes) : list(nodes.size()) {
        unsigned int i = 0;
        for (KTNODE *node : nodes) list[i++].node = node;
        bones = list.data();
        numberOfBones = static_cast<std::uint16_t>(list.size());
    }
    ~SkinnedMesh() override {
        bones = nullptr;
        numberOfBones = 0;
    }

   private:
    std::vector<KTBONE> list;
};

class RenderListTest : public ::testing::Test {
   protected:
    void SetUp() override { start(0); }
    void TearDown() override {
        KTELEMENT::clippingOff();
        KTELEMENT::setClippingRadius(128.0f);
        KTELEMENT::free();
        KTMESH::free();
        while (depth() > 0) KT_glPopMatrix();
        KT_glLoadIdentity();
    }

    /// Starts the list, again if need be, and a frame.
    static void start(unsigned int capacity) {
        KTELEMENT::free();
        KTMESH::free();
        ASSERT_TRUE(KTELEMENT::init(capacity));
        ASSERT_TRUE(KTMESH::init());
        KT_glMatrixMode(GL_MODELVIEW);
        KT_glLoadIdentity();
        newFrame();
        GlRecorder::clear();
    }

    static void newFrame() {
        KTELEMENT::reset();
        KTMESH::reset();
    }

    /// How deep the model-view stack is; 32 is the deepest. The stack stays as it is, the log is empty then.
    static int depth() {
        int pushes = 0;
        for (GlRecorder::clear();; ++pushes) {
            KT_glPushMatrix();
            if (GlRecorder::count("glPushMatrix") == pushes) break;
        }
        for (int i = 0; i < pushes; ++i) KT_glPopMatrix();
        GlRecorder::clear();
        return 32 - pushes;
    }

    const GlRecorder::Stub stub;
};

}  // namespace keltra::test

#endif
