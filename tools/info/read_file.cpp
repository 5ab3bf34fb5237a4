// SPDX-License-Identifier: Zlib
#include "tools/info/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace keltra::info {

namespace {

constexpr off_t kLargest = 0x7fffffff;

class Descriptor {
   public:
    // Otherwise a pipe without a writer would block.
    explicit Descriptor(const std::string &path)
        : number(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    const int number;
};

bool refused(std::string &error, const char *why) {
    error = why;
    return false;
}

// A file that shrinks while it is read gives its remaining bytes.
bool readAll(int file, std::vector<char> &bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = read(file, bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        if (count == 0) break;
        done += static_cast<std::size_t>(count);
    }
    bytes.resize(done);
    return true;
}

}  // namespace

bool readWholeFile(const std::string &path, std::vector<char> &bytes, std::string &error) {
    struct stat status;
    // Checked before opening, since some devices act when opened.
    if (stat(path.c_str(), &status) != 0) return refused(error, std::strerror(errno));
    if (S_ISDIR(status.st_mode)) return refused(error, "is a folder");
    if (!S_ISREG(status.st_mode)) return refused(error, "is not a regular file");
    const Descriptor file(path);
    if (file.number < 0 || fstat(file.number, &status) != 0) return refused(error, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) return refused(error, "is not a regular file");
    if (status.st_size > kLargest) return refused(error, "is larger than the 2 GiB that the engine reads");
    try {
        bytes.resize(static_cast<std::size_t>(status.st_size));
    } catch (const std::bad_alloc &) {
        return refused(error, "does not fit into memory");
    }
    return readAll(file.number, bytes) || refused(error, std::strerror(errno));
}

}  // namespace keltra::info
