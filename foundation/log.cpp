// SPDX-License-Identifier: Zlib
#include "foundation/log.h"

#include <keltra/foundation.h>

#include "foundation/fault.h"
#include "foundation/memory.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>

namespace {

constexpr char kLibraryName[] = "Vontal foundation 0.4";
constexpr char kTextRule[] = "-------------------------------------------------------\n";
constexpr char kHtmlRule[] = "<HR ALIGN=CENTER WIDTH=\"100%\" SIZE=\"2\">";
constexpr std::size_t kTextSize = 1024;
constexpr double kMebibyte = 1048576.0;

// Constant-initialised: a static object of another source may log before the load step below has run.
std::FILE *logFile = nullptr;
bool html = false;
bool echoing = false;

struct TimeText {
    char text[96];
};

TimeText textOf(const keltra::LocalTime &now) {
    TimeText result;
    std::snprintf(result.text, sizeof result.text, "%u/%u/%u %u:%u:%u.%u", now.day, now.month, now.year,
                  now.hour, now.minute, now.second, now.millisecond);
    return result;
}

void write(const char *text) {
    std::fputs(text, logFile);
    std::fflush(logFile);
}

void writeOpeningBanner(const char *time) {
    if (html)
        std::fprintf(logFile, "<H4>[%s started at %s]\n%s\n\n</H4>", kLibraryName, time, kHtmlRule);
    else
        std::fprintf(logFile, "[%s started at %s]\n%s\n", kLibraryName, time, kTextRule);
    std::fflush(logFile);
}

void writeMemorySummary(const keltra::MemoryCounters &memory) {
    std::fprintf(logFile, "Final memory ratio: %d (%u/%u)\n", int(memory.live), memory.allocations,
                 memory.releases);
    // The figure in bytes has 32 bits, as all others have: it stops at the largest one, the other one is
    // right.
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
    std::fprintf(logFile, "Max. physical memory usage: %.2f mb (%u bytes)\n",
                 static_cast<double>(memory.peak) / kMebibyte,
                 static_cast<unsigned int>(memory.peak < kMost ? memory.peak : kMost));
    std::fprintf(logFile, "Total allocated memory (vnfMalloc): %.2f mb (%u bytes)\n",
                 memory.totalBytes / kMebibyte, memory.totalBytes);
    std::fflush(logFile);
}

// The blank's entity has no semicolon; logs have always read so, and browsers accept it.
void translateToHtml(const char *text, char (&result)[kTextSize]) {
    std::size_t length = 0;
    for (; *text; ++text) {
        char single[2] = {*text, '\0'};
        const char *piece = single;
        if (text[0] == '\n') piece = "<BR>\n";
        if (text[0] == ' ' && text[1] == ' ') piece = "&nbsp";
        std::size_t pieceLength = std::strlen(piece);
        if (length + pieceLength >= sizeof result) break;
        std::memcpy(result + length, piece, pieceLength);
        length += pieceLength;
    }
    result[length] = '\0';
}

}  // namespace

bool keltra::openLogFile(const char *path) {
    if (logFile) return failState(KT_CALL("vnfOpenLog"), KT_TEXT("a log is open already"));
    logFile = platformCreateFile(path, "wt");
    if (!logFile) return FaultScope(KT_CALL("vnfOpenLog"), path).fail(KT_FAULT_FILE_WRITE);
    // Never cleared again: applications get every later log of the process as HTML as well.
    if (std::strstr(path, ".html")) html = true;
    if (html) write("<HTML><BODY>");
    return true;
}

void keltra::beginLog(const LocalTime &time) {
    if (logFile) writeOpeningBanner(textOf(time).text);
}

void keltra::endLog() {
    if (!logFile) return;
    sampleLateBlocks();
    const TimeText now = textOf(platformLocalTime());
    if (html)
        std::fprintf(logFile, "<H4>\n%s", kHtmlRule);
    else
        std::fprintf(logFile, "\n%s", kTextRule);
    writeMemorySummary(memoryCounters());
    std::fprintf(logFile, "[%s terminated at %s]\n", kLibraryName, now.text);
    if (html) write("</H4></BODY></HTML>");
    std::fclose(logFile);
    logFile = nullptr;
}

bool vnfLog(const char *format, ...) {
    if (!format) return keltra::failNull(KT_CALL("vnfLog"), KT_TEXT("format"));
    if (!logFile) return false;
    keltra::sampleLateBlocks();
    char text[kTextSize];
    std::va_list arguments;
    va_start(arguments, format);
    int length = std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    if (length < 0) return keltra::failFormat(KT_CALL("vnfLog"));
    if (echoing) std::fputs(text, stdout);
    if (!html) {
        write(text);
        return true;
    }
    char translated[kTextSize];
    translateToHtml(text, translated);
    write(translated);
    return true;
}

void vnfSetLogEcho(bool echo) { echoing = echo; }
