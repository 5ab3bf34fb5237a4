// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_REPORT_TEXT_H
#define KELTRA_CONVERT_REPORT_TEXT_H

#include "tools/convert/outcome.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace keltra::convert {

// "3 dropped, 1 changed, 0 missing, 2 warnings", or that there is none of it.
std::string countsOf(const Tally &tally);

// The report as text; its last line is `countsOf`. An empty folder means a dry run.
std::string textOf(const std::string &model, const std::string &folder, const Outcome &outcome);
// The last line of many conversions.
struct ManyTotals {
    std::size_t converted = 0, refused = 0, lossy = 0;
    Tally tally;

    void add(const Outcome &outcome) {
        ++(outcome.converted ? converted : outcome.strict ? lossy : refused);
        const Tally more = outcome.report.tally();
        tally.dropped += more.dropped;
        tally.changed += more.changed;
        tally.missing += more.missing;
        tally.warnings += more.warnings;
    }
};
std::string totalsOf(const ManyTotals &totals);

}  // namespace keltra::convert

#endif
