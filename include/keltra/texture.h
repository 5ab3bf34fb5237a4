// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TEXTURE_H
#define KELTRA_TEXTURE_H

#include <keltra/registered.h>

#include <cstdint>

class KTEMITTER;
class KTTEXTURE;
class KTVIDEO;
KT_LISTED_CLASS(KTTEXTURE);

/** An RGB or RGBA bitmap from a Targa file, or a dynamic one made by the application. A texture is read from
 * disk by `load`, uploaded to GL when first rendered, and evicted when the video memory budget runs short.
 *
 * All textures are on one list, which owns those made with `new`. A use is counted by each object that keeps
 * a pointer (`incReferences`); textures without a counted use are destroyed by garbage collection. */
class KT_API KTTEXTURE : public KTREGISTERED<KTTEXTURE> {
   public:
    static const unsigned int channels = 16;
    static const unsigned int maxSize = 512;  ///< pixels in either direction

    /** Empty: without pixels, nearest, mipmapped, repeating. */
    KTTEXTURE();
    /** A copy shares the bitmap and does not own the GL texture. */
    KTTEXTURE(const KTTEXTURE &other);
    KTTEXTURE &operator=(const KTTEXTURE &other);
    ~KTTEXTURE();

    /** Reads the Targa file texture path + `filename` into the bitmap; nothing is uploaded. "[dynamic]" is
     * true and does nothing. False for null, an unreadable or truncated file, a depth other than 24 or 32, a
     * size of 0 or above 512; the texture then keeps what it had. A file of another Targa kind gives true and
     * a texture without pixels. */
    bool load(const char *filename);
    /** Makes a dynamic texture of at most 512 x 512 pixels and uploads it; `bpp` 3 (RGB), 4 (RGBA), 5, 6 (no
     * pixels). The contents are black. False for other sizes and formats. */
    bool create(unsigned int sizeX, unsigned int sizeY, unsigned int bpp);
    /** Replaces the uploaded image by `sizeX * sizeY * bpp` bytes, bottom row first; mipmaps stay as they
     * were. With `keepCopy` the bitmap is replaced too; when there was none it is only made, and the call
     * returns false. False for null. Nothing is uploaded while GL holds no image of this size and format. */
    bool modify(const char *pixels, bool keepCopy);
    /** Makes the GL texture anew from the bitmap; false when there is none, and without a GL context. With
     * mipmaps the bitmap is used as working space and no longer holds the full image afterwards. */
    bool update();
    /** Deletes the GL texture, and the bitmap when asked. */
    bool unload(bool freeBitmap);
    /** Makes an unloaded texture resident again; false when it is resident. */
    bool reload();
    /** Sets filtering, always true; a resident texture is uploaded anew at once. At first: nearest,
     * mipmapped, repeating. */
    bool setFilter(bool trilinear, bool mipmapped, bool clamped);
    /** Binds the texture, loading and uploading it when needed. `data` points to an unsigned 32-bit channel
     * number, or is null for channel 0. False for a channel of 16 or more. A texture whose file cannot be
     * read is bound as name 0 and tried again each time. */
    bool render(void *data);

    /** Switch texturing of one channel; 16 or more stands for all channels. */
    static bool texturingOn(unsigned int channel);
    static bool texturingOff(unsigned int channel);
    /** Evicts textures, the most recently rendered first, until less than `limit` bytes of video memory are
     * in use, and destroys every texture without a counted use. False when there are no textures. */
    static bool garbageCollect(unsigned long limit);
    /** Destroys every texture; false when there is none. */
    static bool cleanUp();
    /** First texture of that file name, as it was given to `load`, or of that identifier; null when there is
     * none. */
    static KTTEXTURE *findByFilename(const char *filename);
    static KTTEXTURE *findById(unsigned int id);
    static unsigned int getNumberOfTextures();
    static KTTEXTURE *getFirst() { return firstTexture; }
    /** Bytes charged for bitmaps loaded from files: four a pixel when loaded. Uploads with mipmaps double the
     * charge that is taken off later, so the sum may wrap around. */
    static unsigned long getUsedMemory() { return usedMemory; }
    /** Prefix of file names, up to 255 characters; null empties it. */
    static void setPath(const char *path);
    static char *getPath() { return texturePath; }

    /** `sizeX * sizeY * bpp` bytes, bottom row first, R, G, B(, A); null when not loaded. Owned by the
     * texture. */
    unsigned char *getBitmap() const { return bitmap; }
    unsigned int getSizeX() const { return sizeX; }
    unsigned int getSizeY() const { return sizeY; }
    unsigned int getBpp() const { return bpp; }
    unsigned int getId() const { return id; }
    const char *getFilename() const { return filename; }
    /** `KELTRA::timeStamp` of the last render. */
    int getTimeStamp() const { return timeStamp; }
    int getReferences() const { return references; }
    void incReferences() {
        ++references;
        markHeld();
    }
    void decReferences() { --references; }
    /** True while the texture is resident in GL. */
    bool isLoaded() const { return glId != 0; }
    unsigned int getGLId() const { return glId; }
    bool isTrilinear() const { return trilinear; }
    bool isMipmapped() const { return mipmapped; }
    bool isClamped() const { return clamped; }
    /** Stored only. */
    void setCubeType(unsigned int type) { cubeType = type; }
    KTTEXTURE *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTTEXTURE *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }

    unsigned int id;
    char filename[256];
    std::int32_t timeStamp;
    std::int32_t references;
    unsigned char *bitmap;
    unsigned int sizeX, sizeY;
    unsigned int memory;  ///< bytes charged
    unsigned int bpp;     ///< 3 RGB, 4 RGBA, 5 and 6 without pixels
    unsigned int cubeType;
    unsigned int glId;
    bool trilinear;
    bool mipmapped;
    bool clamped;
    bool mipmapResident;
    KTTEXTURE *previous, *next;

    static KTTEXTURE *firstTexture;
    static unsigned long usedMemory;
    static char texturePath[256];
    static KTTEXTURE *channelCache[channels];
    static bool channelActive[channels];

   private:
    friend class KTEMITTER;
    friend class KTVIDEO;
    void release();
    static void destroy(KTTEXTURE &texture) { KTREGISTERED::destroy(texture, &KTTEXTURE::release); }
    void copyFields(const KTTEXTURE &other);
    void releaseBitmap();
    bool deleteGLTexture();
    void forgetDeletedGLTexture();
    bool loadAgain();
    bool takesPicture(unsigned int width, unsigned int height);
    void setParameters() const;
    bool upload();
    void uploadImage();

    bool ownsBitmap;  // this object set it: its bytes are charged when the object has them charged
    bool ownsGLTexture;
    bool toldMissing;                                // a fault says that its file cannot be read
    unsigned int deletionsSeen;                      // a copy's GL texture is trusted until any is deleted
    unsigned int uploadedX, uploadedY, uploadedBpp;  // level 0 in GL; 0 for none
    static unsigned int deletions;
    static KTTEXTURE *updating;  // kept by the garbage collection that its own upload causes
};

#endif
