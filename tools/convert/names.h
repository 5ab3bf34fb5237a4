#ifndef KELTRA_CONVERT_NAMES_H
#define KELTRA_CONVERT_NAMES_H

// Names in scene files are shorter than 256 bytes, and the engine finds things by name: the first one counts.

#include <cstddef>
#include <set>
#include <string>

namespace keltra::convert {

constexpr std::size_t kLongestName = 255;  // bytes, without the terminating zero

// `text` as valid UTF-8 without control characters: what is neither becomes '_'.
std::string cleanText(const std::string &text);

// Letters, digits, '.', '-' and '_' of `text`, for a file name on any system: everything else becomes '_'. At
// most 64 characters; never empty, hidden or with a dot at its end.
std::string fileName(const std::string &text);

// What output files of that model are called: the file's name without folder and extension, as a file name.
std::string fileStem(const std::string &path);

// Hands out names of which each is given once. Without `caseMatters` "A" and "a" count as one name, as they
// do on some file systems.
class Names {
   public:
    explicit Names(std::size_t longest = kLongestName, bool caseMatters = true)
        : longest(longest), caseMatters(caseMatters) {}

    // `wanted`, cleaned and cut to the longest length between characters; with ".2", ".3", ... when it is
    // taken, and `otherwise` in its place when it is empty. `ending` follows the number: a file's extension.
    std::string take(const std::string &wanted, const std::string &otherwise, const std::string &ending = "");
    // How many names came out different from what was wanted.
    std::size_t changed() const { return changes; }

   private:
    std::size_t longest;
    bool caseMatters;
    std::set<std::string> taken;
    std::size_t changes = 0;
};

}  // namespace keltra::convert

#endif
