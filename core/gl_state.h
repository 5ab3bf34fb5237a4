// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CORE_GL_STATE_H
#define KELTRA_CORE_GL_STATE_H

// The GL state that the engine caches, beside the switches in the tables of KTOPENGL. Whatever changes one of
// these states in the GL goes through here, so that what is drawn does not depend on what was drawn before.

#include <GLES/gl.h>

namespace keltra {

// Brings every cache in line with a new GL context. Called by KTOPENGL::init.
void beginContext();

// Called with each new context, to put a cache of another class in line with it. To be made at load time.
class OnNewContext {
   public:
    explicit OnNewContext(void (*forget)());
    static void notify();

   private:
    void (*const forget)();
    OnNewContext *const next;
};

// Switches a capability on a change of its cached state only.
void setCapability(bool &cached, GLenum capability, bool on);

// Face culling. `KTOPENGL::culling` is what the application wants; while it is suspended the GL has it off.
enum CullingSuspension : unsigned int { kByWireframe = 1, kByEmitter = 2, kBy2DPass = 4 };
void suspendCulling(CullingSuspension by);
void resumeCulling(CullingSuspension by);
bool isCullingSuspended();
// Switches culling on while it exists, wanted or not.
class ForcedCulling {
   public:
    ForcedCulling();
    ~ForcedCulling();
    ForcedCulling(const ForcedCulling &) = delete;
    ForcedCulling &operator=(const ForcedCulling &) = delete;

   private:
    const bool wasOn;
};

// The 2D pass: no culling and no depth test from its begin to its end. `settle2DPass` undoes what others have
// changed within it.
void enter2DPass();
void leave2DPass();
void settle2DPass();
void setDepthTest(bool on);
// The client arrays of widgets and text: positions, colours, texture coordinates.
void useFlatArrays();

void setDepthWrites(bool on);
void setAlphaTest(bool on);
void setBlendFunction(GLenum source, GLenum destination);

// The texture unit: one switch and one binding for all channels. An upload binds its texture too, and
// `useTexture` brings back the one of `bindTexture` before a draw.
void setTexturing(bool on);
bool isTexturing();
void bindTexture(GLuint name);
GLuint boundTexture();
void bindForUpload(GLuint name);
void useTexture();
void deleteTexture(GLuint name);

// Changes with blending, blend function, texturing and binding: code that has set them all can check whether
// they are unchanged.
unsigned int surfaceStamp();
void stampSurface();

// The current colour is that of `setColor`, white at first. A pass may draw in another one, and a draw with a
// colour array leaves it undefined; `useColor` brings it back before a draw without colours. The same holds
// for the current normal (along z) and texture coordinate (the origin), which are never set.
struct Color {
    GLfixed rgba[4];
};
void setColor(const Color &color);
Color getColor();
void setPassColor(const Color &color);
void useColor();
void useNormal();
void useTexCoord();
void forgetColor();
void forgetNormal();
void forgetTexCoord();

// The GL's initial material, for objects without one. Code that sets another calls `forgetInitialMaterial`.
void useInitialMaterial();
void forgetInitialMaterial();

}  // namespace keltra

#endif
