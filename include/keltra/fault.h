// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FAULT_H
#define KELTRA_FAULT_H

#include <keltra/export.h>

/** A warning: the call went on without it. An error: the call failed. */
enum KT_FAULT_SEVERITY : unsigned int { KT_FAULT_WARNING = 0, KT_FAULT_ERROR = 1 };

/** What went wrong. The numbers stay as they are from version to version. */
enum KT_FAULT_CODE : unsigned int {
    KT_FAULT_NONE = 0,
    // Of a call.
    KT_FAULT_NULL = 1,      ///< the argument `field` is null
    KT_FAULT_ARGUMENT = 2,  ///< the argument `field` is out of range
    KT_FAULT_STATE = 3,     ///< the call is not possible now
    KT_FAULT_FULL = 4,      ///< `field` is full
    KT_FAULT_OUT_OF_MEMORY = 5,
    // Of a file as a whole.
    KT_FAULT_FILE_NAME = 10,     ///< the name is too long
    KT_FAULT_FILE_MISSING = 11,  ///< there is no such file
    KT_FAULT_FILE_ACCESS = 12,   ///< the file exists and cannot be opened
    KT_FAULT_FILE_KIND = 13,     ///< a folder or a device, not a regular file
    KT_FAULT_FILE_EMPTY = 14,
    KT_FAULT_FILE_SIZE = 15,   ///< larger than files of its kind may be
    KT_FAULT_FILE_READ = 16,   ///< it could be opened and not be read
    KT_FAULT_FILE_WRITE = 17,  ///< it cannot be created or not be written whole
    // Of a file's contents.
    KT_FAULT_DATA = 20,      ///< `field` is not as files have it: the file is refused
    KT_FAULT_UNKNOWN = 21,   ///< the name `found` is not known; `expected` is the nearest known one, if any
    KT_FAULT_MISSING = 22,   ///< something is missing: `expected`
    KT_FAULT_VALUE = 23,     ///< the value `found` of `field` was not read as it stands there, or not at all
    KT_FAULT_REPEATED = 24,  ///< `found` stands there again; the first one counts
    KT_FAULT_LINE = 25,      ///< the line `found` cannot be read
    KT_FAULT_LIMIT = 26,     ///< more of `field` than the engine takes
    // Of start-up.
    KT_FAULT_DISPLAY = 30,  ///< there is no display, or it has not the mode that was asked for
    KT_FAULT_START = 31     ///< the step `field` of start-up failed
};

/** One fault. Texts are zero-terminated, and empty where there is nothing to say; longer ones are cut. */
struct KTFAULT {
    KT_FAULT_SEVERITY severity;
    KT_FAULT_CODE code;
    const char *call;    ///< the outermost call that the application made, as "KELTRA::load"; a literal
    long byte;           ///< where in the file, counted from 0; -1 when that is not known
    unsigned int line;   ///< the same for text, counted from 1; 0 when that is not known
    char file[256];      ///< the file that is wrong, as it was opened; of a longer path the end
    char neededBy[256];  ///< the file that names it, when that is another one
    unsigned int neededByLine;  ///< the line there; 0 when that is not known
    char field[96];             ///< argument, record field, element, attribute or key
    char found[96];             ///< what was found
    char expected[96];  ///< what would have been right; of KT_FAULT_DATA the rule that is broken, such
                        ///< as "more than 128"
};

/** Receives each fault, which is good until the handler returns. It may call the engine; faults that it makes
 * itself are kept as the last one and not handed to it. Objects that exist must not be destroyed in it, and
 * the engine must not be stopped, since the call that made the fault goes on. */
typedef void (*KTFAULTHANDLER)(const KTFAULT *fault, void *user);

/** Why a call failed, and what a load went on without. Each call that fails makes one fault of severity
 * error; each thing that a load leaves out (a texture, an unknown attribute, a value that was cut) makes one
 * warning. A call that the engine makes within another has its faults under the name of the outer one. A
 * search that finds nothing is an answer and no fault.
 *
 * Nothing is printed and nothing is allocated; the run log receives none of this. The last fault can be
 * asked for, and a handler receives each one. With KELTRA_FAULTS=1 in the environment each is also printed
 * to standard error; the variable is read once, at the first fault. */
class KT_API KTFAULTS {
   public:
    /** The last fault since the start or `clear`; null when there was none. It is overwritten by the next. */
    static const KTFAULT *getLast();
    /** Number of faults since the start or `clear`. */
    static unsigned int getNumberOfFaults();
    /** Forgets the last fault and counts from 0 again. */
    static void clear();

    /** Sets the handler, and what it is given as `user`; null for none. */
    static void setHandler(KTFAULTHANDLER handler, void *user);

    /** Makes a fault as the engine does, for libraries over it and applications: it becomes the last one, is
     * counted, and is handed to the handler and printed as others are. `call` is a literal, and texts are
     * terminated. Null does nothing. */
    static void report(const KTFAULT *fault);

    /** Writes the fault as one English sentence into `text`, cut at `size - 1` characters and terminated, and
     * returns its length before the cut. A null fault gives an empty text; without a buffer (`size` 0) only
     * the length is returned. */
    static unsigned int format(const KTFAULT *fault, char *text, unsigned int size);
};

#endif
