// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_LIFECYCLE_H
#define KELTRA_FOUNDATION_LIFECYCLE_H

// What opening and closing the log does to the services of the foundation.

#include "foundation/identifier.h"
#include "foundation/log.h"
#include "foundation/memory.h"
#include "foundation/timer.h"

#endif
