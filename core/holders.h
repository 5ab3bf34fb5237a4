#ifndef KELTRA_CORE_HOLDERS_H
#define KELTRA_CORE_HOLDERS_H

class KTFONT;
class KTMATERIAL;
class KTNODE;
class KTSHADER;
class KTTEXTURE;

namespace keltra {

// Clears all pointers to an object that is being destroyed, except those that its own class keeps. Declared
// below the classes that call it, and defined in engine/, which knows every class that holds such pointers.
class Holders {
   public:
    static void forget(const KTTEXTURE *gone);
    static void forget(const KTSHADER *gone);
    static void forget(const KTFONT *gone);
    static void forget(const KTMATERIAL *gone);
    static void forget(const KTNODE *gone);
};

}  // namespace keltra

#endif
