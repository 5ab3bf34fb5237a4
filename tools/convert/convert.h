// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_CONVERT_H
#define KELTRA_CONVERT_CONVERT_H

// Converts a model into the engine's files: NAME.kte, NAME_CLIP.kta for every animation, and
// NAME_PICTURE_d.tga for every texture. Further files of animations become clips of the same skeleton.

#include "tools/convert/options.h"
#include "tools/convert/report.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"

#include <memory>

struct aiScene;

namespace Assimp {
class Importer;
}

namespace keltra::convert {

class ImportLog;
class ModelFiles;

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

struct Conversion {
    // The scene file is the last: once it exists, all files that it names exist.
    std::vector<OutputFile> files;
    Report report;
};

// Throws Refusal for a model that cannot be read or has nothing that the engine can draw or play.
Conversion convertModel(const Options &options, const Progress &progress);

// For a picture in the place of the model: one texture, NAME.tga, with alpha where the picture has any.
// Throws Refusal.
Conversion convertPicture(const Options &options, const Progress &progress);

}  // namespace keltra::convert

#endif
