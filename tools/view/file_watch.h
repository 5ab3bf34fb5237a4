#ifndef KELTRA_VIEW_FILE_WATCH_H
#define KELTRA_VIEW_FILE_WATCH_H

#include <cstdint>
#include <string>

namespace keltra::view {

// What tells one state of a file from another.
struct FileStamp {
    bool exists = false;
    std::int64_t seconds = 0, nanoseconds = 0, size = 0;
    std::uint64_t device = 0, number = 0;  // a file that was renamed into place is another one

    bool operator==(const FileStamp &other) const;
    bool operator!=(const FileStamp &other) const { return !(*this == other); }
};

FileStamp stampOf(const std::string &path);

// Says when a file is to be loaded again: once it differs from what was loaded last, and the same was seen
// twice, for who writes a file does it in several steps.
class FileWatch {
   public:
    explicit FileWatch(const FileStamp &loaded) : loaded(loaded), seen(loaded) {}

    // True when the file is due; it then counts as loaded, with success or not. A file that is away is never
    // due.
    bool poll(const FileStamp &now);

   private:
    FileStamp loaded, seen;
};

}  // namespace keltra::view

#endif
