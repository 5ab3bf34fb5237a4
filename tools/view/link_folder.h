// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIEW_LINK_FOLDER_H
#define KELTRA_VIEW_LINK_FOLDER_H

#include <string>

namespace keltra::view {

// A private temporary folder of symbolic links, from which the engine reads all files. The links have short
// names, because the engine's prefixes hold 255 characters, it takes a path with ".xml" in it for an
// interface, and two states of one model must not share textures by name. The destructor removes the folder.
class LinkFolder {
   public:
    // Throws Failure.
    LinkFolder();
    ~LinkFolder();
    LinkFolder(const LinkFolder &) = delete;
    LinkFolder &operator=(const LinkFolder &) = delete;

    // With a slash at its end, as `setTexturePath` needs it.
    const std::string &prefix() const { return folder; }
    std::string path(const std::string &name) const { return folder + name; }
    // Links `name` to the file or folder `target`, an absolute or relative path. Throws Failure.
    void link(const std::string &target, const std::string &name) const;
    void makeFolder(const std::string &name) const;
    // Removes all entries whose names begin with `beginning`.
    void clear(const std::string &beginning) const;

   private:
    std::string folder;
};

}  // namespace keltra::view

#endif
