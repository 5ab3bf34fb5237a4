// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_IMPORT_LOG_H
#define KELTRA_CONVERT_IMPORT_LOG_H

// What importers complain of while they read a model: what they skip is in no other place.

#include "tools/convert/report.h"

#include <string>
#include <vector>

namespace keltra::convert {

// Collects from its construction to its destruction, or to the construction of another one.
class ImportLog {
   public:
    ImportLog();
    ~ImportLog();
    ImportLog(const ImportLog &) = delete;
    ImportLog &operator=(const ImportLog &) = delete;

    void tell(Report &report) const;

   private:
    class Stream;
    struct Line {
        std::string text;
        std::uint64_t count;
    };
    void add(const std::string &message);

    std::vector<Line> lines;
    std::uint64_t further = 0;  // beyond the lines that are kept
};

}  // namespace keltra::convert

#endif
