// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_PICTURE_SOURCE_H
#define KELTRA_CONVERT_PICTURE_SOURCE_H

// Finds the pictures that a model names: embedded, at the path in the model, or by their names in folders
// near the model and in those that the user gives.

#include "tools/convert/picture.h"
#include "tools/convert/reach.h"

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
    // The scene must outlive the source. `folders` are searched with all folders below them.
    PictureSource(const aiScene &scene, const std::string &model,
                  const std::vector<std::string> &folders = {});

    // With `ownName`, a picture of the model's name is the last resort. Throws PictureFault.
    PicturePlace find(const std::string &path, bool ownName = false);
    formats::Image read(const PicturePlace &place, std::string &remark) const;

    // The picture's name in names of output files: its own name without folder and extension.
    std::string stem(const std::string &path) const;

   private:
    struct Entry {
        std::string name, folded;
    };
    // A path to try: `parts` below the folder `root`.
    struct Candidate {
        std::string root;
        std::vector<std::string> parts;
        bool asWritten = false;
        bool beside = false;  // it may lie outside of the model's folder, beside it
    };
    const std::vector<Entry> &entriesOf(const std::string &folder);
    // The folders below, relative and sorted, down to `depth` levels.
    const std::vector<std::vector<std::string>> &foldersBelow(const std::string &root, unsigned depth);
    void listFolders(const std::string &root, const std::vector<std::string> &at, unsigned depth,
                     std::vector<std::vector<std::string>> &list);
    std::vector<Candidate> candidatesFor(const std::string &path);
    // The path with upper and lower case as in the file system; empty if there is no such file.
    std::string spelled(const std::string &folder, const std::vector<std::string> &parts);
    std::string otherExtension(const std::string &folder, const std::vector<std::string> &parts);
    bool accept(const std::string &file, bool beside, PicturePlace &place);

    const aiScene &scene;
    const Reach reach;
    const std::string folder;               // of the model, with a slash at its end
    std::vector<std::string> givenFolders;  // with slashes at their ends
    std::string modelStem;                  // its file's name without extension
    std::map<std::string, std::vector<Entry>> listed;
    std::map<std::string, std::vector<std::vector<std::string>>> listedFolders;
    bool sawOther = false;    // the name exists but is not a regular file
    bool sawOutside = false;  // it exists where models may not have files read
};

// The picture in that file. Throws PictureFault.
formats::Image readPictureFile(const std::string &path, std::string &remark);

}  // namespace keltra::convert

#endif
