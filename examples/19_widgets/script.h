// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_WIDGETS_SCRIPT_H
#define KELTRA_EXAMPLES_WIDGETS_SCRIPT_H

// The pen of a run with a given number of frames: each widget once.

#include <iterator>

#include "examples/support/example.h"

inline void playWidgets(int frame, KTINPUT *input) {
    static constexpr example::PenStep kSteps[] = {
        {2, 40, 42, 1, 0},    {3, 40, 42, 0, 0},    {5, 120, 42, 1, 0},   {6, 120, 42, 0, 0},
        {8, 196, 42, 1, 0},   {9, 196, 42, 0, 0},   {11, 60, 88, 1, 0},   {12, 60, 88, 0, 0},
        {13, 60, 88, 0, 'M'}, {14, 60, 88, 0, 'o'}, {15, 60, 88, 0, 't'}, {16, 60, 88, 0, 'h'},
        {18, 51, 240, 1, 0},  {19, 62, 240, 1, 0},  {20, 84, 240, 1, 0},  {21, 84, 240, 0, 0},
        {23, 114, 148, 1, 0}, {24, 114, 160, 1, 0}, {25, 114, 160, 0, 0},
    };
    example::playSteps(kSteps, std::size(kSteps), frame, input);
}

#endif
