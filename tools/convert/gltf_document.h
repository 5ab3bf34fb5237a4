// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_GLTF_DOCUMENT_H
#define KELTRA_CONVERT_GLTF_DOCUMENT_H

// The JSON of a glTF file, plain or binary, for what the importer does not pass on.

#include <nlohmann/json.hpp>

#include <string>

namespace keltra::convert {

// By the file's name.
bool isGltfFile(const std::string &path);

class GltfDocument {
   public:
    // Without a file that can be read, and for damaged JSON, `json` is null or discarded. Throws Refusal for
    // JSON that is nested too deeply for the importer.
    explicit GltfDocument(const std::string &path);

    nlohmann::json json;
    // The whole file with the present `json`.
    std::string bytes() const;
    // Of a binary file, what follows the JSON.
    const std::string &behind() const { return rest; }

   private:
    bool binary = false;
    std::string rest;  // of a binary file, behind the JSON
};

}  // namespace keltra::convert

#endif
