// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ENGINE_FAULT_TABLE_H
#define KELTRA_TESTS_ENGINE_FAULT_TABLE_H

// Rows of failures: how each is provoked, and the one fault that it makes. tests/headers/fault_coverage.sh
// reads the first column of every table: a row begins with the call that it covers.

#include <gtest/gtest.h>
#include <keltra/keltra.h>

#include <functional>
#include <string>
#include <vector>

#include "foundation/fault.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/temp_file.h"

namespace keltra::test {

using Folder = const TempFolder &;
using Provoke = std::function<void(Folder)>;

constexpr KT_FAULT_SEVERITY kError = KT_FAULT_ERROR, kWarning = KT_FAULT_WARNING;

struct FaultRow {
    const char *covers;  // "KTNODE::link"
    Provoke provoke;     // in an engine that has started
    KT_FAULT_SEVERITY severity;
    KT_FAULT_CODE code;
    const char *sentence;  // %D is the folder with its slash; null when it is not predictable
    long byte = -1;
    unsigned int line = 0;
};

class FaultTableTest : public EngineTest {
   protected:
    void TearDown() override {
        KTFAULTS::setHandler(nullptr, nullptr);
        EngineTest::TearDown();
    }

    // Each row makes exactly one fault, reported in one sentence.
    void check(const std::vector<FaultRow> &rows) {
        for (const FaultRow &row : rows) {
            SCOPED_TRACE(row.sentence ? row.sentence : row.covers);
            KTFAULTS::clear();
            KTFAULTS::setHandler(collect, &sentences);
            sentences.clear();
            row.provoke(folder);
            KTFAULTS::setHandler(nullptr, nullptr);
            EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 1u) << row.covers << told();
            const KTFAULT *fault = KTFAULTS::getLast();
            if (!fault) continue;
            EXPECT_EQ(fault->severity, row.severity);
            EXPECT_EQ(fault->code, row.code);
            EXPECT_EQ(fault->byte, row.byte);
            EXPECT_EQ(fault->line, row.line);
            EXPECT_STRNE(fault->call, "");
            if (kFaultTexts && row.sentence) {
                EXPECT_EQ(sentenceOf(*fault), expected(row));
            }
        }
    }

    static std::string sentenceOf(const KTFAULT &fault) {
        char text[1024];
        KTFAULTS::format(&fault, text, sizeof text);
        return text;
    }

    TempFolder folder;

   private:
    static void collect(const KTFAULT *fault, void *user) {
        static_cast<std::vector<std::string> *>(user)->push_back(sentenceOf(*fault));
    }
    std::string told() const {
        std::string text;
        for (const std::string &sentence : sentences) text += "\n  " + sentence;
        return text;
    }
    std::string expected(const FaultRow &row) const {
        std::string text = row.sentence;
        for (std::size_t at; (at = text.find("%D")) != std::string::npos;)
            text.replace(at, 2, folder.prefix());
        return text;
    }

    std::vector<std::string> sentences;
};

}  // namespace keltra::test

#endif
