// SPDX-License-Identifier: Zlib
#include <keltra/engine.h>
#include <keltra/foundation.h>

#include "formats/gui.h"
#include "formats/scene_contents.h"
#include "formats/xml_document.h"
#include "foundation/fault.h"
#include "foundation/file_bytes.h"
#include "gui/gui_file.h"
#include "scene/scene_build.h"

#include <tinyxml.h>

#include <cstring>

namespace {

bool isInterface(const char *path) { return std::strstr(path, ".xml") || std::strstr(path, ".XML"); }

[[gnu::noinline]] KTNODE *loadScene(const char *path, keltra::FaultScope &scope) {
    const keltra::FileBytes file(path, keltra::kLargestFile, &scope);
    if (!file.data()) return nullptr;
    keltra::SceneContents contents;
    keltra::SceneFault fault;
    if (!contents.read(file.data(), file.size(), fault)) return keltra::refuse(scope, fault), nullptr;
    KTNODE *root = keltra::buildScene(contents);
    if (!root) return scope.fail(KT_FAULT_OUT_OF_MEMORY), nullptr;
    KELTRA::recursiveInitBones(root, root);
    return root;
}

}  // namespace

KTNODE *KELTRA::load(const char *fileName) {
    const keltra::FilePath path(ktePath, fileName);
    keltra::FaultScope scope(KT_CALL("KELTRA::load"), path.text);
    if (!fileName) return scope.failNull(KT_TEXT("fileName")), nullptr;
    if (!vnfFileExists(path.text)) return scope.failFile(), nullptr;
    if (isInterface(path.text)) return loadXML(path.text);
    return loadScene(path.text, scope);
}

KTNODE *KELTRA::recursiveLoad(const char *buffer, long *cursor, KTNODE *parent) {
    return keltra::buildTrustedTree(buffer, cursor, parent);
}

bool KELTRA::recursiveInitBones(KTNODE *root, KTNODE *node) {
    if (!root || !node)
        return !keltra::failNull(KT_CALL("KELTRA::recursiveInitBones"),
                                 root ? KT_TEXT("node") : KT_TEXT("root"));
    keltra::bindSkins(root, node);
    return true;
}

KTNODE *KELTRA::loadXML(const char *fileName) {
    keltra::FaultScope scope(KT_CALL("KELTRA::loadXML"), fileName);
    if (!fileName) return scope.failNull(KT_TEXT("fileName")), nullptr;
    TiXmlDocument document;
    if (!keltra::loadXmlDocument(fileName, document, &scope)) return nullptr;
    const TiXmlElement *description = keltra::guiRoot(document);
    if (!description) return keltra::refuse(scope, keltra::guiRootMissing(), nullptr, 0), nullptr;
    return keltra::buildInterface(*description, fileName, scope);
}

int KELTRA::recursiveLoadXML(KTNODE *parent, const TiXmlNode *node) {
    keltra::buildWidgets(parent, node);
    return 0;
}
