// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_TEXTURES_H
#define KELTRA_CONVERT_TEXTURES_H

// Makes the texture files of a model. Materials that use the same pictures in the same way share a file.

#include "tools/convert/atlas.h"
#include "tools/convert/material_scripts.h"
#include "tools/convert/names.h"
#include "tools/convert/options.h"
#include "tools/convert/picture_source.h"
#include "tools/convert/report.h"
#include "tools/convert/uv_place.h"

#include <map>
#include <set>
#include <string>
#include <vector>

struct aiScene;

namespace keltra::convert {

// How names of base textures end.
constexpr char kBaseEnding[] = "_d.tga";

// Why a picture's size is changed.
constexpr char kNewSize[] = "their sides become powers of two, within the limit";

// How the alpha of a texture's picture is used.
enum class AlphaUse { kDrop, kKeep, kCut };

// The texture that a material needs. Paths are as in the model, empty for none.
struct TextureRequest {
    std::string base;  // white if empty
    AlphaUse alpha = AlphaUse::kDrop;
    float cutOff = 0.5f;  // with kCut: pixels of less alpha are invisible, all others opaque
    std::string opacity;  // a picture whose alpha, or else brightness, multiplies the alpha
    bool opacityInverted = false;
    std::string normals;
    bool normalsMayBeHeights = false;  // then they are used only if they look like normals
};

struct TextureMade {
    std::string file;
    bool seeThrough = false;  // some pixels are
};

// The engine's file of a picture whose sides are powers of two.
std::vector<std::uint8_t> targa(const formats::Image &image, bool withAlpha);
// The greatest power of two up to `size`, and up to what the engine loads.
unsigned largestSide(unsigned size);

class Textures {
   public:
    Textures(const aiScene &scene, const Options &options, Report &report);

    // Uses a checkerboard, with a warning, if the base cannot be read. Makes no file for opaque white.
    TextureMade make(const TextureRequest &request);
    // Where a texture went: the file, and its place in it.
    struct Joined {
        std::string file;
        UvPlace place;
    };
    // What keeps files out of an atlas, by their names; null for nothing.
    using Apart = std::map<std::string, const char *>;
    // Puts pictures of these files together into as few as possible. With `all`, large ones too, and the
    // report has those that stay apart; otherwise small ones, without taking twice the memory. `most` is the
    // budget of textures, 0 for none.
    std::map<std::string, Joined> join(const Apart &apart, bool all, std::uint64_t most);
    // Halves the largest pictures until all take at most so many bytes of the engine's memory.
    void shrinkTo(std::uint64_t bytes);
    // All files. May be called once.
    std::vector<OutputFile> take();

   private:
    struct Pictures {
        formats::Image base, normals;  // `normals` empty for none
        bool missing = false, seeThrough = false;
        bool plain = false;  // there is no picture, and none is missing
    };
    PicturePlace find(const std::string &path, bool ownName, const ScriptedMaterial *&scripted);
    bool read(const std::string &path, const std::string &consequence, formats::Image &image,
              bool ownName = false, bool *seeThrough = nullptr);
    void tellScript(const std::string &path, const ScriptedMaterial &scripted);
    void loadBase(const TextureRequest &request, Pictures &pictures);
    void mergeOpacity(const TextureRequest &request, Pictures &pictures);
    void loadNormals(const TextureRequest &request, Pictures &pictures);
    void fit(formats::Image &image, bool alphaCounts) const;
    void reportSize(const std::string &path, const formats::Image &image);
    void add(const std::string &name, const std::string &source, const formats::Image &image, bool missing,
             std::vector<std::uint8_t> bytes);
    TextureMade write(const TextureRequest &request, const Pictures &pictures);
    std::vector<std::size_t> candidates(const Apart &apart, bool all, bool seeThrough);
    bool isWorthIt(const Atlas &atlas, const std::vector<const formats::Image *> &pictures, bool all,
                   std::uint64_t most) const;
    Atlas packed(const std::vector<std::size_t> &wanted, bool all, std::uint64_t most) const;
    void replace(std::vector<std::size_t> &wanted, const Atlas &atlas, std::map<std::string, Joined> &joined);
    void remove(std::size_t index);

    const std::string name;
    unsigned largest;  // side, a power of two
    Report &report;
    PictureSource source;
    MaterialScripts scripts;
    Names names;
    std::map<std::string, TextureMade> madeBefore;                   // by request
    std::map<std::vector<std::uint8_t>, TextureMade> writtenBefore;  // by content
    std::set<std::string> reported;
    std::vector<OutputFile> files;       // as `report.textures`
    std::vector<formats::Image> images;  // of the files
};

}  // namespace keltra::convert

#endif
