// SPDX-License-Identifier: Zlib
#include "tests/support/call_hash.h"

#ifndef _WIN32
#include <sys/file.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/support/call_text.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/screen_depth.h"

namespace keltra::test {
namespace {

constexpr char kHashes[] = KELTRA_GOLDEN_FOLDER "/calls.txt";

struct State {
    bool isOn = false;
    CallText text;
    std::string lines;
    std::uint64_t calls = 0;
    std::map<std::string, int> uses;  // of a name in this test
};

// Never destroyed: the engine's unload step may still call the GL after the statics of this file are gone.
State &state() {
    static State *const instance = new State;
    return *instance;
}

bool isSet(const char *variable) {
    const char *value = std::getenv(variable);
    return value && !std::strcmp(value, "1");
}

void note(const Call &call, unsigned pointers) {
    state().lines += state().text.line(call, pointers) + '\n';
    ++state().calls;
}

// Of each name with its depth: the number of calls and their hash.
using Hashes = std::map<std::string, std::string>;

Hashes readHashes() {
    Hashes hashes;
    std::ifstream file(kHashes);
    for (std::string line; std::getline(file, line);) {
        const std::size_t end = line.find(": ");
        if (end != std::string::npos) hashes[line.substr(0, end)] = line.substr(end + 2);
    }
    return hashes;
}

// Programs of both depths may write at once.
bool writeHash(const std::string &key, const std::string &value) {
#ifdef _WIN32  // which takes the file as it is
    return (void)key, (void)value, false;
#else
    const int lock = open(KELTRA_GOLDEN_FOLDER, O_RDONLY | O_DIRECTORY);
    if (lock < 0 || flock(lock, LOCK_EX) != 0) return false;
    Hashes hashes = readHashes();
    hashes[key] = value;
    std::ofstream file(kHashes, std::ios::trunc);
    for (const auto &[name, hash] : hashes) file << name << ": " << hash << '\n';
    file.close();
    close(lock);
    return file.good();
#endif
}

std::string leave(const std::string &lines, const std::string &name) {
    std::error_code ignored;
    std::filesystem::create_directories(KELTRA_OUTPUT_FOLDER, ignored);
    const std::string path =
        std::string(KELTRA_OUTPUT_FOLDER) + "/" + name + "_" + std::to_string(screenDepth()) + ".calls";
    std::ofstream file(path);
    file << lines;
    file.close();
    return file ? path : path + " (could not be written)";
}

}  // namespace

void CallHash::start() {
    state() = State();
    state().isOn = true;
    GlRecorder::setListener(note);
    GlRecorder::setDrawing(!withoutPictures());
}

void CallHash::stop() {
    GlRecorder::setListener(nullptr);
    GlRecorder::setDrawing(true);
    state() = State();
}

bool CallHash::isOn() { return state().isOn; }

bool CallHash::withoutPictures() { return isSet("KELTRA_CALLS_ONLY"); }

::testing::AssertionResult CallHash::matches(const std::string &picture) {
    const int use = ++state().uses[picture];
    const std::string name = use == 1 ? picture : picture + '.' + std::to_string(use);
    const std::string lines = std::move(state().lines);
    std::ostringstream actual;
    actual << state().calls << " calls, " << hashText(hashBytes(lines.data(), lines.size()));
    state().lines.clear();
    state().calls = 0;
    const std::string key = name + " " + std::to_string(screenDepth());
    if (isSet("KELTRA_UPDATE_GOLDEN")) {
        if (writeHash(key, actual.str())) return ::testing::AssertionSuccess();
        return ::testing::AssertionFailure() << kHashes << " could not be written";
    }
    const std::string expected = readHashes()[key];
    if (actual.str() == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << key << ": " << actual.str() << "; in " << kHashes << ": "
           << (expected.empty() ? "nothing" : expected) << "\n  the calls: " << leave(lines, name);
}

}  // namespace keltra::test
