// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_DOCS_PRELUDE_H
#define KELTRA_TESTS_DOCS_PRELUDE_H

// Declarations that the C++ fragments of the documents may use. Each is compiled in a function of its own,
// which may return, as C++11 and with every warning but those about unused variables.

#include <SDL.h>
#include <keltra/keltra.h>
#include <keltra/kit/kit.h>

#include <cmath>
#include <cstdio>

// The application's objects, as it got them from loaders or made them with `new`.
extern KTNODE *scene, *world, *panel, *figure, *door;
extern KTMESH *skin;
extern KTCAMERA *camera;
extern KTWINDOW *journal;
extern KTEMITTER *sparks;
extern KTBUTTON *closeButton;

// Its input of this frame, and what it remembers.
extern int x, y, pressed;
extern char key;
extern bool quit, wasPressed, sceneHasPen;
extern unsigned int frame, id, code;
extern int points;
extern const char *line;

// What it does.
void closePanel();
void openDoor();
void turnView(int x, int y);

#endif
