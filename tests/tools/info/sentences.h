// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_INFO_SENTENCES_H
#define KELTRA_TESTS_TOOLS_INFO_SENTENCES_H

#include <string>
#include <vector>

#include "tools/info/print.h"

namespace keltra::test {

/// The faults of an inspection of a file called "it".
inline std::vector<std::string> sentencesOf(const info::Inspection &inspection) {
    std::vector<std::string> sentences;
    for (const KTFAULT &fault : inspection.faults) sentences.push_back(info::sentenceOf(fault, "it"));
    return sentences;
}

}  // namespace keltra::test

#endif
