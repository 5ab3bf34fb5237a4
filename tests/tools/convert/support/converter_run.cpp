// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/converter_run.h"

#include <fcntl.h>
#include <keltra/keltra.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "formats/scene_record.h"
#include "formats/tga.h"
#include "tests/support/temp_file.h"
#include "tools/formats/fault_text.h"

namespace keltra::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

pid_t start(const std::vector<std::string> &arguments, const std::string &output, const std::string &errors) {
    std::vector<char *> pointers;
    for (const std::string &argument : arguments) pointers.push_back(const_cast<char *>(argument.c_str()));
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    pid_t child = -1;
    if (posix_spawn(&child, pointers[0], &actions, nullptr, pointers.data(), environ) != 0) child = -1;
    posix_spawn_file_actions_destroy(&actions);
    return child;
}

void await(pid_t child, double timeLimit, ConverterRun &run) {
    const Clock::time_point started = Clock::now();
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (secondsSince(started) > timeLimit) {
            run.stopped = true;
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    run.seconds = secondsSince(started);
    if (WIFSIGNALED(status)) run.signal = WTERMSIG(status);
    if (WIFEXITED(status) && !run.stopped) run.exitCode = WEXITSTATUS(status);
}

std::string textOf(const std::string &path) {
    const std::vector<std::uint8_t> bytes = readFile(path);
    return {bytes.begin(), bytes.end()};
}

std::vector<std::string> filesIn(const std::string &folder) {
    std::vector<std::string> files;
    std::error_code missing;
    for (const auto &entry : fs::directory_iterator(folder, missing))
        files.push_back(entry.path().filename().string());
    std::sort(files.begin(), files.end());
    return files;
}

bool endsWith(const std::string &text, const std::string &ending) {
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

std::string judgeScene(const std::string &name, const std::vector<std::uint8_t> &bytes) {
    SceneFault fault{};
    if (!checkScene(bytes.data(), bytes.size(), fault)) return name + ": " + formats::textOf(fault);
    KTNODE *root = KELTRA::load(name.c_str());
    KTNODE::cleanUp();
    KTMATERIAL::cleanUp();
    KTTEXTURE::cleanUp();
    return root ? "" : name + ": the engine does not load it";
}

std::string judgeAnimation(const std::string &name) {
    KTANIM *animation = new KTANIM;
    const bool loads = animation->load(name.c_str());
    const bool holds = animation->getNumberOfFrames() > 0 && animation->getNumberOfBones() > 0;
    delete animation;
    return loads && holds ? "" : name + ": the engine does not load it, or it is empty";
}

std::string judgeTexture(const std::string &name, const std::vector<std::uint8_t> &bytes) {
    TgaImage image{};
    if (!parseTga(bytes.data(), bytes.size(), image) || image.kind == TgaKind::kOther)
        return name + ": the engine does not read it";
    if ((image.sizeX & (image.sizeX - 1)) || (image.sizeY & (image.sizeY - 1)))
        return name + ": its sides are no powers of two";
    std::vector<std::uint8_t> pixels(image.bytes());
    return decodeTga(image, pixels.data()) ? "" : name + ": its pixels end early";
}

std::string judgeFiles(const ConverterRun &run, const std::string &folder) {
    std::set<std::string> said;
    for (const auto &file : run.document.at("files")) said.insert(file.get<std::string>());
    if (said != std::set<std::string>(run.files.begin(), run.files.end()))
        return "the folder does not hold what the report lists";
    unsigned scenes = 0;
    for (const std::string &name : run.files) {
        const std::vector<std::uint8_t> bytes = readFile(folder + "/" + name);
        std::string fault = name + ": what is that?";
        if (endsWith(name, ".kte")) ++scenes, fault = judgeScene(name, bytes);
        if (endsWith(name, ".kta")) fault = judgeAnimation(name);
        if (endsWith(name, ".tga")) fault = judgeTexture(name, bytes);
        if (!fault.empty()) return fault;
    }
    return scenes == 1 ? "" : "there is not one scene file";
}

// A refusal is one line that names the file and says why.
std::string judgeRefusal(const ConverterRun &run, const std::string &model) {
    if (!run.files.empty()) return "it refused the model and left " + run.files.front();
    const std::string name = fs::path(model).filename().string();
    const std::size_t end = run.errors.find('\n');
    if (end == std::string::npos || end + 1 != run.errors.size())
        return "its message is not one line: " + run.errors;
    const std::size_t place = run.errors.find(name + ": ");
    if (place == std::string::npos) return "its message does not name the file: " + run.errors;
    return place + name.size() + 2 < end ? "" : "it does not say why";
}

}  // namespace

ConverterRun runConverter(const std::string &model, const std::string &folder, double timeLimit) {
    const TempFolder outputs;
    const std::string output = outputs.path("output"), errors = outputs.path("errors");
    const std::string seconds = std::to_string(static_cast<unsigned>(std::max(1.0, 0.8 * timeLimit)));
    ConverterRun run;
    const pid_t child = start(
        {KELTRA_CONVERT_PROGRAM, model, "-o", folder, "--json", "--name", "model", "--timeout", seconds},
        output, errors);
    if (child < 0) return run;
    await(child, timeLimit, run);
    run.output = textOf(output);
    run.errors = textOf(errors);
    run.files = filesIn(folder);
    if (run.exitCode == 0) run.document = nlohmann::json::parse(run.output, nullptr, false);
    return run;
}

std::string judgeRun(const ConverterRun &run, const std::string &model, const std::string &folder) {
    if (run.stopped) return "it had to be stopped after " + std::to_string(run.seconds) + " seconds";
    if (run.signal) return "it was ended by signal " + std::to_string(run.signal);
    if (run.exitCode == 1) return judgeRefusal(run, model);
    if (run.exitCode != 0) return "it returned " + std::to_string(run.exitCode) + ": " + run.errors;
    if (run.document.is_discarded() || !run.document.contains("files")) return "its report is no document";
    if (!run.errors.empty()) return "it converted the model and complains: " + run.errors;
    KELTRA::setKTEPath((folder + "/").c_str());
    KTANIM::setKTAPath((folder + "/").c_str());
    KTTEXTURE::setPath((folder + "/").c_str());
    return judgeFiles(run, folder);
}

}  // namespace keltra::test
