// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_FAULT_TEXTS_H
#define KELTRA_FOUNDATION_FAULT_TEXTS_H

// The names of calls and the texts of all faults. The library keeps them packed, and its sources their
// numbers.

#include <cstddef>

#ifndef KELTRA_FAULT_TEXTS
#define KELTRA_FAULT_TEXTS 1
#endif

namespace keltra {

// When false, the library has no texts: faults keep only codes and found values.
constexpr bool kFaultTexts = KELTRA_FAULT_TEXTS != 0;

enum class FaultCall : unsigned char {};
enum class FaultText : unsigned char {};

constexpr const char *const kFaultCalls[] = {"",
                                             "KELTRA::free",
                                             "KELTRA::init",
                                             "KELTRA::load",
                                             "KELTRA::loadXML",
                                             "KELTRA::recursiveInitBones",
                                             "KELTRA::recursiveLoad",
                                             "KELTRA::recursiveLoadXML",
                                             "KELTRA::setKTEPath",
                                             "KELTRA::swap",
                                             "KTANIM::acquireStructure",
                                             "KTANIM::apply",
                                             "KTANIM::createKeyframes",
                                             "KTANIM::load",
                                             "KTANIM::save",
                                             "KTANIM::setBoneName",
                                             "KTANIM::setFrame",
                                             "KTANIM::setFrameRotationX",
                                             "KTANIM::setFrameRotationY",
                                             "KTANIM::setFrameRotationZ",
                                             "KTANIM::setKTAPath",
                                             "KTANIM::setNumberOfBones",
                                             "KTANIM::setNumberOfFrames",
                                             "KTANIM::unsetFrame",
                                             "KTBOX::checkLimits",
                                             "KTBUTTON::setCaption",
                                             "KTELEMENT::free",
                                             "KTELEMENT::init",
                                             "KTELEMENT::pass",
                                             "KTELEMENT::passSkeleton",
                                             "KTELEMENT::setNearestLight",
                                             "KTEMITTER::free",
                                             "KTEMITTER::init",
                                             "KTEMITTER::initialize",
                                             "KTEMITTER::load",
                                             "KTEMITTER::render",
                                             "KTFBO::bindTexture",
                                             "KTFONT::format",
                                             "KTFONT::init",
                                             "KTFONT::loadKerning",
                                             "KTFONT::putChar",
                                             "KTFONT::putString",
                                             "KTFONT::setKerning",
                                             "KTFONT::setName",
                                             "KTFONT::setPath",
                                             "KTFONT::setTexture",
                                             "KTHSCROLLBAR::KTHSCROLLBAR",
                                             "KTLABEL::write",
                                             "KTLIGHT::activateNearest",
                                             "KTLIGHT::load",
                                             "KTLIGHT::render",
                                             "KTMATERIAL::clone",
                                             "KTMATERIAL::setName",
                                             "KTMATERIAL::setTexture",
                                             "KTMESH::animate",
                                             "KTMESH::init",
                                             "KTMESH::load",
                                             "KTMESH::render",
                                             "KTMESH::resetBones",
                                             "KTNODE::displayTreeRecursive",
                                             "KTNODE::link",
                                             "KTNODE::load",
                                             "KTNODE::remove",
                                             "KTNODE::setName",
                                             "KTNODE::unlink",
                                             "KTSETTINGS::free",
                                             "KTSETTINGS::init",
                                             "KTSETTINGS::load",
                                             "KTSETTINGS::setFontPath",
                                             "KTSETTINGS::setKTAPath",
                                             "KTSETTINGS::setKTEPath",
                                             "KTSETTINGS::setMPGPath",
                                             "KTSETTINGS::setShaderPath",
                                             "KTSETTINGS::setTexturePath",
                                             "KTSETTINGS::setTitle",
                                             "KTSHADER::setName",
                                             "KTSHADER::setPath",
                                             "KTTEXTFIELD::manageKey",
                                             "KTTEXTURE::create",
                                             "KTTEXTURE::garbageCollect",
                                             "KTTEXTURE::load",
                                             "KTTEXTURE::modify",
                                             "KTTEXTURE::render",
                                             "KTTEXTURE::setPath",
                                             "KTTEXTURE::update",
                                             "KTVIDEO::load",
                                             "KTVIDEO::setMPGPath",
                                             "KTVIDEO::update",
                                             "KTVSCROLLBAR::KTVSCROLLBAR",
                                             "KTWINDOW::KTWINDOW",
                                             "KTWINDOW::format",
                                             "KTWINDOW::setCaption",
                                             "KTWINDOW::write",
                                             "KT_glGetFloatv",
                                             "KT_glLightModelfv",
                                             "KT_glLightfv",
                                             "KT_glLoadMatrixf",
                                             "KT_glMaterialfv",
                                             "KT_glMultMatrixf",
                                             "KT_glPopMatrix",
                                             "KT_glPushMatrix",
                                             "R3XVECTOR2D::operator[]",
                                             "R3XVECTOR3D::operator[]",
                                             "R3XVECTOR4D::operator[]",
                                             "releaseId",
                                             "vnfAdjournTimer",
                                             "vnfCloseParser",
                                             "vnfFreeTimer",
                                             "vnfGetTimerFactor",
                                             "vnfGetTimerFps",
                                             "vnfLog",
                                             "vnfMalloc",
                                             "vnfNewId",
                                             "vnfNewTimer",
                                             "vnfOpenLog",
                                             "vnfOpenParser",
                                             "vnfParseInt",
                                             "vnfParseString",
                                             "vnfReadLine",
                                             "vnfRemoveComments"};

// First the sentences of the codes, by number; see Sentence::addPattern. Then texts for field, found and
// expected, of less than 96 characters. Some are patterns of printf.
constexpr unsigned int kPlace = 6, kPlaceInFile = 7;  // what stands before the sentence of the code
constexpr const char *const kFaultTextList[] = {
    "", "`$f` is null", "`$f` is $g[e, expected $e]", "$g", "$f[e, $e at most]: full", "out of memory",
    "[C$C: ][Lline $L: ][Bbyte $B: ]",
    "[C$C: ]$i[L, line $L][B, byte $B][h (needed by $h[M, line $M]][h)]: ", "", "",
    "the file name is empty or too long", "the file does not exist",
    "the file cannot be opened: no permission, or it is locked", "not a regular file", "the file is empty",
    "the file is too large[e: $e at most]", "the file cannot be read to its end",
    "the file cannot be written", "", "", "[f$f: ]$e[g (found $g)]",
    "`$g`: unknown $f[e; did you mean `$e`?]", "[f`$f`: ]$e is missing", "`$f`: found `$g`[e, expected $e]",
    "`$g` is there again: the first one counts", "`$g`: the line cannot be read[e, expected $e]",
    "$f: $g[e, $e]", "", "", "", "no display[g: $g]", "the step `$f` of start-up failed[g: $g]",
    // The others.
    "%ld bytes", "%ld to %ld", "%u", "0 or 1", "0 or more", "0 to %ld", "1 to %ld", "3 to 6", "GL state",
    "SDL", "SDL_SetVideoMode", "`=`", "a blend factor of that side", "a fault handler is running",
    "a key, `=` and a value", "a log is open already", "a number", "a text between two quotes",
    "a text without blanks: they are lost", "a whole number", "ambient", "at most 255 characters",
    "attribute", "attribute `%s`", "attribute of `%s`", "auxId", "bits a pixel", "bone", "bone count",
    "bone index out of range", "bone indices", "bone name", "bone of mesh `%s`", "bpp", "buffer", "c",
    "children", "colour", "count", "cursor", "cutOff", "data", "destination", "diffuse", "direction",
    "document", "does not end", "dx", "dy", "eglChooseConfig", "eglCreateContext", "eglCreateWindowSurface",
    "eglInitialize", "eglMakeCurrent", "element", "element of `%s`", "emission", "emitters", "end of text",
    "end tag", "ends before its 18 bytes", "ends early or is too long", "ends in a slash without its bracket",
    "face count", "face normals", "faces", "fileName", "filename", "first", "font", "fonts", "format",
    "frame", "frame count", "glyphs", "has a quote that is not closed", "has more than %ld attributes",
    "has no name", "has no name, or an attribute twice", "has no pixels that are read", "header", "height",
    "hidden", "holds a zero byte", "holds no markup", "i", "id", "identifiers", "index", "influence count",
    "is empty or cannot be read", "is larger than %ld MiB", "is no XML", "is no name with a quoted value",
    "is not closed, or its contents are wrong", "is not that of the element it ends",
    "its pictures cannot be shown in RGB", "key", "keyframes", "kind", "last", "level", "lightType", "line",
    "longer than 255 characters", "m", "magic", "material", "material count", "material of mesh `%s`",
    "matrix stack", "maximum", "mesh", "meshes", "minimum", "more bones than a file of this size may list",
    "more than %ld", "more than %ld tags", "more than %u", "more than %u levels",
    "more than the rest of the file can hold", "name", "neither 0 nor one for each vertex",
    "neither 24 nor 32", "neither uncompressed nor run-length true-colour: no pixels are loaded",
    "nests deeper than %ld elements", "no configuration has that depth buffer",
    "no mode of %d x %d pixels and %d bits", "node", "nodes nest too deep", "none",
    "not a scene file of version 1.5a or 1.6a", "not an animation file of version 1.6a",
    "not everything could be moved", "not to be written", "numberOfParticles", "objects", "old face data",
    "old vertex data", "origin", "out", "outside 1 to %ld", "packet", "param1", "params", "parent", "parser",
    "particles of all emitters", "path", "pixels", "pixels of a packet", "position", "radius", "render list",
    "root", "root element", "rotation", "sequence header", "settings", "shader", "shaders", "shininess",
    "sizeX", "sizeY", "skinned meshes of a frame", "slot", "source", "specular", "tag", "target", "text",
    "texture", "texture coordinate count", "texture coordinates",
    "the GL context is lost; start the engine again", "the document has no element of this name",
    "the engine is active already", "the engine is not active", "the file ends before the image is full",
    "the file is too short for its image", "the font has no texture", "the foundation is not started",
    "the frame cannot be shown", "the identifier is free already", "the label has no font",
    "the library is built without video", "the matrix stack is empty", "the mesh has no bones",
    "the node has a parent already", "the node has no parent", "the node is its own parent",
    "the others are left out", "the parent does not list the node", "the parser holds no text",
    "the rest is not read", "the text field has no font", "the texture has no bitmap", "the timer is free",
    "the window has no font", "there is no GL context", "there was no bitmap: made without the pixels",
    "timer", "timers", "transparency", "tree", "type", "unknown node type", "unused", "value", "vertex count",
    "vertex index out of range", "vertex normals", "vertices", "weights", "which", "width",
    "window and GL context"};

template <class Item, std::size_t kSize>
constexpr std::size_t countOf(const Item (&)[kSize]) {
    return kSize;
}

// How many characters two texts begin with in common.
constexpr std::size_t sharedLength(const char *one, const char *other) {
    std::size_t length = 0;
    while (one[length] && one[length] == other[length]) ++length;
    return length;
}

// The place in a list of a text that is in it; of another one compiling fails.
constexpr std::size_t placeOf(const char *text, const char *const *list) {
    for (std::size_t i = 0;; ++i) {
        const std::size_t shared = sharedLength(list[i], text);
        if (list[i][shared] == text[shared]) return i;
    }
}

constexpr FaultCall faultCall(const char *name) { return static_cast<FaultCall>(placeOf(name, kFaultCalls)); }
constexpr FaultText faultText(const char *text) {
    return static_cast<FaultText>(placeOf(text, kFaultTextList));
}
// Set in the number of a call of which a fault is a warning.
constexpr unsigned char kWarned = 128;
static_assert(countOf(kFaultCalls) <= kWarned && countOf(kFaultTextList) <= 256, "a number is a byte");

// The name, which stays where it is.
const char *faultCallName(FaultCall call);

}  // namespace keltra

#endif
