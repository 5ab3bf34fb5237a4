// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_TABLE_H
#define KELTRA_EXAMPLES_TABLE_H

// What is seen: the board, and a stone for each square, which is linked once it is put down.

#include <keltra/keltra.h>
#include <keltra/kit/shapes.h>

#include "examples/17_board/rules.h"
#include "examples/support/example.h"

struct Table {
    KTNODE world;
    KTNODE *stones[kSide][kSide];     // each a light and a dark half
    float turned[kSide][kSide] = {};  // degrees: 0 shows the light half, 180 the dark one
    Board board;
    KTLABEL *told = nullptr;
    int player = 1;
    float sinceMove = 0.0f;
};

inline float placeOfSquare(int index) { return static_cast<float>(index) - 0.5f * (kSide - 1); }

inline void buildBoard(KTNODE *world) {
    KTMATERIAL *wood = KTSHAPES::makeMaterial("wood", 0.42f, 0.24f, 0.16f);
    KTMATERIAL *squares[2] = {KTSHAPES::makeMaterial("pale", 0.38f, 0.62f, 0.46f),
                              KTSHAPES::makeMaterial("deep", 0.26f, 0.50f, 0.38f)};
    example::place(KTSHAPES::makeBox(9.0f, 0.5f, 9.0f), wood, world, 0.0f, -0.3f, 0.0f);
    KTNODE *field = new KTNODE;
    field->link(world);
    for (int i = 0; i < kSide * kSide; ++i)
        example::place(KTSHAPES::makePlane(0.97f, 0.97f), squares[(i + i / kSide) % 2], field,
                       placeOfSquare(i % kSide), 0.0f, placeOfSquare(i / kSide));
    for (KTMATERIAL *material : squares)
        KTSHAPES::merge(field, material)->link(world);  // two calls of the GL
    example::place(
        KTSHAPES::makePlane(60.0f, 60.0f, 12, 12, 14.0f),
        KTSHAPES::makeMaterial("table", 0.8f, 0.72f, 0.9f, example::loadTexture("scene_paving_d.tga")), world,
        0.0f, -0.6f, -12.0f);
}

inline void buildTable(Table *table) {
    buildBoard(&table->world);
    KTMATERIAL *halves[2] = {KTSHAPES::makeMaterial("dark", 0.20f, 0.16f, 0.34f),
                             KTSHAPES::makeMaterial("light", 1.0f, 0.92f, 0.74f)};
    for (int i = 0; i < kSide * kSide; ++i) {
        KTNODE *stone = table->stones[i / kSide][i % kSide] = new KTNODE;
        for (int half = 0; half < 2; ++half)
            example::place(KTSHAPES::makeCylinder(half ? 0.43f : 0.40f, half ? 0.36f : 0.43f, 0.1f, 14),
                           halves[half], stone, 0.0f, half ? 0.05f : -0.05f, 0.0f);
        stone->setPosition(placeOfSquare(i % kSide), 0.11f, placeOfSquare(i / kSide));
    }
    example::addLight(&table->world, 1.1f, 0.95f, 0.75f, 14.0f)->setPosition(-3.0f, 6.5f, 4.0f);
    KTOPENGL::setGlobalAmbientLight(0.42f, 0.38f, 0.52f, 1.0f);
    KTOPENGL::setBackgroundColor(0.16f, 0.12f, 0.24f, 1.0f);
    table->told = new KTLABEL;
    table->told->setFont(example::loadFont());
    table->told->setPosition(8.0f, 296.0f);
}

#endif
