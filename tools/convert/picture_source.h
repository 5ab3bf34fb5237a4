#ifndef KELTRA_CONVERT_PICTURE_SOURCE_H
#define KELTRA_CONVERT_PICTURE_SOURCE_H

// Finds the pictures that a model names: inside the model, where the model says, or near the model.

#include <map>
#include <string>
#include <vector>

#include "tools/convert/picture.h"

struct aiScene;
struct aiTexture;

namespace keltra::convert {

// Where a picture was found.
struct PicturePlace {
    const aiTexture *embedded = nullptr;
    std::string file;     // when it is not embedded: what to open
    std::string instead;  // the file in words, when it is another than the model names
};

class PictureSource {
   public:
    // The scene must outlive the source.
    PictureSource(const aiScene &scene, const std::string &model);

    // Throws PictureFault.
    PicturePlace find(const std::string &path);
    formats::Image read(const PicturePlace &place, std::string &remark) const;

    // What the picture is called in names of files: its own name without folder and extension.
    std::string stem(const std::string &path) const;

   private:
    struct Entry {
        std::string name, folded;
    };
    const std::vector<Entry> &entriesOf(const std::string &folder);
    // The file's path as its folders spell it, or an empty one.
    std::string spelled(const std::string &folder, const std::vector<std::string> &parts);
    std::string otherExtension(const std::string &folder, const std::vector<std::string> &parts);
    bool accept(const std::string &file, PicturePlace &place);

    const aiScene &scene;
    std::string folder;     // of the model, with a slash at its end
    std::string modelStem;  // its file's name without extension
    std::map<std::string, std::vector<Entry>> listed;
    bool sawOther = false;  // something of the name that is no file
};

}  // namespace keltra::convert

#endif
