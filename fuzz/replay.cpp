// SPDX-License-Identifier: Zlib
// A target without the fuzzer: runs each file named, and each file of a folder named.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/harness.h"

namespace {

void replay(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::printf("%s\n", path.filename().c_str());
    std::fflush(stdout);
    // A copy of exactly that size, of which the address checker knows the end.
    std::vector<std::uint8_t> exact(bytes.begin(), bytes.end());
    exact.shrink_to_fit();
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

}  // namespace

int main(int argc, char **argv) {
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            ++inputs;
            continue;
        }
        for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
            replay(entry.path());
            ++inputs;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
