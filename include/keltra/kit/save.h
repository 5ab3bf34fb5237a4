// SPDX-License-Identifier: Zlib
#ifndef KELTRA_KIT_SAVE_H
#define KELTRA_KIT_SAVE_H

/** @file
 *
 * Saved games and settings: named values in a small file with a version and a checksum. Writing replaces the
 * file as a whole: a battery that is pulled meanwhile leaves the old one or the new one. */

#include <keltra/kit/export.h>

#include <cstdint>

/** Named values, in memory until they are written: 4,096 bytes with their names. Names have 1 to 31
 * characters. Setting a value again replaces it, of another kind too. Nothing is allocated. */
class KTKIT_API KTSAVE {
   public:
    static const unsigned int capacity = 4096;  ///< bytes; a value takes its size, its name's length and 4

    /** Empty; `version` is the application's own, of what it writes. */
    explicit KTSAVE(unsigned int version = 1);

    /** False, with a fault and nothing changed, for a name that is null, empty or too long, for a null value,
     * and when there is no room. */
    bool setInt(const char *name, int value);
    bool setFloat(const char *name, float value);
    bool setText(const char *name, const char *value);
    bool setBytes(const char *name, const void *bytes, unsigned int size);
    /** The value of that name; `otherwise` when there is none, or one of another kind. A text is good until
     * the next change. */
    int getInt(const char *name, int otherwise = 0) const;
    float getFloat(const char *name, float otherwise = 0.0f) const;
    const char *getText(const char *name, const char *otherwise = "") const;
    /** Copies at most `room` bytes and returns how many there are; 0 when there are none. */
    unsigned int getBytes(const char *name, void *bytes, unsigned int room) const;
    bool has(const char *name) const;
    /** False when there is none. */
    bool remove(const char *name);
    void clear() { used = 0; }
    unsigned int getSize() const { return used; }

    /** Writes all values to the file `path`: into `path`.new, which is brought to the disk and then takes the
     * place of the file. False, with a fault, when that fails: the file is what it was. It may take a tenth
     * of a second: not to be called in each frame. */
    bool write(const char *path) const;
    /** Takes the values of a file in place of those here. False, with a fault and nothing changed, for a file
     * that cannot be read, one that is damaged or none of this kind, and one of a higher version. To ask for
     * a file without a fault: `vnfFileExists`. */
    bool read(const char *path);
    /** The application's version of the file that was read last; at first that of the constructor. */
    unsigned int getReadVersion() const { return readVersion; }

   private:
    unsigned int find(const char *name) const;
    const unsigned char *valueOf(const char *name, unsigned int kind, unsigned int *size) const;
    bool set(const char *call, const char *name, unsigned int kind, const void *value, unsigned int size);

    unsigned char values[capacity];  // kind, length of the name, size (2 bytes), the name, the value
    unsigned int used, version, readVersion;
};

#endif
