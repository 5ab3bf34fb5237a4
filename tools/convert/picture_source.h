// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_PICTURE_SOURCE_H
#define KELTRA_CONVERT_PICTURE_SOURCE_H

// Finds the pictures that a model names: embedded, at the path in the model, or near the model.

#include "tools/convert/picture.h"

#include <map>
#include <string>
#include <vector>

struct aiScene;
struct aiTexture;

namespace keltra::convert {

// Where a picture was found.
struct PicturePlace {
    const aiTexture *embedded = nullptr;
    std::string file;     // path, unless it is embedded
    std::string instead;  // for reports: the file, if it is not the one that the model names
};

class PictureSource {
   public:
    // The scene must outlive the source.
    PictureSource(const aiScene &scene, const std::string &model);

    // Throws PictureFault.
    PicturePlace find(const std::string &path);
    formats::Image read(const PicturePlace &place, std::string &remark) const;

    // The picture's name in names of output files: its own name without folder and extension.
    std::string stem(const std::string &path) const;

   private:
    struct Entry {
        std::string name, folded;
    };
    const std::vector<Entry> &entriesOf(const std::string &folder);
    // The path with upper and lower case as in the file system; empty if there is no such file.
    std::string spelled(const std::string &folder, const std::vector<std::string> &parts);
    std::string otherExtension(const std::string &folder, const std::vector<std::string> &parts);
    bool accept(const std::string &file, PicturePlace &place);

    const aiScene &scene;
    std::string folder;     // of the model, with a slash at its end
    std::string modelStem;  // its file's name without extension
    std::map<std::string, std::vector<Entry>> listed;
    bool sawOther = false;  // the name exists but is not a regular file
};

// The picture in that file. Throws PictureFault.
formats::Image readPictureFile(const std::string &path, std::string &remark);

}  // namespace keltra::convert

#endif
