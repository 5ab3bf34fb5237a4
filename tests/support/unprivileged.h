// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_UNPRIVILEGED_H
#define KELTRA_TESTS_UNPRIVILEGED_H

#ifndef _WIN32  // where there is no root

#include <unistd.h>

#include <stdexcept>

namespace keltra::test {

/// While it exists, files are opened without root's rights, so that permissions apply. No effect for other
/// users.
class Unprivileged {
   public:
    Unprivileged() : before(geteuid()) {
        if (before == 0 && seteuid(kNobody) != 0) throw std::runtime_error("cannot give up root's rights");
    }
    ~Unprivileged() {
        if (before == 0 && seteuid(before) != 0) _exit(1);
    }
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;

   private:
    static constexpr uid_t kNobody = 65534;
    const uid_t before;
};

}  // namespace keltra::test

#endif

#endif
