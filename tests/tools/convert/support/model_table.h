// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MODEL_TABLE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MODEL_TABLE_H

#include "tests/tools/convert/support/converter_run.h"

#include <map>
#include <string>

namespace keltra::test {

/// The page with the result for each model. Of the present `page` the text above its mark is kept.
std::string modelPage(const std::string &page, const std::map<std::string, ConverterRun> &runs);

}  // namespace keltra::test

#endif
