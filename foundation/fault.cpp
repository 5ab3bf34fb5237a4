// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include "platform/platform.h"

#include <cstdio>
#include <cstring>

namespace keltra {
namespace {

// Constant-initialised: objects of other sources may fail before anything in here has run.
struct Channel {
    FaultScope *scope;
    int level;
    unsigned int reported;  // since the outermost scope began
    bool inHandler;
};

struct Faults {
    Channel channel;
    unsigned int errors;  // reported so far
    unsigned int count;
    bool isEnvironmentRead, isPrinting;
    KTFAULTHANDLER handler;
    void *user;
    KTFAULT last, handed;  // the second stays as it is while the handler makes faults
};
Faults faults;

// For functions that use it often: its address takes eight bytes of ARM code at each use.
[[gnu::noinline]] Faults &allFaults() { return faults; }

void print(const KTFAULT &fault) {
    static char sentence[1024];  // the device's stack is small
    faultSentence(fault, sentence, sizeof sentence);
    std::fprintf(stderr, "keltra: %s: %s\n", fault.severity == KT_FAULT_ERROR ? "error" : "warning",
                 sentence);
}

// Calls of the handler belong to no scope that is open.
void handOver(Faults &all, const KTFAULT &fault) {
    all.handed = fault;
    const Channel before = all.channel;
    all.channel = {nullptr, 0, 0, true};
    all.handler(&all.handed, all.user);
    all.channel = before;
}

// Names the call, the file and the file that named it by the scopes that are open.
void addScopes(const FaultScope *scope, KTFAULT &fault) {
    for (; scope; scope = scope->outer) {
        if (!scope->outer) fault.call = faultCallName(scope->call);
        if (!scope->file) continue;
        if (!*fault.file) {
            setFaultPath(fault.file, scope->file);
            if (fault.byte < 0 && !fault.line) fault.line = scope->line;
        } else if (!*fault.neededBy && std::strcmp(fault.file, scope->file) != 0) {
            setFaultPath(fault.neededBy, scope->file);
            fault.neededByLine = scope->line;
        }
    }
}

// Always false.
bool tell(KTFAULT &fault) {
    Faults &all = allFaults();
    if (all.channel.level >= kFaultsSilent) return false;
    if (all.channel.level) fault.severity = KT_FAULT_WARNING;
    if (fault.severity == KT_FAULT_ERROR) ++all.errors;
    ++all.channel.reported;
    addScopes(all.channel.scope, fault);
    all.last = fault;
    ++all.count;
    if (!all.isEnvironmentRead) {
        all.isEnvironmentRead = true;
        all.isPrinting = platformHasSwitch("KELTRA_FAULTS");
    }
    if (all.isPrinting) print(fault);
    if (all.handler && !all.channel.inHandler) handOver(all, fault);
    return false;
}

KT_FAULT_CODE problemOf(const char *path, long largest) {
    if (!*path) return KT_FAULT_FILE_NAME;
    const PathKind kind = platformPathKind(path);
    if (kind == PathKind::kNothing) return KT_FAULT_FILE_MISSING;
    if (kind == PathKind::kOther) return KT_FAULT_FILE_KIND;
    const std::int64_t size = platformFileSize(path);
    if (size < 0) return KT_FAULT_FILE_ACCESS;
    if (size == 0) return KT_FAULT_FILE_EMPTY;
    return size > largest ? KT_FAULT_FILE_SIZE : KT_FAULT_FILE_READ;
}

KTFAULT &fileFault(const char *path, bool isOutOfMemory, long largest) {
    const KT_FAULT_CODE code = isOutOfMemory ? KT_FAULT_OUT_OF_MEMORY : problemOf(path, largest);
    KTFAULT &fault =
        newFault(code, {}, {}, code == KT_FAULT_FILE_SIZE ? KT_TEXT("%ld bytes") : FaultText(), largest);
    setFaultPath(fault.file, path);
    return fault;
}

}  // namespace

FaultScope::FaultScope(FaultCall call, const char *file)
    : file(file), line(0), outer(faults.channel.scope), call(call), errorsBefore(faults.errors) {
    faults.channel.scope = this;
    if (!outer) faults.channel.reported = 0;
}

FaultScope::~FaultScope() { faults.channel.scope = outer; }

bool FaultScope::fail(KTFAULT &fault) { return faults.errors == errorsBefore && tell(fault); }

bool FaultScope::fail(KT_FAULT_CODE code) { return fail(newFault(code)); }

bool FaultScope::failFile() { return failFile(false); }

bool FaultScope::failFile(bool isOutOfMemory, long largest) {
    return fail(file ? fileFault(file, isOutOfMemory, largest)
                     : newFault(KT_FAULT_NULL, KT_TEXT("name"), {}, {}));
}

void addFaultLevel(int level) { faults.channel.level += level; }

bool tellFault(FaultCall call, KTFAULT &fault) {
    const unsigned int number = static_cast<unsigned int>(call);
    if (number & kWarned) fault.severity = KT_FAULT_WARNING;
    fault.call = faultCallName(static_cast<FaultCall>(number & ~unsigned{kWarned}));
    return tell(fault);
}

bool failTexts(FaultCall call, KT_FAULT_CODE code, FaultText field, FaultText found) {
    return tellFault(call, newFault(code, field, found, {}));
}

bool failNull(FaultCall call, FaultText argument) { return failTexts(call, KT_FAULT_NULL, argument, {}); }

bool failValue(FaultCall call, FaultText argument, long found, FaultText format, long first, long second) {
    KTFAULT &fault = newFault(KT_FAULT_ARGUMENT, argument, {}, format, first, second);
    setFaultNumber(fault.found, found);
    return tellFault(call, fault);
}

bool failState(FaultCall call, FaultText state) { return failTexts(call, KT_FAULT_STATE, {}, state); }

bool failMemory(FaultCall call) { return failTexts(call, KT_FAULT_OUT_OF_MEMORY, {}, {}); }

bool failFormat(FaultCall call) {
    return failTexts(call, KT_FAULT_ARGUMENT, KT_TEXT("format"), KT_TEXT("not to be written"));
}

bool failRange(FaultCall call, FaultText argument, long found, long last) {
    return failValue(call, argument, found, last < 0 ? KT_TEXT("none") : KT_TEXT("0 to %ld"), last);
}

bool failFull(FaultCall call, FaultText what, unsigned int most) {
    return tellFault(call, newFault(KT_FAULT_FULL, what, {}, KT_TEXT("%u"), most));
}

bool mayCompareNames() { return !faults.channel.scope || faults.channel.reported < 64; }

bool isInFaultHandler() { return faults.channel.inHandler; }

}  // namespace keltra

const KTFAULT *KTFAULTS::getLast() { return keltra::faults.count ? &keltra::faults.last : nullptr; }

unsigned int KTFAULTS::getNumberOfFaults() { return keltra::faults.count; }

void KTFAULTS::clear() { keltra::faults.count = 0; }

void KTFAULTS::setHandler(KTFAULTHANDLER receiver, void *user) {
    keltra::faults.handler = receiver;
    keltra::faults.user = user;
}

void KTFAULTS::report(const KTFAULT *fault) {
    if (!fault) return;
    KTFAULT told = *fault;
    keltra::tell(told);
}

unsigned int KTFAULTS::format(const KTFAULT *fault, char *text, unsigned int size) {
    if (fault) return keltra::faultSentence(*fault, text, text ? size : 0);
    if (text && size) *text = '\0';
    return 0;
}
