// SPDX-License-Identifier: Zlib
#include "tools/convert/depfile.h"

#include "tools/convert/output_folder.h"

#include <algorithm>

namespace keltra::convert {
namespace {

// As GCC and Ninja do it: a blank and '#' get a backslash, which is doubled before them, and '$' is doubled.
std::string escaped(const std::string &path) {
    std::string text;
    std::size_t slashes = 0;  // backslashes before this character
    for (const char c : path) {
        if (c == ' ' || c == '\t' || c == '#') text += std::string(slashes, '\\') + '\\';
        if (c == '$') text += '$';
        slashes = c == '\\' ? slashes + 1 : 0;
        text += c;
    }
    return text;
}

}  // namespace

std::string dependenciesOf(const std::string &folder, const Outcome &outcome) {
    const std::string prefix = folder.empty() || folder.back() == '/' ? folder : folder + "/";
    std::string text;
    for (auto file = outcome.files.rbegin(); file != outcome.files.rend(); ++file)
        text += (text.empty() ? "" : " \\\n ") + escaped(prefix + *file);
    text += ":";
    for (const std::string &file : outcome.report.inputs)
        // No escape of a line's end exists.
        if (file.find('\n') == std::string::npos) text += " \\\n " + escaped(file);
    return text + "\n";
}

void writeDependencies(const std::string &path, const std::string &folder, const Outcome &outcome) {
    writeTextFile(path, dependenciesOf(folder, outcome));
}

}  // namespace keltra::convert
