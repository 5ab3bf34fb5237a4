// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_H
#define KELTRA_FOUNDATION_H

/** @file
 *
 * The foundation: run log, counted memory, frame timers, object identifiers and the key-value text parser.
 * Loading the library starts it without a log file; unloading it ends it and closes a log that is still
 * open. The state is process-wide and unguarded: everything is called from the one rendering thread.
 * Failures are reported by results and, where a call says so, by one line in the run log. */

#include <keltra/export.h>

#include <cstdint>

#if defined(__GNUC__)
#define KELTRA_PRINTF_LIKE __attribute__((format(printf, 1, 2)))
#else
#define KELTRA_PRINTF_LIKE
#endif

// --- run log

/**
 * Starts the foundation, and a log file when `path` is given.
 *
 * Frees all timers, takes a new identifier table (identifiers drawn before are forgotten) and restarts the
 * memory peak. A path that contains ".html" switches the log to HTML for the rest of the process, whatever
 * later logs are called. Null opens no file. Returns false, changing nothing, when a log is already open or
 * `path` cannot be written.
 */
KT_API bool vnfOpenLog(const char *path);

/** Releases the identifier table and, when a log is open, writes the memory summary and closes it. Returns
 * true. */
KT_API bool vnfCloseLog();

/**
 * Writes a printf-style text to the log and flushes it. Returns false when no log is open; the text is then
 * dropped. Text is cut at 1,023 characters, in HTML counted after translation.
 */
KT_API bool vnfLog(const char *format, ...) KELTRA_PRINTF_LIKE;

/** Switches printing what `vnfLog` writes to standard output as well; off at start. */
KT_API void vnfSetLogEcho(bool echo);

// --- counted memory

/** Allocates `size` bytes, not cleared. Null when out of memory; the counters are raised all the same. */
KT_API void *vnfMalloc(unsigned int size);

/** Releases a block of `vnfMalloc`. Null is counted as a release like any other, and frees nothing. A buffer
 * that copies of an object share stays, uncounted, until the last of them has released it. */
KT_API void vnfFree(void *block);

// --- files

/** Size of a file in bytes; -1 for null, a file that cannot be opened or one whose size does not fit an int.
 */
KT_API int vnfFileSize(const char *path);

/** True when the file can be opened for reading; false for null, and for folders, devices and pipes. */
KT_API bool vnfFileExists(const char *path);

// --- timers: a pool of eight, addressed by index 0 to 7

/**
 * Takes the free timer of the lowest index and starts it. `base` is the rate at which the factor is 1;
 * with 1.0 the factor is in seconds. A base of 0.0 returns an index that still counts as free. Returns -1
 * when all are taken.
 */
KT_API int vnfNewTimer(float base);

/** Frees a timer. Returns false for a bad index or a free timer. */
KT_API bool vnfFreeTimer(int timer);

/** Measures the time since the last call, or since `vnfNewTimer`. Returns false for a bad index or a free
 * timer. */
KT_API bool vnfAdjournTimer(int timer);

/** Length of the last frame in seconds times the timer's base; -1.0 for a bad index or a free timer. */
KT_API float vnfGetTimerFactor(int timer);

/** Frames per second of the last frame, whatever the base; -1.0 for a bad index or a free timer. */
KT_API float vnfGetTimerFps(int timer);

/** Tells the time in nanoseconds since a moment of its own. It may stand still; it must not run backwards. */
typedef std::int64_t (*vnfClock)(void *user);

/**
 * Sets the clock that all timers read, and what it is given as `user`; null stands for the system's, as at
 * start. Timers in use go on from the new clock's present time: what passed since their last measurement is
 * not measured. A frame in which a clock that was set stands still has the factor 0 and 0 frames per second.
 * The clock is called by `vnfNewTimer`, `vnfAdjournTimer` and this call, and must not call them.
 */
KT_API void vnfSetClock(vnfClock clock, void *user);

// --- identifiers

/** Draws the lowest free identifier, 1 to 65,535. Returns 0 when all are used or the foundation is not
 * started. */
KT_API unsigned int vnfNewId();

/** Gives an identifier back. Returns false for 0, for a value above 65,535 and for one that is free already.
 */
KT_API bool releaseId(unsigned int id);

// --- text parser

/** A text file in memory, owned by the caller; the fields are set by `vnfOpenParser`. */
struct vnfParser {
    /** The file's contents and one spare byte that is never written; not zero-terminated. */
    char *buffer;
    std::int32_t size;      ///< Length of the contents in bytes.
    std::int32_t position;  ///< Where `vnfReadLine` goes on.
};

/**
 * Reads a whole file of 1 byte to 2 GiB into `parser`. On failure the record stays as it was, one line is
 * logged and false is returned. A record that holds a text is closed first by the caller; it is not released
 * here.
 */
KT_API bool vnfOpenParser(vnfParser *parser, const char *path);

/** Releases the text and zeroes the record. Returns false for null and for a record without a text. */
KT_API bool vnfCloseParser(vnfParser *parser);

/** Blanks out everything from each `mark` to the end of its line. True when at least one mark was found. */
KT_API bool vnfRemoveComments(vnfParser *parser, char mark);

/**
 * Copies the next line to `line` (256 characters; the rest of a longer line is skipped) and advances the
 * position. A carriage return before a line feed stays in the line; a text without line feeds is split at
 * carriage returns, and such a line loses its last character. Returns false at the end of the text.
 */
KT_API bool vnfReadLine(vnfParser *parser, char *line);

/**
 * Finds the first line that contains `key` once all blanks and tabs are removed, skips one character after
 * the key and reads an integer (0 when there are no digits, limited to the range of int). False, `value`
 * unchanged, when no line contains the key. The position of the parser plays no part.
 */
KT_API bool vnfParseInt(vnfParser *parser, const char *key, int *value);

/**
 * Like `vnfParseInt`, for the text between the first and the last double quote; blanks and tabs are lost.
 * `value` holds 256 characters. With fewer than two quotes it receives the raw rest of the line and the
 * result is false.
 */
KT_API bool vnfParseString(vnfParser *parser, const char *key, char *value);

#undef KELTRA_PRINTF_LIKE

#endif
