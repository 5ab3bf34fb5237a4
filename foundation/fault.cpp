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
    unsigned int errors;    // reported so far
    unsigned int reported;  // since the outermost scope began
    bool inHandler;
};

struct Faults {
    Channel channel;
    unsigned int count;
    bool isEnvironmentRead, isPrinting;
    KTFAULTHANDLER handler;
    void *user;
    KTFAULT last, handed;  // the second stays as it is while the handler makes faults
};
Faults faults;

void print(const KTFAULT &fault) {
    char sentence[1024];
    faultSentence(fault, sentence, sizeof sentence);
    std::fprintf(stderr, "keltra: %s: %s\n", fault.severity == KT_FAULT_ERROR ? "error" : "warning",
                 sentence);
}

// Calls of the handler belong to no scope that is open.
void handOver(const KTFAULT &fault) {
    faults.handed = fault;
    const Channel before = faults.channel;
    faults.channel = {nullptr, 0, 0, 0, true};
    faults.handler(&faults.handed, faults.user);
    const unsigned int errors = faults.channel.errors;
    faults.channel = before;
    faults.channel.errors += errors;
}

// Names the call, the file and the file that named it by the scopes that are open.
void addScopes(KTFAULT &fault) {
    for (const FaultScope *scope = faults.channel.scope; scope; scope = scope->outer) {
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
    if (faults.channel.level >= kFaultsSilent) return false;
    if (faults.channel.level) fault.severity = KT_FAULT_WARNING;
    if (fault.severity == KT_FAULT_ERROR) ++faults.channel.errors;
    ++faults.channel.reported;
    addScopes(fault);
    faults.last = fault;
    ++faults.count;
    if (!faults.isEnvironmentRead) {
        faults.isEnvironmentRead = true;
        faults.isPrinting = platformHasSwitch("KELTRA_FAULTS");
    }
    if (faults.isPrinting) print(fault);
    if (faults.handler && !faults.channel.inHandler) handOver(fault);
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
    KTFAULT &fault = newFault(isOutOfMemory ? KT_FAULT_OUT_OF_MEMORY : problemOf(path, largest));
    setFaultPath(fault.file, path);
    if (fault.code == KT_FAULT_FILE_SIZE) writeFaultText(fault.expected, KT_TEXT("%ld bytes"), largest);
    return fault;
}

}  // namespace

FaultScope::FaultScope(FaultCall call, const char *file)
    : file(file), line(0), outer(faults.channel.scope), call(call), errorsBefore(faults.channel.errors) {
    if (!outer) faults.channel.reported = 0;
    faults.channel.scope = this;
}

FaultScope::~FaultScope() { faults.channel.scope = outer; }

bool FaultScope::fail(KTFAULT &fault) { return faults.channel.errors == errorsBefore && tell(fault); }

bool FaultScope::fail(KT_FAULT_CODE code) { return fail(newFault(code)); }

bool FaultScope::failNull(FaultText argument) {
    return faults.channel.errors == errorsBefore && keltra::failNull(call, argument);
}

bool FaultScope::failFile() { return failFile(false); }

bool FaultScope::failFile(bool isOutOfMemory, long largest) {
    if (!file) return failNull(KT_TEXT("name"));
    return fail(fileFault(file, isOutOfMemory, largest));
}

void addFaultLevel(int level) { faults.channel.level += level; }

bool tellFault(FaultCall call, KTFAULT &fault) {
    const unsigned int number = static_cast<unsigned int>(call);
    if (number & kWarned) fault.severity = KT_FAULT_WARNING;
    fault.call = faultCallName(static_cast<FaultCall>(number & ~unsigned{kWarned}));
    return tell(fault);
}

bool failTexts(FaultCall call, KT_FAULT_CODE code, FaultText field, FaultText found) {
    KTFAULT &fault = newFault(code);
    writeFaultText(fault.field, field);
    writeFaultText(fault.found, found);
    return tellFault(call, fault);
}

bool failNull(FaultCall call, FaultText argument) { return failTexts(call, KT_FAULT_NULL, argument, {}); }

bool failValue(FaultCall call, FaultText argument, long found, FaultText format, long first, long second) {
    KTFAULT &fault = newFault(KT_FAULT_ARGUMENT);
    writeFaultText(fault.field, argument);
    setFaultNumber(fault.found, found);
    writeFaultText(fault.expected, format, first, second);
    return tellFault(call, fault);
}

bool failState(FaultCall call, FaultText state) { return failTexts(call, KT_FAULT_STATE, {}, state); }

bool failMemory(FaultCall call) { return failTexts(call, KT_FAULT_OUT_OF_MEMORY, {}, {}); }

bool failRange(FaultCall call, FaultText argument, long found, long last) {
    return failValue(call, argument, found, last < 0 ? KT_TEXT("none") : KT_TEXT("0 to %ld"), last);
}

bool failFull(FaultCall call, FaultText what, unsigned int most) {
    KTFAULT &fault = newFault(KT_FAULT_FULL);
    writeFaultText(fault.field, what);
    if (kFaultTexts) setFaultNumber(fault.expected, static_cast<long>(most));
    return tellFault(call, fault);
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
