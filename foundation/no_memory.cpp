// SPDX-License-Identifier: Zlib
#include <new>

#include "foundation/memory.h"

void keltra::throwNoMemory() { throw std::bad_alloc(); }
