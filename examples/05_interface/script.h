// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_SCRIPT_H
#define KELTRA_EXAMPLES_SCRIPT_H

// The pen of a run with a given number of frames: scrolls the guide, lights the lanterns, turns the view,
// types a name.

#include <iterator>

#include "examples/support/example.h"

inline void playScript(int frame, KTINPUT *input) {
    static constexpr example::PenStep kSteps[] = {
        {2, 186, 46, 1, 0},     {3, 186, 56, 1, 0},     {4, 186, 56, 0, 0},  // the guide's scroll bar
        {6, 200, 284, 1, 0},    {7, 200, 284, 0, 0},                         // lanterns
        {9, 120, 306, 1, 0},    {10, 150, 306, 1, 0},   {11, 160, 306, 1, 0},
        {12, 160, 306, 0, 0},                                                  // orbit
        {14, 228, 195, 1, 0},   {15, 228, 186, 1, 0},   {16, 228, 186, 0, 0},  // height
        {18, 100, 256, 1, 0},   {19, 100, 256, 0, 0},                          // the field
        {20, 100, 256, 0, 'V'}, {21, 100, 256, 0, 'e'}, {22, 100, 256, 0, 's'},
        {23, 100, 256, 0, 'p'}, {24, 100, 256, 0, 'e'}, {25, 100, 256, 0, 'r'},
        {26, 120, 284, 1, 0},   {27, 120, 284, 0, 0},  // the flash
    };
    example::playSteps(kSteps, std::size(kSteps), frame, input);
}

#endif
