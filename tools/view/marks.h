// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_MARKS_H
#define KELTRA_VIEW_MARKS_H

// Lines that the viewer draws over a model: boxes, skeletons and lights.

#include <keltra/keltra.h>

#include <GLES/gl.h>

#include <vector>

namespace keltra::view {

struct MarkColor {
    unsigned char r, g, b;
};

// Coloured lines and points in eye coordinates.
class MarkBatch {
   public:
    void clear();
    void line(const R3XVECTOR3D &from, const R3XVECTOR3D &to, MarkColor color);
    void point(const R3XVECTOR3D &place, MarkColor color);
    // Twelve edges; the corners are transformed by `matrix`.
    void box(const R3XVECTOR3D &low, const R3XVECTOR3D &high, const R3XMATRIX &matrix, MarkColor color);
    // After `end3D`, before `begin2D`. Changes no state of the engine but what `begin2D` sets anyway.
    void draw(bool throughModel) const;

    std::size_t lines() const { return lineEnds.colors.size() / 8; }
    std::size_t points() const { return dots.colors.size() / 4; }

   private:
    struct Vertices {
        std::vector<GLfixed> places;
        std::vector<GLubyte> colors;
        void add(const R3XVECTOR3D &place, MarkColor color);
        void draw(GLenum primitive) const;
    };
    Vertices lineEnds, dots;
};

// These read the render list of the frame, which is valid from `end3D` to `begin2D`.
void addBoxes(MarkBatch &batch);
// The bones of all skins, each connected with the next bone above it.
void addSkeletons(MarkBatch &batch);
// `centre` and `radius` are those of the model in eye coordinates: directional lights, which have no
// position, are drawn around it.
void addLights(MarkBatch &batch, const R3XVECTOR3D &centre, float radius);

}  // namespace keltra::view

#endif
