// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MANY_H
#define KELTRA_CONVERT_MANY_H

// Many conversions at once, each in a process of its own.

#include "tools/convert/outcome.h"

#include <cstddef>
#include <functional>
#include <string>

namespace keltra::convert {

// Calls `convert` for each index below `count`, in up to `jobs` processes at a time, and `done` in this
// process, in the order of the indices. `convert` must not print; what it returns is sent back. A signal that
// asks the process to stop is passed on, and no further process is started. The caller must have no other
// threads.
void convertMany(std::size_t count, unsigned jobs, const std::function<Outcome(std::size_t)> &convert,
                 const std::function<void(std::size_t, const Outcome &)> &done,
                 const std::function<void(std::size_t)> &progress);

// A bar of `width` characters: "[####......] 4 of 10".
std::string progressBar(std::size_t done, std::size_t count, unsigned width);

}  // namespace keltra::convert

#endif
