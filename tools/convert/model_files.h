// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MODEL_FILES_H
#define KELTRA_CONVERT_MODEL_FILES_H

// Opens the files that an importer asks for: the model, and what it refers to, such as buffers and material
// libraries, where the model may have it read.

#include "tools/convert/reach.h"
#include "tools/convert/report.h"

#include <assimp/DefaultIOSystem.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace keltra::convert {

class ModelFiles : public Assimp::DefaultIOSystem {
   public:
    ModelFiles(const std::string &model, const std::vector<std::string> &folders);

    bool Exists(const char *file) const override;
    // Null for a file that is not there, is not a regular one, or lies out of reach.
    Assimp::IOStream *Open(const char *file, const char *mode = "rb") override;

    // The model is read from these bytes in place of its file.
    void replaceModel(std::string bytes) { replacement = std::move(bytes); }

    // A file that is nowhere but here, beside the model.
    void addFile(const std::string &name, std::string bytes) { own[name] = std::move(bytes); }
    const Reach &where() const { return reach; }

    // What was read, and what is missing.
    void tell(Report &report) const;
    // The first file that was refused because of its place; empty for none.
    std::string outOfReach() const { return refused.empty() ? "" : refused.front(); }

   private:
    // The file of that name: names are compared without regard to case. Empty for none.
    std::string found(const std::string &file) const;
    bool mayRead(const std::string &file) const;

    const std::string model;
    const Reach reach;
    std::string replacement;
    std::map<std::string, std::string> own;  // by name
    std::vector<std::string> read, missing, refused;
};

}  // namespace keltra::convert

#endif
