// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_OUTCOME_H
#define KELTRA_CONVERT_OUTCOME_H

#include "tools/convert/options.h"
#include "tools/convert/report.h"

#include <functional>
#include <string>
#include <vector>

namespace keltra::convert {

struct Conversion;

struct Outcome {
    bool converted = false;
    std::string reason;   // why it failed: one line, without the file's name
    bool strict = false;  // it failed because something was lost; the report says what, nothing is written
    Report report;
    std::vector<std::string> files;  // written, or in a dry run those that would be
};

using ConvertFunction = std::function<Conversion(const Options &, const Progress &)>;

}  // namespace keltra::convert

#endif
