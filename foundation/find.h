#ifndef KELTRA_FOUNDATION_FIND_H
#define KELTRA_FOUNDATION_FIND_H

// Searches a class's list in the order of creation.

#include <cstddef>
#include <cstring>

namespace keltra {

template <class T>
T *findById(T *first, unsigned int id) {
    while (first && first->id != id) first = first->getNext();
    return first;
}

// By the text in `field`, exactly; null when `text` is null.
template <class T, std::size_t size>
T *findByText(T *first, char (T::*field)[size], const char *text) {
    if (!text) return nullptr;
    while (first && std::strcmp(first->*field, text) != 0) first = first->getNext();
    return first;
}

}  // namespace keltra

#endif
