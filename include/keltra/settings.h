// SPDX-License-Identifier: Zlib
#ifndef KELTRA_SETTINGS_H
#define KELTRA_SETTINGS_H

#include <keltra/export.h>

/** Everything the engine needs to know before it opens its window. An application fills a KTSETTINGS, by
 * setters or from a settings file, and hands it to `KELTRA::init`. The values of the running engine are the
 * static members; those of one settings object are in its `record`. */
class KT_API KTSETTINGS {
   public:
    /** The values of one settings object. */
    struct RECORD {
        char title[256];
        int windowX, windowY;  ///< pixels
        int colorDepth;        ///< bits a pixel
        int zetaDepth;         ///< bits of the depth buffer
        int stencilDepth;      ///< stored only, as are the title, fullScreen, resizable and mpgPath
        bool fullScreen;
        bool resizable;
        bool landscape;  ///< the 2D pass and the projection are turned by 90 degrees
        bool CAVESplashScreen;
        int audioChannels, audioBuffers, audioElements;
        int renderingElements;  ///< capacity of the render list; 0 and more than 1024 mean 1024
        bool useShaders;
        int shadowMapSize;
        int FBOSizeX, FBOSizeY;
        int waterSize;
        bool forceFBO;
        char ktePath[256];  ///< directories are prefixes: a file name is appended as it is
        char ktaPath[256];
        char mpgPath[256];
        char texturePath[256];
        char shaderPath[256];
        char fontPath[256];
    };
    RECORD record;

    /** All defaults: 240 x 320 pixels, 16 bits, full screen, "Keltra 3D Graphics Engine for PDA v1.6.6a". */
    KTSETTINGS();
    /** Sets all defaults again. */
    void constructor();

    /** Reads the keys of a settings file over the present values. False for null, a file that cannot be
     * opened, one of 2 GiB or more, and when out of memory; true whether or not keys were found. */
    bool load(const char *path);
    /** True when SDL offers a video mode of this window size and colour depth. False while SDL's video
     * subsystem is off. */
    bool isOk();

    /** Text longer than 255 characters is cut; null stores the empty string. */
    void setTitle(const char *text);
    const char *getTitle() const { return record.title; }
    /** Size of the window in pixels, bits a pixel and of the depth buffer; the other values as in
     * `RECORD`. */
    void setWindowX(int pixels) { record.windowX = pixels; }
    int getWindowX() const { return record.windowX; }
    void setWindowY(int pixels) { record.windowY = pixels; }
    int getWindowY() const { return record.windowY; }
    void setColorDepth(int bits) { record.colorDepth = bits; }
    int getColorDepth() const { return record.colorDepth; }
    void setZetaDepth(int bits) { record.zetaDepth = bits; }
    int getZetaDepth() const { return record.zetaDepth; }
    void setStencilDepth(int bits) { record.stencilDepth = bits; }
    int getStencilDepth() const { return record.stencilDepth; }
    void setFullScreen(bool status) { record.fullScreen = status; }
    bool isFullScreen() const { return record.fullScreen; }
    void setResizable(bool status) { record.resizable = status; }
    bool isResizable() const { return record.resizable; }
    void setLandscape(bool status) { record.landscape = status; }
    bool isLandscape() const { return record.landscape; }
    void setCAVESplashScreen(bool status) { record.CAVESplashScreen = status; }
    bool isCAVESplashScreen() const { return record.CAVESplashScreen; }
    void setAudioChannels(int count) { record.audioChannels = count; }
    int getAudioChannels() const { return record.audioChannels; }
    void setAudioBuffers(int count) { record.audioBuffers = count; }
    int getAudioBuffers() const { return record.audioBuffers; }
    void setAudioElements(int count) { record.audioElements = count; }
    int getAudioElements() const { return record.audioElements; }
    void setRenderingElements(int count) { record.renderingElements = count; }
    int getRenderingElements() const { return record.renderingElements; }
    void setShaders(bool status) { record.useShaders = status; }
    bool getShaders() const { return record.useShaders; }
    void setShadowMapSize(int pixels) { record.shadowMapSize = pixels; }
    int getShadowMapSize() const { return record.shadowMapSize; }
    void setFBOSizeX(int pixels) { record.FBOSizeX = pixels; }
    int getFBOSizeX() const { return record.FBOSizeX; }
    void setFBOSizeY(int pixels) { record.FBOSizeY = pixels; }
    int getFBOSizeY() const { return record.FBOSizeY; }
    void setWaterSize(int pixels) { record.waterSize = pixels; }
    int getWaterSize() const { return record.waterSize; }
    void setForceFBO(bool status) { record.forceFBO = status; }
    bool getForceFBO() const { return record.forceFBO; }
    /** Prefixes of file names, cut at 255 characters; null stores the empty string. */
    void setKTEPath(const char *path);
    const char *getKTEPath() const { return record.ktePath; }
    void setKTAPath(const char *path);
    const char *getKTAPath() const { return record.ktaPath; }
    void setMPGPath(const char *path);
    const char *getMPGPath() const { return record.mpgPath; }
    void setTexturePath(const char *path);
    const char *getTexturePath() const { return record.texturePath; }
    void setShaderPath(const char *path);
    const char *getShaderPath() const { return record.shaderPath; }
    void setFontPath(const char *path);
    const char *getFontPath() const { return record.fontPath; }

