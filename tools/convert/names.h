// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_NAMES_H
#define KELTRA_CONVERT_NAMES_H

// Names in scene files are shorter than 256 bytes and should be unique: the engine takes the first object of
// a name.

#include <cstddef>
#include <set>
#include <string>

namespace keltra::convert {

constexpr std::size_t kLongestName = 255;  // bytes, without the terminating zero

// `text` as valid UTF-8: every control character and every invalid byte becomes '_'.
std::string cleanText(const std::string &text);

// `text` as a file name that is valid on any system: all characters but letters, digits, '.', '-' and '_'
// become '_'. At most 64 characters; never empty, never with a dot at its beginning or end.
std::string fileName(const std::string &text);

bool endsWith(const std::string &text, const std::string &end);

// The default name of a model's output files: its file name without folder and extension, as a file name.
std::string fileStem(const std::string &path);

// Makes names unique. Without `caseMatters` "A" and "a" are the same name, as on some file systems.
class Names {
   public:
    explicit Names(std::size_t longest = kLongestName, bool caseMatters = true)
        : longest(longest), caseMatters(caseMatters) {}

    // `wanted`, or `otherwise` if it is empty, as clean text, cut between characters to the longest length.
    // ".2", ".3", ... is appended to a name that is taken. `ending`, a file's extension, follows the number.
    std::string take(const std::string &wanted, const std::string &otherwise, const std::string &ending = "");
    // How many names differ from the wanted ones.
    std::size_t changed() const { return changes; }

   private:
    std::size_t longest;
    bool caseMatters;
    std::set<std::string> taken;
    std::size_t changes = 0;
};

}  // namespace keltra::convert

#endif
