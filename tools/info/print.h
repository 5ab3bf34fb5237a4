#ifndef KELTRA_INFO_PRINT_H
#define KELTRA_INFO_PRINT_H

// Inspections as text for people and as JSON.

#include <string>
#include <vector>

#include "tools/info/inspect.h"

namespace keltra::info {

// Text that is safe on any terminal and one line long: control characters and bytes that are no UTF-8 stand
// as \xHH.
std::string printable(const std::string &text);

// A file that was asked about. When it could not be read, `trouble` says why.
struct Answer {
    std::string file;
    std::string trouble;
    Inspection inspection;
    bool isGood() const { return trouble.empty() && inspection.good; }
    // Nothing is missing or unknown either.
    bool isFaultless() const { return isGood() && inspection.faults.empty(); }
};

// "FILE: good", "FILE: OFFSET: FIELD: REASON" or "FILE: TROUBLE", with a line feed.
std::string verdictLine(const Answer &answer);
// "FILE: good", "FILE: TROUBLE", or each fault as the sentence that the engine has for it.
std::string strictLines(const Answer &answer);
// The sentence, with the name of the file that was asked about.
std::string sentenceOf(const KTFAULT &fault, const std::string &file);
// All that is known of a good file, line by line.
std::string table(const Answer &answer);
// One document of all answers, always valid UTF-8. Verdicts only leaves out what is in the files.
std::string jsonText(const std::vector<Answer> &answers, bool verdictsOnly);

}  // namespace keltra::info

#endif
