// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SMALL_DISK_H
#define KELTRA_TESTS_SMALL_DISK_H

#ifndef _WIN32  // where no such limit is

#include <sys/resource.h>

#include <csignal>

namespace keltra::test {

/// While it exists, no file can grow beyond `bytes`.
class SmallDisk {
   public:
    explicit SmallDisk(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit small{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

   private:
    rlimit before;
    void (*const handler)(int);
};

}  // namespace keltra::test

#endif

#endif
