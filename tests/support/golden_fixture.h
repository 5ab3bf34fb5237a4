// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_GOLDEN_FIXTURE_H
#define KELTRA_TESTS_GOLDEN_FIXTURE_H

// The engine for tests that compare what they draw: its pictures with the golden ones, its GL calls with
// those of all machines.

#include "tests/support/call_hash.h"
#include "tests/support/engine_fixture.h"

namespace keltra::test {

class GoldenTest : public EngineTest {
   protected:
    void SetUp() override {
        CallHash::start();
        EngineTest::SetUp();
    }
    void TearDown() override {
        EngineTest::TearDown();
        CallHash::stop();
    }
};

}  // namespace keltra::test

#endif
