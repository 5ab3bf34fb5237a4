#ifndef KELTRA_CONVERT_ISOLATED_H
#define KELTRA_CONVERT_ISOLATED_H

#include "tools/convert/options.h"
#include "tools/convert/report.h"

#include <functional>
#include <string>
#include <vector>

namespace keltra::convert {

struct Conversion;

struct Outcome {
    bool converted = false;
    std::string reason;  // why it failed: one line, without the file's name
    Report report;
    std::vector<std::string> files;  // written, or in a dry run those that would be
};

// Converts in a child process, because a damaged model can crash its importer or make it run forever; both
// count as refusals. The child writes into `folder`, which must exist; with an empty name it writes nothing.
// It is stopped after `seconds`.
Outcome convertIsolated(const Options &options, const std::string &folder, const Progress &progress,
                        unsigned seconds = 300);

// The same with another conversion function.
using ConvertFunction = std::function<Conversion(const Options &, const Progress &)>;
Outcome convertIsolated(const ConvertFunction &convert, const Options &options, const std::string &folder,
                        const Progress &progress, unsigned seconds);

}  // namespace keltra::convert

#endif
