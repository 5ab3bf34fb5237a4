// SPDX-License-Identifier: Zlib
// Saved values: the input as a file, or as the entries of a file whose head and checksum are good. What is
// read is asked for, changed and written, and the file that was written holds the same.

#include <keltra/kit/save.h>
#include <unistd.h>
#include <zlib.h>

#include <cstring>
#include <vector>

#include "fuzz/harness.h"

using namespace keltra::fuzz;

namespace {

std::vector<std::uint8_t> fileWithEntries(const std::uint8_t *data, std::size_t size) {
    std::vector<std::uint8_t> file = {'K', 'T', 'S', 'A', 'V', 'E', 1, 0};
    const auto add = [&file](std::size_t value) {
        for (int shift = 0; shift < 32; shift += 8) file.push_back(static_cast<std::uint8_t>(value >> shift));
    };
    add(1);
    add(size);
    uLong sum = crc32(0, file.data() + 8, 8);
    sum = size ? crc32(sum, data, static_cast<uInt>(size)) : sum;
    add(sum);
    file.insert(file.end(), data, data + size);
    return file;
}

void use(KTSAVE &save, Bytes &bytes) {
    char room[64];
    for (int i = 0; i < 8; ++i) {
        const std::string name = bytes.text(33);
        save.getInt(name.c_str());
        save.getFloat(name.c_str());
        require(std::strlen(save.getText(name.c_str())) <= KTSAVE::capacity, "KTSAVE::getText");
        require(save.getBytes(name.c_str(), room, sizeof room) <= KTSAVE::capacity, "KTSAVE::getBytes");
        if (bytes.flag()) save.remove(name.c_str());
        if (bytes.flag()) save.setText(name.c_str(), bytes.text(200).c_str());
        if (bytes.flag()) save.setBytes(name.c_str(), room, bytes.u8() % sizeof room);
        if (bytes.flag() && save.setInt(name.c_str(), i))
            require(save.getInt(name.c_str()) == i, "KTSAVE::setInt");
        require(save.getSize() <= KTSAVE::capacity, "KTSAVE::getSize");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const bool isWhole = size && *data == 'K';
    const std::vector<std::uint8_t> file =
        isWhole ? std::vector<std::uint8_t>(data, data + size) : fileWithEntries(data, size);
    KTSAVE save;
    const bool isRead = save.read(fileOf(file.data(), file.size()));
    require(isRead || save.getSize() == 0, "a file that is refused changes nothing");
    Bytes bytes(data, size);
    use(save, bytes);
    if (isChosen(64, data, size)) {
        const std::string path = "/dev/shm/keltra-fuzz-save-" + std::to_string(getpid());
        KTSAVE again;
        require(save.write(path.c_str()) && again.read(path.c_str()), "KTSAVE::write");
        require(again.getSize() == save.getSize(), "what was written is read");
        unlink(path.c_str());
    }
    return 0;
}
