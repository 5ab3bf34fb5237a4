// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_TIMER_H
#define KELTRA_FOUNDATION_TIMER_H

namespace keltra {

void freeAllTimers();

}  // namespace keltra

#endif
