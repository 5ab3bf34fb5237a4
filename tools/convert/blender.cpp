// SPDX-License-Identifier: Zlib
#include "tools/convert/blender.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;

constexpr char kVariable[] = "KELTRA_BLENDER";
constexpr std::uint64_t kMostBlocks = 1u << 22;

// The file's name is an argument, never part of the script.
constexpr char kScript[] =
    "import bpy, sys\n"
    "bpy.ops.export_scene.gltf(filepath=sys.argv[-1], export_format='GLB', export_apply=True,\n"
    "                          export_extras=True, export_lights=True, export_cameras=True)\n";

// A folder that is removed with all that is in it.
class ScratchFolder {
   public:
    ScratchFolder() {
        std::error_code error;
        std::string name = (fs::temp_directory_path(error) / "keltra-blend-XXXXXX").string();
        if (::mkdtemp(name.data())) path = name;
    }
    ~ScratchFolder() {
        std::error_code error;
        if (!path.empty()) fs::remove_all(path, error);
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    std::string path;
};

// The program's path; empty for none.
std::string blenderProgram() {
    if (const char *named = std::getenv(kVariable)) return named;
    const char *list = std::getenv("PATH");
    std::string folders = list ? list : "";
    for (std::size_t at = 0, end; at <= folders.size(); at = end + 1) {
        end = std::min(folders.find(':', at), folders.size());
        const std::string program = folders.substr(at, end - at) + "/blender";
        if (end > at && ::access(program.c_str(), X_OK) == 0) return program;
    }
    return "";
}

// Runs the program to its end; it ends with this process. Whether it succeeded.
bool run(std::vector<std::string> command) {
    std::vector<char *> arguments;
    for (std::string &argument : command) arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    const pid_t parent = ::getpid(), pid = ::fork();
    if (pid < 0) return false;
    if (pid == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() == parent) ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0)
        if (errno != EINTR) return false;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// How many blocks of this code the file has, if it is not compressed.
std::uint64_t countBlocks(const std::string &path, const char *code) {
    std::ifstream file(path, std::ios::binary);
    char header[12] = {};
    if (!file.read(header, sizeof header) || std::memcmp(header, "BLENDER", 7) != 0 || header[8] != 'v')
        return 0;
    const std::streamoff rest = header[7] == '-' ? 16 : 12;
    std::uint64_t count = 0;
    char block[8];
    for (std::uint64_t i = 0; i < kMostBlocks && file.read(block, sizeof block); ++i) {
        std::int32_t size = 0;
        std::memcpy(&size, block + 4, sizeof size);
        if (size < 0 || std::memcmp(block, "ENDB", 4) == 0) break;
        count += std::strncmp(block, code, 4) == 0;
        file.seekg(rest + size, std::ios::cur);
    }
    return count;
}

}  // namespace

bool isBlend(const std::string &path) {
    char start[7] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    return std::memcmp(start, "BLENDER", sizeof start) == 0 || fs::path(path).extension() == ".blend";
}

std::vector<std::uint8_t> exportedByBlender(const std::string &path, Report &report) {
    const std::string program = blenderProgram();
    const ScratchFolder scratch;
    if (program.empty() || scratch.path.empty()) return {};
    const std::string output = scratch.path + "/model.glb";
    // Scripts in the file are not run. A name that begins with a dash is no option.
    std::error_code error;
    const bool done =
        run({program, "-b", "--factory-startup", "--disable-autoexec", fs::absolute(path, error).string(),
             "--python-exit-code", "3", "--python-expr", kScript, "--", output});
    std::ifstream file(output, std::ios::binary);
    std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!done || bytes.empty()) {
        report.warn("Blender could not export it; it is read without");
        return {};
    }
    report.tell("read through Blender, as glTF");
    return bytes;
}

void reportWithoutBlender(const std::string &path, Report &report) {
    report.warn(
        "it is read without Blender: modifiers, armatures and actions are not, and materials in part");
    const std::pair<const char *, const char *> lost[] = {
        {"AR", "armatures"}, {"AC", "actions"}, {"KE", "shape keys"}};
    for (const auto &[code, what] : lost)
        report.drop(what, countBlocks(path, code), "without Blender they are not read");
}

}  // namespace keltra::convert
