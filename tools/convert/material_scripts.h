// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MATERIAL_SCRIPTS_H
#define KELTRA_CONVERT_MATERIAL_SCRIPTS_H

// The scripts in which games of the Quake III family describe their materials: models of these games name a
// material there in place of a picture.

#include <map>
#include <set>
#include <string>
#include <vector>

namespace keltra::convert {

// The first layer of a material that shows a picture.
struct ScriptedMaterial {
    std::string picture;      // its path, from the game's folder
    std::string script;       // the file
    bool seeThrough = false;  // by its alpha
    bool additive = false;    // its colours are added to what is behind
    bool reflection = false;  // its texture coordinates follow the view
};

// Adds the materials of a script, by their names in lower case, without an extension. Those that are there
// already stay.
void readMaterialScript(const std::string &text, const std::string &file,
                        std::map<std::string, ScriptedMaterial> &materials);

class MaterialScripts {
   public:
    // Files *.shader in these folders and below.
    explicit MaterialScripts(const std::vector<std::string> &folders) : folders(folders) {}

    // By its whole name, or by the last part of it if only one material has that. Null for none. Reads the
    // scripts when it is first asked.
    const ScriptedMaterial *find(const std::string &name);

   private:
    void readAll();

    const std::vector<std::string> folders;
    bool isRead = false;
    std::map<std::string, ScriptedMaterial> materials;
    std::map<std::string, std::string> byLastPart;
    std::set<std::string> shared;  // last parts of several names
};

}  // namespace keltra::convert

#endif
