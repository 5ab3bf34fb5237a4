// SPDX-License-Identifier: Zlib
#include "tools/support/own_screen.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

namespace keltra::support {
namespace {

constexpr char kLauncher[] = "keltra-screen";

// Unset and empty are the same.
const char *setting(const char *name) {
    const char *value = std::getenv(name);
    return value && *value ? value : nullptr;
}

}  // namespace

bool isWithoutDisplay() {
    const char *driver = setting("SDL_VIDEODRIVER");
    return !setting("DISPLAY") && (!driver || std::strcmp(driver, "x11") == 0);
}

std::string restartOnOwnScreen(char **argv) {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return "/proc/self/exe: " + error.message();
    const std::filesystem::path beside = program.parent_path() / kLauncher;
    std::string launcher = std::filesystem::exists(beside, error) ? beside.string() : kLauncher;
    std::string depth = "16", self = program.string();

    std::vector<char *> list = {launcher.data(), depth.data(), self.data()};
    for (char **argument = argv + 1; *argument; ++argument) list.push_back(*argument);
    list.push_back(nullptr);
    execvp(list[0], list.data());
    return launcher + ": " + std::strerror(errno);
}

}  // namespace keltra::support
