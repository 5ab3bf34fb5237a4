// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_PROGRAM_H
#define KELTRA_TESTS_TOOLS_CONVERT_PROGRAM_H

// Runs a program and keeps what it writes.

#include "tests/support/temp_file.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <string>
#include <vector>

namespace keltra::test {

struct ProgramRun {
    int exit = -1;  // -1: ended by a signal
    std::string out, err;
};

inline std::string textOf(const std::string &path) {
    const std::vector<std::uint8_t> bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
}

/// In the folder `where`, or in the present one; standard output goes to `out` if that is given.
inline ProgramRun runProgram(std::vector<std::string> command, const std::string &where = ".",
                             const std::string &out = "") {
    TempFolder folder;
    const std::string output = out.empty() ? folder.path("out") : out, errors = folder.path("err");
    std::vector<char *> arguments;
    for (std::string &argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::dup2(::open("/dev/null", O_RDONLY), STDIN_FILENO);
        ::dup2(::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        ::dup2(::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        if (::chdir(where.c_str()) == 0) ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    ProgramRun run;
    if (WIFEXITED(status)) run.exit = WEXITSTATUS(status);
    if (out.empty()) run.out = textOf(output);
    run.err = textOf(errors);
    return run;
}

}  // namespace keltra::test

#endif
