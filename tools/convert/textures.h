#ifndef KELTRA_CONVERT_TEXTURES_H
#define KELTRA_CONVERT_TEXTURES_H

// Makes the texture files of a model. The same pictures, wanted in the same way, become one file.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "tools/convert/names.h"
#include "tools/convert/options.h"
#include "tools/convert/picture_source.h"
#include "tools/convert/report.h"

struct aiScene;

namespace keltra::convert {

// What is done with the alpha of a texture's picture.
enum class AlphaUse { kDrop, kKeep, kCut };

// A texture as a material wants it. Paths are as in the model, empty for none.
struct TextureWish {
    std::string base;  // white without
    AlphaUse alpha = AlphaUse::kDrop;
    float cutOff = 0.5f;  // with kCut: what has less alpha is invisible, everything else opaque
    std::string opacity;  // a picture whose alpha, or else brightness, multiplies the alpha
    bool opacityInverted = false;
    std::string normals;
    bool normalsMayBeHeights = false;  // then they count only if they look like normals
};

struct TextureMade {
    std::string file;
    bool seeThrough = false;  // some of its pixels are
};

class Textures {
   public:
    Textures(const aiScene &scene, const Options &options, Report &report);

    // Where the base cannot be had there is a checker, with a warning; no file for white that hides nothing.
    TextureMade make(const TextureWish &wish);
    // All files, once.
    std::vector<OutputFile> take();

   private:
    struct Pictures {
        formats::Image base, normals;  // `normals` empty for none
        bool missing = false, seeThrough = false;
    };
    bool read(const std::string &path, const std::string &consequence, formats::Image &image);
    void loadBase(const TextureWish &wish, Pictures &pictures);
    void mergeOpacity(const TextureWish &wish, Pictures &pictures);
    void loadNormals(const TextureWish &wish, Pictures &pictures);
    void fit(formats::Image &image, bool alphaCounts) const;
    void add(const std::string &name, const std::string &source, const formats::Image &image, bool missing,
             std::vector<std::uint8_t> bytes);
    TextureMade write(const TextureWish &wish, const Pictures &pictures);

    const std::string name;
    unsigned largest;  // side, a power of two
    Report &report;
    PictureSource source;
    Names names;
    std::map<std::string, TextureMade> madeBefore;                   // by wish
    std::map<std::vector<std::uint8_t>, TextureMade> writtenBefore;  // by content
    std::set<std::string> said;
    std::vector<OutputFile> files;
};

}  // namespace keltra::convert

#endif
