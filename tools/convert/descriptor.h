// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_DESCRIPTOR_H
#define KELTRA_CONVERT_DESCRIPTOR_H

#include <unistd.h>
#include <utility>

namespace keltra::convert {

// Owns a file descriptor and closes it; a negative number is no descriptor.
class Descriptor {
   public:
    explicit Descriptor(int number) : number(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return number; }
    // Some file systems do not report a full disk before this.
    bool close() { return number < 0 || ::close(std::exchange(number, -1)) == 0; }

   private:
    int number;
};

}  // namespace keltra::convert

#endif
