// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_OUTPUT_FOLDER_H
#define KELTRA_CONVERT_OUTPUT_FOLDER_H

#include "tools/convert/options.h"

#include <signal.h>
#include <filesystem>
#include <string>
#include <vector>

namespace keltra::convert {

// A folder to write to. It is created, with its parents, if it does not exist; the destructor removes what
// was created unless `keep` was called.
class OutputFolder {
   public:
    // Throws Refusal if the folder cannot be created or cannot be written to.
    explicit OutputFolder(const std::string &path);
    ~OutputFolder() { removeCreated(); }
    OutputFolder(const OutputFolder &) = delete;
    OutputFolder &operator=(const OutputFolder &) = delete;

    void keep() { created.clear(); }

   private:
    void removeCreated();

    std::vector<std::filesystem::path> created;  // the outermost first
};

// Blocks the signals that ask a process to stop, for the lifetime of the object.
class HeldSignals {
   public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

    // The blocked signals without those that the process ignores: these would be reported as pending.
    const sigset_t &set() const { return held; }

   private:
    sigset_t held, before;
};

// Writes all files or none: first under temporary names, then all are renamed in order. Existing files are
// replaced. Signals that ask the process to stop are blocked meanwhile. Throws Refusal.
void commitFiles(const std::string &folder, const std::vector<OutputFile> &files);
// The same with one file of text, whose folder exists.
void writeTextFile(const std::string &path, const std::string &text);

}  // namespace keltra::convert

#endif
