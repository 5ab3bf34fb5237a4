// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_GLTF_INSTANCES_H
#define KELTRA_CONVERT_GLTF_INSTANCES_H

#include "tools/convert/gltf_buffers.h"
#include "tools/convert/report.h"

#include <nlohmann/json.hpp>

#include <string>

namespace keltra::convert {

// Gives each node with EXT_mesh_gpu_instancing a child for each instance, and reports them; nodes whose
// instances cannot be read, or are too many, stay as they are. A skin is drawn once: its vertices follow its
// joints wherever an instance is. Whether the document was changed.
bool expandInstances(nlohmann::json &document, GltfBuffers &buffers, Report &report);

// Gives each further skin that moves the same mesh a mesh of its own, and so do nodes that show it without
// one: the importer has one set of bones a mesh. Whether the document was changed.
bool separateSkins(nlohmann::json &document);

// Gives skins without inverse bind matrices those that the format means, which the importer needs. Returns
// the bytes of a buffer that the document then has under `name`; empty if all skins have theirs.
std::string completeSkins(nlohmann::json &document, const std::string &name);

}  // namespace keltra::convert

#endif
