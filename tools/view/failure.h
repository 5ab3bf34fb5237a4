// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_FAILURE_H
#define KELTRA_VIEW_FAILURE_H

#include <stdexcept>
#include <string>

namespace keltra::view {

// A file that cannot be shown, and why, in one line.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Why the engine refused its last call, without the names of call and file.
std::string engineReason();

// `path: reason`; control characters of the path become '?'.
Failure failure(const std::string &path, const std::string &reason);

}  // namespace keltra::view

#endif
