// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_PLAIN_TEXT_H
#define KELTRA_CONVERT_PLAIN_TEXT_H

#include <cstdint>
#include <string>

namespace keltra::convert {

// `text` for a terminal, in one line: control characters and bytes that are not UTF-8 become \n, \t or \xNN.
std::string printable(const std::string &text);

// "1,000,000"
std::string withCommas(std::uint64_t number);

}  // namespace keltra::convert

#endif
