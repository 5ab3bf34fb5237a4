#ifndef KELTRA_CONVERT_ISOLATED_H
#define KELTRA_CONVERT_ISOLATED_H

#include <functional>
#include <string>
#include <vector>

#include "tools/convert/options.h"
#include "tools/convert/report.h"

namespace keltra::convert {

struct Conversion;

struct Outcome {
    bool converted = false;
    std::string reason;  // why not: one line, without the file's name
    Report report;
    std::vector<std::string> files;  // names of what was written, or would have been
};

// Converts in a child process, for a damaged model can crash its importer or keep it busy for ever: either is
// a refusal here. The child writes into `folder`, which must exist; an empty one writes nothing. It is
// stopped after `seconds`.
Outcome convertIsolated(const Options &options, const std::string &folder, const Progress &progress,
                        unsigned seconds = 300);

// The same around another conversion.
using ConvertFunction = std::function<Conversion(const Options &, const Progress &)>;
Outcome convertIsolated(const ConvertFunction &convert, const Options &options, const std::string &folder,
                        const Progress &progress, unsigned seconds);

}  // namespace keltra::convert

#endif
