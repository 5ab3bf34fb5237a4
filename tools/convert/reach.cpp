// SPDX-License-Identifier: Zlib
#include "tools/convert/reach.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace keltra::convert {
namespace {

namespace fs = std::filesystem;

// Empty if there is no such file or folder.
std::string resolved(const std::string &path) {
    std::error_code error;
    const fs::path real = fs::canonical(path, error);
    return error ? "" : real.string();
}

std::string folderOf(const std::string &resolvedPath) {
    if (resolvedPath.empty() || resolvedPath.back() == '/') return resolvedPath;
    return resolvedPath + "/";
}

bool isBelow(const std::string &file, const std::string &folder) {
    return !folder.empty() && file.compare(0, folder.size(), folder) == 0;
}

}  // namespace

Reach::Reach(const std::string &model, const std::vector<std::string> &folders) {
    const std::size_t slash = model.rfind('/');
    modelFolder = slash == std::string::npos ? "./" : model.substr(0, slash + 1);
    inside.push_back(folderOf(resolved(modelFolder)));
    if (inside[0].size() > 1) above = inside[0].substr(0, inside[0].rfind('/', inside[0].size() - 2) + 1);
    for (const std::string &folder : folders) inside.push_back(folderOf(resolved(folder)));
}

bool Reach::allows(const std::string &file) const {
    const std::string real = resolved(file);
    return std::any_of(inside.begin(), inside.end(),
                       [&](const std::string &folder) { return isBelow(real, folder); });
}

bool Reach::allowsBeside(const std::string &file) const {
    return allows(file) || isBelow(resolved(file), above);
}

}  // namespace keltra::convert
