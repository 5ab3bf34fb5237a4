// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_GLTF_BUFFERS_H
#define KELTRA_CONVERT_GLTF_BUFFERS_H

// Vertices of a glTF file in forms that the importer does not read, made plain: compressed by meshopt, or as
// small integers.

#include "tools/convert/reach.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace keltra::convert {

class GltfBuffers {
   public:
    // `rest` is what follows the JSON of a binary file. Both must outlive the object.
    GltfBuffers(nlohmann::json &document, const std::string &rest, const Reach &reach);

    // Changes the document to refer to a further buffer `name`, whose bytes are returned; empty if there was
    // nothing to do. What is damaged stays as it is, for the importer to refuse. Throws Refusal for geometry
    // that cannot be decompressed.
    std::string makePlain(const std::string &name);
    // The values of an accessor with that many components an element; empty if they cannot be read.
    std::vector<float> numbers(std::uint64_t accessor, std::size_t components);

   private:
    using Json = nlohmann::json;
    struct Range {
        const std::uint8_t *bytes = nullptr;
        std::size_t size = 0;
    };

    const std::vector<std::uint8_t> &buffer(std::size_t index);
    std::optional<Range> view(std::size_t index);
    void decompress(std::size_t index, Json &view, const Json &compression);
    std::vector<float> valuesOf(const Json &accessor);
    bool makeFloats(Json &accessor);
    std::size_t append(const void *bytes, std::size_t size, unsigned stride);

    Json &document;
    const std::string &rest;
    const Reach &reach;
    std::map<std::size_t, std::vector<std::uint8_t>> buffers;
    std::map<std::size_t, std::vector<std::uint8_t>> decompressed;  // by view
    std::string plain;
};

}  // namespace keltra::convert

#endif
