// SPDX-License-Identifier: Zlib
#include "tests/tools/info/probe.h"

#include <algorithm>
#include <cstdio>

#include "tools/info/print.h"

namespace {

using namespace keltra::info;

bool isPlain(const std::string &text) {
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return (c >= 0 && c < 32 && c != '\n') || c == 127; });
}

bool isPrintable(const FileReport &report) {
    const std::string line = verdictLine(report);
    const std::string json = jsonText({report}, false);
    return isPlain(table(report)) && isPlain(line) && std::count(line.begin(), line.end(), '\n') == 1 &&
           isPlain(json) && Fields::accept(json);
}

}  // namespace

void keltra_probe(const char *kind, const void *bytes, std::size_t size, bool prints,
                  ProbedVerdict *verdict) {
    FileReport report;
    report.file = "file";
    report.inspection = inspect(kindOfName(kind), bytes, size);
    const Inspection &inspection = report.inspection;
    verdict->isGood = inspection.good;
    verdict->offset = inspection.flaw.offset;
    std::snprintf(verdict->field, sizeof verdict->field, "%s", inspection.flaw.field.c_str());
    std::snprintf(verdict->reason, sizeof verdict->reason, "%s", inspection.flaw.reason.c_str());
    verdict->isPrintable = !prints || isPrintable(report);
}
