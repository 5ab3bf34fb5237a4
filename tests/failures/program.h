// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_FAILURES_PROGRAM_H
#define KELTRA_TESTS_FAILURES_PROGRAM_H

// A small application that uses all of the engine, from start to stop, and goes on with what it has when a
// call fails.

#include <functional>
#include <string>
#include <vector>

#include "tests/support/image.h"
#include "tests/support/temp_file.h"

namespace keltra::test {

struct ProgramRun {
    Image picture;                    // of the last frame; empty when the engine did not start
    std::vector<std::string> failed;  // calls that returned a failure
    bool isShort = false;             // the program itself had no memory for an object
    unsigned int faults = 0;
};

class Program {
   public:
    Program();
    ProgramRun run();
    /// Starts once and draws so many frames. After each `period` of them everything is released, `released`
    /// is called, and all is loaded again; the picture of the last frame of every `pictured`th period is
    /// drawn, the other frames reach the driver without what they draw. Fails when two pictures differ.
    ProgramRun runFrames(long frames, long period, long pictured,
                         const std::function<void(long frame)> &released);

   private:
    struct Parts;
    void writeFiles();
    bool start(Parts &parts);
    void load(Parts &parts);
    void draw(Parts &parts, unsigned int frame, bool isPictured);
    void release(Parts &parts);
    void change(Parts &parts);
    bool check(bool succeeded, const char *call);
    template <class T>
    T *make();

    TempFolder folder;
    ProgramRun result;
};

}  // namespace keltra::test

#endif
