// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MODEL_H
#define KELTRA_CONVERT_MODEL_H

#include "tools/convert/options.h"
#include "tools/convert/report.h"

#include <memory>
#include <string>
#include <vector>

struct aiScene;

namespace Assimp {
class Importer;
}

namespace keltra::convert {

class ImportLog;
class ModelFiles;

// Throws Refusal for what is not a file with something in it.
void checkFile(const std::string &path);

// A model in memory, owned by its importer.
class Model {
   public:
    // The file `options.model`. An IQM file of animations alone has joints without names: theirs are
    // `jointNames`. Throws Refusal.
    Model(const Options &options, const Progress &progress, const std::vector<std::string> &jointNames = {});
    ~Model();
    const aiScene &scene() const { return *read; }
    // Which files were read, and what the importer says that it lost.
    void tell(Report &report) const;
    // Those of an IQM file, by their index.
    const std::vector<std::string> &joints() const { return jointNames; }

   private:
    void prepareGltf(const std::string &path);
    void prepareMd3(const Options &options);
    bool readByBlender(const std::string &path);
    void readOwn(const Options &options, const std::vector<std::string> &names);

    std::unique_ptr<ImportLog> log;
    Report found;       // by this class, before the importer
    ModelFiles *files;  // the importer's
    std::unique_ptr<Assimp::Importer> importer;
    std::unique_ptr<aiScene> own;  // of a format that assimp does not read in whole
    std::vector<std::string> jointNames;
    const aiScene *read;
};

}  // namespace keltra::convert

#endif
