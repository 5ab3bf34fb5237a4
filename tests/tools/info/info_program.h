// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_INFO_PROGRAM_H
#define KELTRA_TESTS_TOOLS_INFO_PROGRAM_H

// Runs keltra-info in a folder of the test's own.

#include "tests/support/temp_file.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <cstdio>
#include <string>

namespace keltra::test {

class InfoProgramTest : public ::testing::Test {
   protected:
    struct Result {
        int status;
        std::string output, errors;
    };

    /// `before` stands in front of the program on the shell's line.
    Result run(const std::string &arguments, const std::string &before = "") const {
        // Names of the tests' own making; none needs more than quotes.
        const std::string errors = folder.path("errors");
        const std::string command = "cd '" + folder.path("") + "' && " + before +
                                    " timeout 20 " KELTRA_INFO " " + arguments + " 2>'" + errors + "'";
        Result result = {-1, "", ""};
        std::FILE *pipe = popen(command.c_str(), "r");
        if (!pipe) return result;
        char buffer[4096];
        for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
            result.output.append(buffer, count);
        const int status = pclose(pipe);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        const std::vector<std::uint8_t> bytes = readFile(errors);
        result.errors.assign(bytes.begin(), bytes.end());
        return result;
    }

    const TempFolder folder;
};

}  // namespace keltra::test

#endif
