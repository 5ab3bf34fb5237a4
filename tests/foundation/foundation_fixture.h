// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_FOUNDATION_FIXTURE_H
#define KELTRA_TESTS_FOUNDATION_FIXTURE_H

#include <gtest/gtest.h>
#include <keltra/foundation.h>

#include <string>

#include "tests/support/temp_file.h"
#include "tests/support/text_file.h"

namespace keltra::test {

/// The file as text, with every time stamp replaced by TIME.
inline std::string timelessText(const std::string &path) {
    std::string text = readText(path);
    for (const std::string before : {" started at ", " terminated at "}) {
        for (std::size_t at = 0; (at = text.find(before, at)) != std::string::npos;) {
            at += before.size();
            const std::size_t length = text.find_first_not_of("0123456789/:. ", at) - at;
            text.replace(at, length, "TIME");
        }
    }
    return text;
}

/// Every test starts with free timers, all identifiers free and no log, and leaves the same behind.
class FoundationTest : public testing::Test {
   protected:
    FoundationTest() { restart(); }
    ~FoundationTest() override { restart(); }

    void startLog() { ASSERT_TRUE(vnfOpenLog(logPath().c_str())); }
    std::string logPath() const { return folder.path("run.txt"); }

    /// What was logged since startLog.
    std::string messages() const {
        const std::string text = timelessText(logPath());
        const std::string bannerEnd = "-------\n\n";
        const std::size_t found = text.find(bannerEnd);
        return found == std::string::npos ? "no banner" : text.substr(found + bannerEnd.size());
    }

    TempFolder folder;

   private:
    static void restart() {
        vnfCloseLog();
        vnfSetLogEcho(false);
        vnfOpenLog(nullptr);
    }
};

}  // namespace keltra::test

#endif
