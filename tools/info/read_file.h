// SPDX-License-Identifier: Zlib
#ifndef KELTRA_INFO_READ_FILE_H
#define KELTRA_INFO_READ_FILE_H

#include <string>
#include <vector>

namespace keltra::info {

// The bytes of a regular file of less than 2 GiB, which is what the engine reads. False, with the reason in
// `error`, for anything else; it never waits for a device or a pipe.
bool readWholeFile(const std::string &path, std::vector<char> &bytes, std::string &error);

}  // namespace keltra::info

#endif
