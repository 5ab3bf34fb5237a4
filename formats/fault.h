#ifndef KELTRA_FORMATS_FAULT_H
#define KELTRA_FORMATS_FAULT_H

#include <cstddef>

namespace keltra {

// Where a file is damaged: the offset and name of the field, and what is wrong with it. The texts are
// literals. The loaders, whose callers are told true or false only, have no use for it; tools have.
struct Fault {
    std::size_t offset;
    const char *field;
    const char *reason;
};

// Tells whoever asked; always false.
inline bool refuse(Fault *fault, std::size_t offset, const char *field, const char *reason) {
    if (fault) *fault = {offset, field, reason};
    return false;
}

}  // namespace keltra

#endif
