// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_IDENTIFIER_H
#define KELTRA_FOUNDATION_IDENTIFIER_H

namespace keltra {

constexpr unsigned int kLargestId = 65535;  // objects that exist at a time

void takeIdentifierTable();
void dropIdentifierTable();

}  // namespace keltra

#endif
