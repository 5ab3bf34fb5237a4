// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TEXT_FILE_H
#define KELTRA_TESTS_TEXT_FILE_H

#include <fstream>
#include <iterator>
#include <string>

namespace keltra::test {

/// A file as text: its lines end in one character, however the system writes them.
inline std::string readText(const std::string &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace keltra::test

#endif
