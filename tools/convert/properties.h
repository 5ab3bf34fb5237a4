// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_PROPERTIES_H
#define KELTRA_CONVERT_PROPERTIES_H

// Custom properties: what scene files hold and model formats have no field for. A modelling program lets its
// users add them to nodes and materials; their names begin with "keltra_". Unknown ones, and values out of
// range, are left out with a warning.

#include "tools/convert/report.h"
#include "tools/formats/kte_writer.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

struct aiNode;
struct aiScene;

namespace keltra::convert {

struct NodeProperties {
    bool hidden = false;          // keltra_hidden: the node's meshes are loaded, but not drawn
    std::optional<float> radius;  // keltra_radius: of its meshes, in place of the bounding radius
    std::uint32_t auxId = 0;      // keltra_aux_id: the application's number of the node; 0 for none
    // keltra_helper: the node marks a place. Half the width of its box where it has no mesh, true counting
    // as 1.
    std::optional<double> helper;
    std::optional<double> reach;  // of its light

    void applyTo(formats::MeshData &mesh) const;
};

NodeProperties nodeProperties(const aiNode &node, Report &report);

// In place of what would be derived from the rest of the material: keltra_ambient and so on.
struct MaterialProperties {
    std::string
        filter;  // keltra_filter: of the texture, "nearest", "linear" or "mipmapped"; empty for the engine's
    std::optional<formats::Color> ambient, diffuse, specular, emission;
    std::optional<float> transparency, shininess;

    void applyTo(formats::Material &material) const;
};

// Those of a glTF file, by the materials' names: assimp does not pass them on, so the file is read again.
// Nothing for a model of another format.
std::map<std::string, MaterialProperties> materialProperties(const aiScene &scene, const std::string &model,
                                                             Report &report);

}  // namespace keltra::convert

#endif
