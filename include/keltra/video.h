// SPDX-License-Identifier: Zlib
#ifndef KELTRA_VIDEO_H
#define KELTRA_VIDEO_H

#include <keltra/registered.h>
#include <keltra/video_stream.h>

class KTTEXTURE;
class KTVIDEO;
KT_LISTED_CLASS(KTVIDEO);

/** What `KTVIDEO::update` does, and what becomes of it at the end of the film. */
enum KT_VIDEO_STATUS {
    KT_VIDEO_STOPPED = 0,
    KT_VIDEO_PLAYING = 1,    ///< to the end, then stopped at the beginning
    KT_VIDEO_LOOPING = 2,    ///< from the beginning again at each end
    KT_VIDEO_REWINDING = 3,  ///< to the end, then stopped at the beginning
};

/** A video texture: a film, which is a file that holds nothing but an MPEG-1 video stream, is decoded piece
 * by piece into a texture. Make the texture first, RGB and at least as large as the picture; give it to the
 * video, load the film, `playLoop`, then call `update` once a frame, before `KELTRA::begin3D`.
 *
 * All videos are on one list, which owns those made with `new`. In an engine built without video every
 * `load` is false. */
class KT_API KTVIDEO : public KTREGISTERED<KTVIDEO>, public KTLISTED<KTVIDEO> {
   public:
    /** The largest picture that is decoded, in pixels in either direction: that of the largest texture. */
    static const unsigned int maxSize = 512;

    /** Stopped, without a film and a texture. */
    KTVIDEO();
    /** A copy shares the film that is open, and counts no use of the texture. */
    KTVIDEO(const KTVIDEO &other);
    KTVIDEO &operator=(const KTVIDEO &other);
    /** Does not close the film: its file and decoder stay open until the program ends. Call `load(nullptr)`
     * first. */
    ~KTVIDEO();

    /** Closes the film that is open, then opens the file video path + `filename`, stopped at its beginning.
     * False for null, which so closes a film; for names of 256 characters or more; when the file cannot be
     * opened; and without memory for a decoder. The contents are not looked at. */
    bool load(const char *filename);
    /** Decodes on by `steps` steps of the decoder. A step is less than a picture: 4,096 bytes were read, a
     * header was found, a picture began or is complete. Each complete picture is written to the texture's
     * upper image level; without a texture decoding goes on all the same. False while stopped, without a
     * film, when the film cannot be opened again at its end, and when memory runs out, which closes it. */
    bool update(unsigned int steps);

    /** Set the status; `load` sets it to stopped. */
    void play() { status = KT_VIDEO_PLAYING; }
    void stop() { status = KT_VIDEO_STOPPED; }
    void playLoop() { status = KT_VIDEO_LOOPING; }
    /** Plays on; the film goes back to its beginning, and stops, only when its end is reached. */
    void rewind() { status = KT_VIDEO_REWINDING; }
    KT_VIDEO_STATUS getStatus() const { return status; }

    /** Texture to play into, whose count of uses follows; null for none. Pictures are written only while it
     * is resident, RGB, and as large as they are in both directions; they take its first rows and columns. */
    void setTexture(KTTEXTURE *target);
    KTTEXTURE *getTexture() const { return texture; }

    /** First video of that file name, as it was given to `load`, or of that identifier; null when there is
     * none. */
    static KTVIDEO *findByFilename(const char *filename);
    static KTVIDEO *findById(unsigned int id);
    static unsigned int getNumberOfVideos();
    static KTVIDEO *getFirst() { return firstVideo; }
    /** Prefix of file names, up to 255 characters; null empties it. */
    static void setMPGPath(const char *path);
    static char *getMPGPath() { return mpgPath; }
    /** Destroys every video, open films staying open; false when there is none. */
    static bool cleanUp();

    /** Identifier, 1 to 65,535; 0 when all were taken. */
    unsigned int getId() const { return id; }
    const char *getFilename() const { return filename; }
    KTVIDEO *getNext() const { return isRegistered() ? registeredNext() : next; }
    KTVIDEO *getPrevious() const { return isRegistered() ? registeredPrevious() : previous; }

    unsigned int id;
    char filename[256];
    KTTEXTURE *texture;
    KTVIDEO *previous, *next;
    KT_VIDEO_STATUS status;
    KTVIDEOSTREAM *stream;  ///< shared with copies; null when there was no memory for it

    static KTVIDEO *firstVideo;
    static char mpgPath[256];

   private:
    void release();
    static void forgetTexture(const keltra::Gone<KTTEXTURE> &gone);
    void copyFields(const KTVIDEO &other);
    bool startAgain();
    void show(unsigned int width, unsigned int height, const unsigned char *pixels);

    static const keltra::OnGone<KTTEXTURE> onTextureGone;
    static KTLISTED<KTVIDEO> *allVideos;
    KTUSE textureUse;
};

#endif
