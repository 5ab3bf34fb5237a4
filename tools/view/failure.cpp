#include "tools/view/failure.h"

namespace keltra::view {

Failure failure(const std::string &path, const std::string &reason) {
    std::string line = path;
    for (char &c : line) {
        const unsigned char byte = static_cast<unsigned char>(c);
        if (byte < 32 || byte == 127) c = '?';
    }
    return Failure(line + ": " + reason);
}

}  // namespace keltra::view
