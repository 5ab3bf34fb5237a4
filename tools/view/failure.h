#ifndef KELTRA_VIEW_FAILURE_H
#define KELTRA_VIEW_FAILURE_H

#include <stdexcept>
#include <string>

namespace keltra::view {

// What cannot be shown, and why: one line, as it is printed.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// `path: reason` on one line, whatever the path holds.
Failure failure(const std::string &path, const std::string &reason);

}  // namespace keltra::view

#endif
