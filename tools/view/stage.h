#ifndef KELTRA_VIEW_STAGE_H
#define KELTRA_VIEW_STAGE_H

#include <string>

namespace keltra::view {

// A private folder, gone with the object, from which the engine reads everything. What is shown is linked
// into it under short names: the engine's prefixes hold 255 characters, a path with ".xml" in it is an
// interface to it, and two states of one model must not share textures by name.
class Stage {
   public:
    // Throws Failure.
    Stage();
    ~Stage();
    Stage(const Stage &) = delete;
    Stage &operator=(const Stage &) = delete;

    // With a slash at its end, for `setTexturePath` and the like.
    const std::string &prefix() const { return folder; }
    std::string path(const std::string &name) const { return folder + name; }
    // Makes `name` stand for the file or folder `target`, a path of any kind. Throws Failure.
    void link(const std::string &target, const std::string &name) const;
    void makeFolder(const std::string &name) const;
    // Takes away everything whose name begins so.
    void clear(const std::string &beginning) const;

   private:
    std::string folder;
};

}  // namespace keltra::view

#endif
