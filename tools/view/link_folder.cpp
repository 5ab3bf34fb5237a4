// SPDX-License-Identifier: Zlib
#include "tools/view/link_folder.h"

#include "tools/view/failure.h"

#include <stdlib.h>
#include <filesystem>

namespace keltra::view {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestPrefix = 200;  // leaves room for names within the engine's 255

}  // namespace

LinkFolder::LinkFolder() {
    std::error_code error;
    const fs::path above = fs::temp_directory_path(error);
    if (error) {
        const char *named = getenv("TMPDIR");
        throw failure(named ? named : "temporary folder", error.message());
    }
    std::string pattern = (above / "keltra-view-XXXXXX").string();
    if (pattern.size() > kLongestPrefix)
        throw failure(above.string(), "the path of the temporary folder is too long");
    if (!mkdtemp(&pattern[0])) {
        throw failure(above.string(), "no temporary folder can be made there");
    }
    folder = pattern + "/";
}

LinkFolder::~LinkFolder() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

void LinkFolder::link(const std::string &target, const std::string &name) const {
    std::error_code error;
    const fs::path whole = fs::absolute(target, error);
    if (!error) fs::create_symlink(whole, path(name), error);
    if (error) throw failure(target, error.message());
}

void LinkFolder::makeFolder(const std::string &name) const {
    std::error_code error;
    if (!fs::create_directory(path(name), error) && error) throw failure(path(name), error.message());
}

void LinkFolder::clear(const std::string &beginning) const {
    std::error_code ignored;
    for (fs::directory_iterator entry(folder, ignored), end; !ignored && entry != end;
         entry.increment(ignored)) {
        std::error_code kept;
        if (entry->path().filename().string().compare(0, beginning.size(), beginning) == 0)
            fs::remove_all(entry->path(), kept);
    }
}

}  // namespace keltra::view
