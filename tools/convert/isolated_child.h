// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_ISOLATED_CHILD_H
#define KELTRA_CONVERT_ISOLATED_CHILD_H

// The child's side of `convertIsolated`, and the messages that it sends: the size in 32 bits, then CBOR,
// which can hold names of any bytes.

#include "tools/convert/outcome.h"

#include <sys/types.h>
#include <cstdint>
#include <string>

namespace keltra::convert {

constexpr std::uint32_t kLongestMessage = 64u << 20;
// Keys of a progress message; a message without them is the outcome.
constexpr char kProgressKey[] = "what", kDoneKey[] = "done";

struct Work {
    const ConvertFunction &convert;
    const Options &options;
    const std::string &folder;
};

// Does the work, writes the outcome to `pipe` and ends the process. Ends it too when the process `parent`
// ends.
[[noreturn]] void runChild(const Work &work, int pipe, pid_t parent) noexcept;

}  // namespace keltra::convert

#endif
