// SPDX-License-Identifier: Zlib
#include "tools/view/file_watch.h"

#include <sys/stat.h>

namespace keltra::view {

bool FileStamp::operator==(const FileStamp &other) const {
    return exists == other.exists && seconds == other.seconds && nanoseconds == other.nanoseconds &&
           size == other.size && device == other.device && number == other.number;
}

FileStamp stampOf(const std::string &path) {
    FileStamp stamp;
    struct stat status;
    if (::stat(path.c_str(), &status) != 0) return stamp;
    stamp.exists = true;
    stamp.seconds = status.st_mtim.tv_sec;
    stamp.nanoseconds = status.st_mtim.tv_nsec;
    stamp.size = status.st_size;
    stamp.device = status.st_dev;
    stamp.number = status.st_ino;
    return stamp;
}

bool FileWatch::poll(const FileStamp &now) {
    const bool stable = now == seen;
    seen = now;
    if (!stable || !now.exists || now == loaded) return false;
    loaded = now;
    return true;
}

}  // namespace keltra::view
