// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_IQM_H
#define KELTRA_CONVERT_IQM_H

// Inter-Quake Models, version 2: meshes, skeleton, weights and animations. Assimp reads their meshes only.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct aiScene;

namespace keltra::convert {

constexpr char kIqmImporter[] = "Inter-Quake Model Importer";

// Whether the file begins as such a model.
bool isIqm(const std::string &path);

// The model as an importer would give it; Z is up. A file of animations alone has a skeleton without names:
// `names` are those of the model that it belongs to, by their index. Throws Refusal.
std::unique_ptr<aiScene> readIqm(const std::vector<std::uint8_t> &bytes,
                                 const std::vector<std::string> &names);

// The names of a model's joints by their index.
std::vector<std::string> iqmJointNames(const std::vector<std::uint8_t> &bytes);

}  // namespace keltra::convert

#endif
