// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_INJECTOR_H
#define KELTRA_TESTS_INJECTOR_H

// Lets the n-th call of one kind fail that the engine makes, or a library on its behalf. Calls are told by
// the address that they return to: those of the GL driver, of SDL and of the test program never fail.

#include <cstddef>
#include <string>
#include <vector>

namespace keltra::test {

enum class Failing {
    kNothing,
    kMemory,         // malloc, calloc, realloc and operator new
    kMemoryForGood,  // the same, until a block is released
    kOpen,           // of files
    kRead,           // nothing is read
    kShortRead,      // half of it is
    kChangedRead,    // a byte is another one than the file has
    kWindow,         // SDL and EGL
    kUpload,         // texture images: the GL runs out of memory
    kDecoder,        // libmpeg2
};
const char *nameOf(Failing kind);

class Injector {
   public:
    /// From now on the `nth` call of that kind fails, once; with 0 they are only counted.
    static void start(Failing kind, long nth);
    /// Nothing fails any more. The number of calls of that kind since start.
    static long stop();
    /// Blocks of the engine that are not released.
    static std::size_t live();

    /// For the wrappers: true when this call must fail.
    static bool mustFail(Failing kind, const void *caller);
};

}  // namespace keltra::test

#endif
