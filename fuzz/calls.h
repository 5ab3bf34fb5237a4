// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FUZZ_CALLS_H
#define KELTRA_FUZZ_CALLS_H

#include "fuzz/harness.h"

namespace keltra::fuzz {

/// Makes the call that the next bytes name.
void call(Bytes &bytes);

/// Lists, counters and trees agree with one another.
void checkLists();

}  // namespace keltra::fuzz

#endif
