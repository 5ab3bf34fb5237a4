// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_REACH_H
#define KELTRA_CONVERT_REACH_H

// Which files a model may have read for it. Models come from anywhere: a path in one must not bring any
// other file of the user into the output.

#include <string>
#include <vector>

namespace keltra::convert {

class Reach {
   public:
    // `folders` are those that the user allows besides the model's own.
    Reach(const std::string &model, const std::vector<std::string> &folders);

    // Whether the file, with all links followed, exists in the model's folder, in one of `folders`, or below.
    bool allows(const std::string &file) const;
    // The same for a file that a search by name found beside the model's folder.
    bool allowsBeside(const std::string &file) const;

    // With a slash at its end.
    const std::string &folder() const { return modelFolder; }

   private:
    std::string modelFolder;
    std::vector<std::string> inside;  // resolved, with a slash at the end
    std::string above;
};

}  // namespace keltra::convert

#endif
