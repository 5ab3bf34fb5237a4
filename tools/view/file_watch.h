// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_FILE_WATCH_H
#define KELTRA_VIEW_FILE_WATCH_H

#include <cstdint>
#include <string>

namespace keltra::view {

// Distinguishes states of a file.
struct FileStamp {
    bool exists = false;
    std::int64_t seconds = 0, nanoseconds = 0, size = 0;
    std::uint64_t device = 0, number = 0;  // differ for a file that was renamed into place

    bool operator==(const FileStamp &other) const;
    bool operator!=(const FileStamp &other) const { return !(*this == other); }
};

FileStamp stampOf(const std::string &path);

// Decides when a file is loaded again: when it differs from the loaded state and two polls have found the
// same state, because programs write files in several steps.
class FileWatch {
   public:
    explicit FileWatch(const FileStamp &loaded) : loaded(loaded), seen(loaded) {}

    // True if the file is to be loaded; the state then counts as loaded even if loading fails. Never true
    // while the file does not exist.
    bool poll(const FileStamp &now);

   private:
    FileStamp loaded, seen;
};

}  // namespace keltra::view

#endif
