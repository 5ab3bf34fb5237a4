// SPDX-License-Identifier: Zlib
#ifndef KELTRA_INFO_PRINT_H
#define KELTRA_INFO_PRINT_H

// Inspections as text for people and as JSON.

#include "tools/info/inspect.h"

#include <string>
#include <vector>

namespace keltra::info {

// Text that is safe on any terminal and one line long: control characters and bytes that are not UTF-8 become
// \xHH.
std::string printable(const std::string &text);

// The result for one file. `error` is the reason when it could not be read.
struct FileReport {
    std::string file;
    std::string error;
    Inspection inspection;
    bool isGood() const { return error.empty() && inspection.good; }
    // Nothing is missing or unknown either.
    bool isFaultless() const { return isGood() && inspection.faults.empty(); }
};

// "FILE: good", "FILE: OFFSET: FIELD: REASON" or "FILE: ERROR", with a line feed.
std::string verdictLine(const FileReport &report);
// "FILE: good", "FILE: ERROR", or the engine's sentence for each fault.
std::string strictLines(const FileReport &report);
// The engine's sentence, with the name of the inspected file.
std::string sentenceOf(const KTFAULT &fault, const std::string &file);
// The contents of a good file, line by line.
std::string table(const FileReport &report);
// One document of all reports, always valid UTF-8. `verdictsOnly` leaves out the contents of the files.
std::string jsonText(const std::vector<FileReport> &reports, bool verdictsOnly);

}  // namespace keltra::info

#endif
