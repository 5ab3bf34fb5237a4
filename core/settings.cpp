// SPDX-License-Identifier: Zlib
#include <keltra/settings.h>

#include "foundation/argument.h"

bool KTSETTINGS::active = false;
char KTSETTINGS::title[256];
int KTSETTINGS::windowX = 0;
int KTSETTINGS::windowY = 0;
int KTSETTINGS::colorDepth = 0;
int KTSETTINGS::zetaDepth = 0;
int KTSETTINGS::stencilDepth = 0;
bool KTSETTINGS::fullScreen = false;
bool KTSETTINGS::resizable = false;
bool KTSETTINGS::landscape = false;
bool KTSETTINGS::useShaders = false;
void *KTSETTINGS::window = nullptr;
void *KTSETTINGS::glesDisplay = nullptr;
void *KTSETTINGS::glesSurface = nullptr;
void *KTSETTINGS::glesContext = nullptr;
int KTSETTINGS::shadowMapSize = 0;
int KTSETTINGS::FBOSizeX = 0;
int KTSETTINGS::FBOSizeY = 0;
int KTSETTINGS::waterSize = 0;
bool KTSETTINGS::forceFBO = false;
int KTSETTINGS::renderingElements = 0;
int KTSETTINGS::audioChannels = 0;
int KTSETTINGS::audioBuffers = 0;
int KTSETTINGS::audioElements = 0;

using keltra::takeText;

KTSETTINGS::KTSETTINGS() { constructor(); }

void KTSETTINGS::constructor() {
    record = RECORD();
    setTitle("Keltra 3D Graphics Engine for PDA v1.6.6a");
    record.windowX = 240;
    record.windowY = 320;
    record.colorDepth = 16;
    record.zetaDepth = 16;
    record.fullScreen = true;
    record.audioChannels = 16;
    record.audioBuffers = 32;
    record.audioElements = 128;
    record.shadowMapSize = 1024;
    record.FBOSizeX = 1024;
    record.FBOSizeY = 768;
    record.waterSize = 256;
}

void KTSETTINGS::setTitle(const char *text) {
    takeText(record.title, text, KT_CALL("KTSETTINGS::setTitle"), KT_TEXT("text"));
}
void KTSETTINGS::setKTEPath(const char *path) {
    takeText(record.ktePath, path, KT_CALL("KTSETTINGS::setKTEPath"));
}
void KTSETTINGS::setKTAPath(const char *path) {
    takeText(record.ktaPath, path, KT_CALL("KTSETTINGS::setKTAPath"));
}
void KTSETTINGS::setMPGPath(const char *path) {
    takeText(record.mpgPath, path, KT_CALL("KTSETTINGS::setMPGPath"));
}
void KTSETTINGS::setTexturePath(const char *path) {
    takeText(record.texturePath, path, KT_CALL("KTSETTINGS::setTexturePath"));
}
void KTSETTINGS::setShaderPath(const char *path) {
    takeText(record.shaderPath, path, KT_CALL("KTSETTINGS::setShaderPath"));
}
void KTSETTINGS::setFontPath(const char *path) {
    takeText(record.fontPath, path, KT_CALL("KTSETTINGS::setFontPath"));
}
