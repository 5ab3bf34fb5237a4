// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_REPORT_TEXT_H
#define KELTRA_CONVERT_REPORT_TEXT_H

#include "tools/convert/outcome.h"

#include <cstdint>
#include <string>

namespace keltra::convert {

// `text` for a terminal, in one line: control characters and bytes that are not UTF-8 become \n, \t or \xNN.
std::string printable(const std::string &text);

// "1,000,000"
std::string withCommas(std::uint64_t number);

// "3 dropped, 1 changed, 0 missing, 2 warnings", or that there is none of it.
std::string countsOf(const Tally &tally);

// The report as text; its last line is `countsOf`. An empty folder means a dry run.
std::string textOf(const std::string &model, const std::string &folder, const Outcome &outcome);
// The warnings, one per line.
std::string warningsOf(const Outcome &outcome);

}  // namespace keltra::convert

#endif
