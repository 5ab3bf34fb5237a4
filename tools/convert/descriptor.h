#ifndef KELTRA_CONVERT_DESCRIPTOR_H
#define KELTRA_CONVERT_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace keltra::convert {

// Closes a file descriptor with its end; a negative one is none.
class Descriptor {
   public:
    explicit Descriptor(int number) : number(number) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return number; }
    // Some file systems report only here that the disk is full.
    bool close() { return number < 0 || ::close(std::exchange(number, -1)) == 0; }

   private:
    int number;
};

}  // namespace keltra::convert

#endif
