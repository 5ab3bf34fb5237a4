// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_COUNT_REGION_H
#define KELTRA_TESTS_COUNT_REGION_H

namespace count {

// In a frame of the engine no function for double precision may be executed. A game's own sines are those of
// the C library, which computes them in double precision.
enum class Kind { kFrame, kLoad, kGame };

// From start to stop all instructions count for a row of the table. tests/count/plugin.c sees two markers;
// the row's name goes to the standard output. Regions of one name are added up, and divided by their
// operations.
void start(const char *row, unsigned int operations, Kind kind = Kind::kFrame);

// Inline: a return would count.
inline void stop() { asm volatile("orr r10, r10, r10" ::: "memory"); }

class Region {
   public:
    Region(const char *row, unsigned int operations, Kind kind = Kind::kFrame) {
        start(row, operations, kind);
    }
    ~Region() { stop(); }
    Region(const Region &) = delete;
    Region &operator=(const Region &) = delete;
};

// Ends the program when a result is wrong: what is counted must be what the row says.
void require(bool right, const char *what);

void countMath();
void countPass();
void countLights();
void countDrawing();
void countSkins();
void countParticles();
void countWidgets();
void countLists();
void countAnimation(const char *data);
void countLoading(const char *data);
void countExamples(const char *data);
void countGame(const char *data);

}  // namespace count

#endif
