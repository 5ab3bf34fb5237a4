// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CONVERTER_RUN_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CONVERTER_RUN_H

// Runs the program keltra-convert.

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace keltra::test {

struct ConverterRun {
    int exitCode = -1;  // -1 if a signal or the time limit ended it
    int signal = 0;
    bool stopped = false;  // it took too long
    double seconds = 0.0;
    std::string output, errors;
    nlohmann::json document;         // its report, if it converted the model
    std::vector<std::string> files;  // in its folder, sorted
};

/// Converts `model` into `folder` with a report on the standard output, in `timeLimit` seconds at most.
ConverterRun runConverter(const std::string &model, const std::string &folder, double timeLimit);

/// Checks the program's behaviour and its files, which the engine's own readers read. Returns the first
/// fault, or an empty text. Not thread-safe; the GL must be stubbed.
std::string judgeRun(const ConverterRun &run, const std::string &model, const std::string &folder);

}  // namespace keltra::test

#endif
