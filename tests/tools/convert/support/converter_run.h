#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CONVERTER_RUN_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_CONVERTER_RUN_H

// The program keltra-convert, run as its users run it.

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace keltra::test {

struct ConverterRun {
    int exitCode = -1;  // -1 when it was ended by a signal or had to be stopped
    int signal = 0;
    bool stopped = false;  // it took too long
    double seconds = 0.0;
    std::string output, errors;
    nlohmann::json document;         // what it printed, when it converted
    std::vector<std::string> files;  // what is in its folder now, sorted
};

/// Converts `model` into `folder` with a report on the standard output. Waits `patience` seconds at most.
ConverterRun runConverter(const std::string &model, const std::string &folder, double patience);

/// What is wrong with how the program behaved and with what it left in the folder; empty when nothing is. The
/// files are given to the engine's own readers. One thread at a time may ask, and the GL must be stubbed.
std::string judgeRun(const ConverterRun &run, const std::string &model, const std::string &folder);

}  // namespace keltra::test

#endif
