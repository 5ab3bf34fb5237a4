// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TEMP_FILE_H
#define KELTRA_TESTS_TEMP_FILE_H

// A folder for a test's files, removed with the object.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace keltra::test {

class TempFolder {
   public:
    TempFolder() {
        std::random_device random;
        do {
            folder = std::filesystem::temp_directory_path() / ("keltra-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(folder));
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    /// The path of a file in the folder, which need not exist.
    std::string path(std::string_view name) const { return (folder / name).generic_string(); }
    /// The folder with a closing slash, as the engine's directory prefixes want it.
    std::string prefix() const { return folder.generic_string() + "/"; }

    /// Writes the file and returns its path.
    std::string write(std::string_view name, const void *bytes, std::size_t size) const {
        std::ofstream file(folder / name, std::ios::binary | std::ios::trunc);
        file.write(static_cast<const char *>(bytes), static_cast<std::streamsize>(size));
        file.close();
        if (!file) throw std::runtime_error("cannot write " + path(name));
        return path(name);
    }
    std::string write(std::string_view name, const std::vector<std::uint8_t> &bytes) const {
        return write(name, bytes.data(), bytes.size());
    }
    std::string write(std::string_view name, std::string_view text) const {
        return write(name, text.data(), text.size());
    }

   private:
    std::filesystem::path folder;
};

/// The bytes of a file; none when it cannot be read.
inline std::vector<std::uint8_t> readFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace keltra::test

#endif
