// SPDX-License-Identifier: Zlib
#ifndef KELTRA_LANTERN_WALK_FILM_H
#define KELTRA_LANTERN_WALK_FILM_H

// The film before the title: on a box of the interface. Where the engine has no video, or there is no file,
// it is left out.

#include <keltra/keltra.h>
#include <keltra/kit/clock.h>

#include <string>

#include "games/lantern_walk/screens/page.h"

namespace lantern_walk {

class Film {
   public:
    Film() : pictures(25.0f) {}
    ~Film() { stop(); }
    Film(const Film &) = delete;
    Film &operator=(const Film &) = delete;

    /// False when there is no film to show.
    bool start(const std::string &folder);
    /// Decodes what is due. False once it is over.
    bool update(float seconds);
    void stop();
    void pass() const { page.pass(); }

   private:
    bool showNext();

    Page page;
    KTVIDEO *video = nullptr;
    KTTEXTURE *picture = nullptr;
    KTPACE pictures;
};

}  // namespace lantern_walk

#endif
