#include "tools/info/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>

namespace keltra::info {

namespace {

const off_t kLargest = 0x7fffffff;

class Descriptor {
   public:
    // A pipe without a writer would otherwise be waited for.
    explicit Descriptor(const std::string &path)
        : number(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC)) {}
    ~Descriptor() {
        if (number >= 0) close(number);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    const int number;
};

bool refused(std::string &trouble, const char *why) {
    trouble = why;
    return false;
}

// A file that shrinks meanwhile gives what is left of it.
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

bool readWholeFile(const std::string &path, std::vector<char> &bytes, std::string &trouble) {
    struct stat status;
    // Asked before opening: opening alone makes some devices act.
    if (stat(path.c_str(), &status) != 0) return refused(trouble, std::strerror(errno));
    if (S_ISDIR(status.st_mode)) return refused(trouble, "is a folder");
    if (!S_ISREG(status.st_mode)) return refused(trouble, "is not a regular file");
    const Descriptor file(path);
    if (file.number < 0 || fstat(file.number, &status) != 0) return refused(trouble, std::strerror(errno));
    if (!S_ISREG(status.st_mode)) return refused(trouble, "is not a regular file");
    if (status.st_size > kLargest) return refused(trouble, "is larger than the 2 GiB that the engine reads");
    try {
        bytes.resize(static_cast<std::size_t>(status.st_size));
    } catch (const std::bad_alloc &) {
        return refused(trouble, "does not fit into memory");
    }
    return readAll(file.number, bytes) || refused(trouble, std::strerror(errno));
}

}  // namespace keltra::info
