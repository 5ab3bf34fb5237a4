#ifndef KELTRA_CONVERT_OUTPUT_FOLDER_H
#define KELTRA_CONVERT_OUTPUT_FOLDER_H

#include <signal.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tools/convert/options.h"

namespace keltra::convert {

// A folder to write to. It is made, with its parents, when it is missing; what was made goes away with the
// object unless it is kept.
class OutputFolder {
   public:
    // Throws Refusal for a path that is no folder and cannot be made one, or that cannot be written to.
    explicit OutputFolder(const std::string &path);
    ~OutputFolder() { takeBack(); }
    OutputFolder(const OutputFolder &) = delete;
    OutputFolder &operator=(const OutputFolder &) = delete;

    void keep() { made.clear(); }

   private:
    void takeBack();

    std::vector<std::filesystem::path> made;  // the outermost first
};

// Holds back the signals that ask a process to stop, and lets them through again with its end.
class HeldSignals {
   public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

    // Those held, without the ones that the process ignores: these would seem to have come.
    const sigset_t &set() const { return held; }

   private:
    sigset_t held, before;
};

// Writes all the files or none: each beside its place first, then all are renamed in order. Existing files
// are replaced. A signal that asks the process to stop waits until the end. Throws Refusal.
void commitFiles(const std::string &folder, const std::vector<OutputFile> &files);

}  // namespace keltra::convert

#endif
