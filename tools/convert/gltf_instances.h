// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_GLTF_INSTANCES_H
#define KELTRA_CONVERT_GLTF_INSTANCES_H

#include "tools/convert/gltf_buffers.h"
#include "tools/convert/report.h"

#include <nlohmann/json.hpp>

namespace keltra::convert {

// Gives each node with EXT_mesh_gpu_instancing a child for each instance, and reports them; nodes whose
// instances cannot be read, or are too many, stay as they are. Whether the document was changed.
bool expandInstances(nlohmann::json &document, GltfBuffers &buffers, Report &report);

}  // namespace keltra::convert

#endif
