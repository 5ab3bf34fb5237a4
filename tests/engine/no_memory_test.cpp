// SPDX-License-Identifier: Zlib
// `new` of the classes whose objects stand on lists, without memory.

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <new>

#include "tests/support/allocations.h"

namespace keltra::test {
namespace {

template <class T>
void expectNoMemoryFor(const char *name) {
    SCOPED_TRACE(name);
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    T *object = nullptr;
    Allocations::failNth(1);
    EXPECT_THROW(object = new T, std::bad_alloc);
    Allocations::failNth(1);
    EXPECT_EQ(object = new (std::nothrow) T, nullptr);
    Allocations::clear();
    EXPECT_NO_THROW(object = new T);
    delete object;
}

TEST(NoMemoryTest, NewThrowsThroughTheEngine) {
    expectNoMemoryFor<KTANIM>("KTANIM");
    expectNoMemoryFor<KTFBO>("KTFBO");
    expectNoMemoryFor<KTFONT>("KTFONT");
    expectNoMemoryFor<KTMATERIAL>("KTMATERIAL");
    expectNoMemoryFor<KTNODE>("KTNODE");
    expectNoMemoryFor<KTMESH>("KTMESH");
    expectNoMemoryFor<KTSHADER>("KTSHADER");
    expectNoMemoryFor<KTTEXTURE>("KTTEXTURE");
    expectNoMemoryFor<KTVIDEO>("KTVIDEO");
}

}  // namespace
}  // namespace keltra::test
