// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ALLOCATIONS_H
#define KELTRA_TESTS_ALLOCATIONS_H

// Counts the heap allocations of the testing thread, and makes one of them fail. All of them are counted:
// malloc, calloc, realloc and operator new.

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
    /// Lets the `nth` malloc of `size` bytes from now on return null, once: of those that the engine or the
    /// test calls, since a driver may want blocks of the same size.
    static void failNext(std::size_t size, int nth = 1);
    /// Lets the next malloc of `size` bytes or more return null, once.
    static void failNextFrom(std::size_t size);
    /// Lets the `nth` allocation of this thread from now on fail, by whichever function, once; 0 for none.
    /// Counts what is live from 0 again.
    static void failNth(long nth);
    /// Blocks that this thread allocated since failNth less those that it released.
    static long live();
    /// True when the failure that failNth asked for has come.
    static bool hasFailed();
    /// Cancels a failure that was not reached.
    static void clear();
};

/// While one is installed, it decides on every allocation of the testing thread and learns of those that
/// succeed. `caller` is the address that the allocating function returns to.
class AllocationWatch {
   public:
    virtual bool mustFail(const void *caller) = 0;
    virtual void allocated(void *block, const void *caller) = 0;
    virtual void released(void *block) = 0;

    static void install(AllocationWatch *watch);

   protected:
    ~AllocationWatch() = default;
};

}  // namespace keltra::test

#endif
