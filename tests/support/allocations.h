#ifndef KELTRA_TESTS_ALLOCATIONS_H
#define KELTRA_TESTS_ALLOCATIONS_H

// Counts the heap allocations of the testing thread, and makes one of them fail. All of them are counted:
// malloc, calloc and realloc of the engine, and operator new, which the C++ library takes from malloc.

#include <cstddef>

namespace keltra::test {

class Allocations {
   public:
    /// Counts from 0 again.
    static void startCounting();
    /// The number since startCounting.
    static long stopCounting();

    /// False in a sanitizer build, whose runtime owns malloc: tests of failure then skip themselves.
    static bool canFail();
    /// Lets the `nth` malloc of `size` bytes from now on return null, once.
    static void failNext(std::size_t size, int nth = 1);
    /// Lets the next malloc of `size` bytes or more return null, once.
    static void failNextFrom(std::size_t size);
    /// Cancels a failure that was not reached.
    static void clear();
};

}  // namespace keltra::test

#endif
