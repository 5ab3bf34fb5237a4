#include <keltra/engine.h>
#include <keltra/foundation.h>

#include <tinyxml.h>

#include <cstring>

#include "formats/scene_contents.h"
#include "formats/xml_document.h"
#include "foundation/fault.h"
#include "foundation/file_bytes.h"
#include "gui/gui_file.h"
#include "scene/scene_build.h"

namespace {

bool isInterface(const char *path) { return std::strstr(path, ".xml") || std::strstr(path, ".XML"); }

}  // namespace

KTNODE *KELTRA::load(const char *fileName) {
    if (!fileName) return nullptr;
    const keltra::FilePath path(ktePath, fileName);
    if (!vnfFileExists(path.text)) return nullptr;
    if (isInterface(path.text)) return loadXML(path.text);
    const keltra::FileBytes file(path.text);
    keltra::SceneContents contents;
    keltra::SceneFault fault;
    if (!contents.read(file.data(), file.size(), fault)) return nullptr;
    KTNODE *root = keltra::buildScene(contents);
    if (root) recursiveInitBones(root, root);
    return root;
}

KTNODE *KELTRA::recursiveLoad(const char *buffer, long *cursor, KTNODE *parent) {
    return keltra::buildTrustedTree(buffer, cursor, parent);
}

bool KELTRA::recursiveInitBones(KTNODE *root, KTNODE *node) {
    if (!root || !node) return !keltra::failNull("KELTRA::recursiveInitBones", root ? "node" : "root");
    keltra::bindSkins(root, node);
    return true;
}

KTNODE *KELTRA::loadXML(const char *fileName) {
    TiXmlDocument document;
    if (!keltra::loadXmlDocument(fileName, document)) return nullptr;
    const TiXmlElement *description = keltra::guiRoot(document);
    return description ? keltra::buildInterface(*description, fileName) : nullptr;
}

int KELTRA::recursiveLoadXML(KTNODE *parent, const TiXmlNode *node) {
    keltra::buildWidgets(parent, node);
    return 0;
}
