#ifndef KELTRA_CONVERT_ISOLATED_CHILD_H
#define KELTRA_CONVERT_ISOLATED_CHILD_H

// The converting side of `convertIsolated`, and the messages that it sends: the size in 32 bits, then CBOR,
// which takes names of any bytes.

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "tools/convert/isolated.h"

namespace keltra::convert {

constexpr std::uint32_t kLongestMessage = 64u << 20;
// Of a message: {"what", "done"} tells the progress, everything else is the outcome.
constexpr char kProgressKey[] = "what", kDoneKey[] = "done";

struct Work {
    const ConvertFunction &convert;
    const Options &options;
    const std::string &folder;
};

// Does the work and ends the process, after the outcome was written to `pipe`. `parent` is the process that
// waits for it: when that one ends, so does this.
[[noreturn]] void runChild(const Work &work, int pipe, pid_t parent) noexcept;

}  // namespace keltra::convert

#endif
