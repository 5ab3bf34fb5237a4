#ifndef KELTRA_CONVERT_REPORT_TEXT_H
#define KELTRA_CONVERT_REPORT_TEXT_H

#include <string>

#include "tools/convert/isolated.h"

namespace keltra::convert {

// `text` for a terminal, in one line: control characters and bytes that are not UTF-8 become \n, \t or \xNN.
std::string printable(const std::string &text);

// What was made of a model, for people. An empty folder: nothing was written.
std::string textOf(const std::string &model, const std::string &folder, const Outcome &outcome);
// Its warnings only, a line each.
std::string warningsOf(const Outcome &outcome);

}  // namespace keltra::convert

#endif
