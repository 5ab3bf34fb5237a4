// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MODEL_PACKAGE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MODEL_PACKAGE_H

// The models of the system's package assimp-testmodels, in all formats, by many exporters.

#include <string>
#include <vector>

namespace keltra::test {

/// Paths of all its files below its folder, sorted.
std::vector<std::string> packageFiles();
/// The whole path of one of them.
std::string packagePath(const std::string &file);

/// What an importer finds in a file; shaped: a triangle with an area. It runs in a forked process, because
/// some files of the package crash it.
struct ModelKind {
    bool readable = false, shaped = false, skinned = false, moving = false;
};
ModelKind kindOfModel(const std::string &path);

}  // namespace keltra::test

#endif
