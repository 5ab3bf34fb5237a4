// SPDX-License-Identifier: Zlib
// Windows alone: of device contexts a system has few, and no other program gets those that are kept.

#include <windows.h>

#include <set>

#include "tests/support/engine_fixture.h"
#include "tools/support/interpose.h"

namespace {

int taken = 0, released = 0;
std::set<std::pair<HWND, HDC>> held;

}  // namespace

KELTRA_INTERPOSE(HDC, WINAPI, GetDC, (HWND window)) {
    static auto *const next = keltra::nextFunction<HDC WINAPI(HWND)>("GetDC");
    const HDC device = next(window);
    ++taken;
    if (device) held.emplace(window, device);
    return device;
}

KELTRA_INTERPOSE(int, WINAPI, ReleaseDC, (HWND window, HDC device)) {
    static auto *const next = keltra::nextFunction<int WINAPI(HWND, HDC)>("ReleaseDC");
    const int done = next(window, device);
    ++released;
    if (done) held.erase({window, device});
    return done;
}

namespace keltra::test {
namespace {

using WindowDeviceTest = EngineTest;

TEST_F(WindowDeviceTest, IsAskedForAtEachStartAndGivenBack) {
    for (int start = 1; start <= 3; ++start) {
        EXPECT_TRUE(KELTRA::free());
        taken = released = 0;
        ASSERT_TRUE(KELTRA::init(&settings));
        EXPECT_EQ(taken, 1);
        EXPECT_EQ(released, 1);
        EXPECT_TRUE(held.empty()) << "still held while the engine runs";
    }
}

}  // namespace
}  // namespace keltra::test