    /** Opens the window and the GL context; called by `KELTRA::init`. A failure releases what it had created.
     */
    static bool init(KTSETTINGS *settings);
    /** Closes the GL context; false when not active. Called by `KELTRA::free`, which then shuts SDL down. */
    static bool free();
    /** Takes a new window size and sets viewport and projection for it (`KTOPENGL::resize`). */
    static bool resize(int x, int y, int width, int height);

    /** The values of the running engine. Depths are those that GL reports. Values that start-up does not take
     * over stay 0, whatever the settings object held. */
    static bool isActive() { return active; }
    static const char *getSDLTitle() { return title; }
    static int getSDLWindowX() { return windowX; }
    static int getSDLWindowY() { return windowY; }
    static int getSDLColorDepth() { return colorDepth; }
    static int getSDLZetaDepth() { return zetaDepth; }
    static int getSDLStencilDepth() { return stencilDepth; }
    static bool isSDLFullScreen() { return fullScreen; }
    static bool isSDLResizable() { return resizable; }
    static bool isSDLLandscape() { return landscape; }
    static bool getSDLShaders() { return useShaders; }
    static int getSDLShadowMapSize() { return shadowMapSize; }
    static int getSDLFBOSizeX() { return FBOSizeX; }
    static int getSDLFBOSizeY() { return FBOSizeY; }
    static int getSDLWaterSize() { return waterSize; }
    static bool getSDLForceFBO() { return forceFBO; }
    static void *getSDLWindow() { return window; }
    static int getVNAAudioChannels() { return audioChannels; }
    static int getVNAAudioBuffers() { return audioBuffers; }
    static int getVNAAudioElements() { return audioElements; }
    /** Switch the running engine's `useShaders`. */
    static void forceShadersOff() { useShaders = false; }
    static void forceShadersOn() { useShaders = true; }

    static bool active;
    static char title[256];
    static int windowX, windowY;
    static int colorDepth, zetaDepth, stencilDepth;
    static bool fullScreen, resizable, landscape, useShaders;
    static void *window;  ///< native window handle
    static void *glesDisplay, *glesSurface, *glesContext;
    static int shadowMapSize, FBOSizeX, FBOSizeY, waterSize;
    static bool forceFBO;
    static int renderingElements;
    static int audioChannels, audioBuffers, audioElements;

   private:
    static bool openWindow(const RECORD &record);
    static bool openContext(const RECORD &record);
    static void closeContext();
};

#endif
