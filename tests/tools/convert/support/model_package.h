#ifndef KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MODEL_PACKAGE_H
#define KELTRA_TESTS_TOOLS_CONVERT_SUPPORT_MODEL_PACKAGE_H

// The models that the system's package assimp-testmodels installs: real ones, of every format, by many
// exporters.

#include <string>
#include <vector>

namespace keltra::test {

/// Paths of all its files below its folder, sorted.
std::vector<std::string> packageFiles();
/// The whole path of one of them.
std::string packagePath(const std::string &file);

/// What an importer finds in a file: shaped is what has a triangle with an area. It is tried in a process of
/// its own, for some files of the package end it.
struct ModelKind {
    bool readable = false, shaped = false, skinned = false, moving = false;
};
ModelKind kindOfModel(const std::string &path);

}  // namespace keltra::test

#endif
