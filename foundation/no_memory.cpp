// SPDX-License-Identifier: Zlib
#include "foundation/memory.h"

#include <new>

void keltra::throwNoMemory() { throw std::bad_alloc(); }
