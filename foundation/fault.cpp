// SPDX-License-Identifier: Zlib
#include "foundation/fault.h"

#include "platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace keltra {
namespace {

// Constant-initialised: objects of other sources may fail before anything in here has run.
struct Channel {
    FaultScope *scope;
    unsigned int optional, silent;
    unsigned int errors;    // reported so far
    unsigned int reported;  // since the outermost scope began
    bool inHandler;
};
Channel channel = {nullptr, 0, 0, 0, 0, false};

KTFAULT last;
unsigned int faults = 0;
KTFAULTHANDLER handler = nullptr;
void *handlerUser = nullptr;

bool isPrinting() {
    static const bool printing = platformHasSwitch("KELTRA_FAULTS");
    return printing;
}

void print(const KTFAULT &fault) {
    char sentence[1024];
    faultSentence(fault, sentence, sizeof sentence);
    std::fprintf(stderr, "keltra: %s: %s\n", fault.severity == KT_FAULT_ERROR ? "error" : "warning",
                 sentence);
}

// Calls of the handler belong to no scope that is open.
void handOver(const KTFAULT &fault) {
    static KTFAULT handed;  // stays as it is while the handler makes faults
    handed = fault;
    const Channel before = channel;
    channel = {nullptr, 0, 0, 0, 0, true};
    handler(&handed, handlerUser);
    const unsigned int errors = channel.errors;
    channel = before;
    channel.errors += errors;
}

// Names the call, the file and the file that named it by the scopes that are open.
void addScopes(KTFAULT &fault) {
    for (FaultScope *scope = channel.scope; scope; scope = scope->outer) {
        fault.call = scope->call;
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

void tell(KTFAULT &fault) {
    if (channel.silent) return;
    if (channel.optional) fault.severity = KT_FAULT_WARNING;
    if (fault.severity == KT_FAULT_ERROR) ++channel.errors;
    ++channel.reported;
    addScopes(fault);
    last = fault;
    ++faults;
    if (isPrinting()) print(fault);
    if (handler && !channel.inHandler) handOver(fault);
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

void fillFileFault(KTFAULT &fault, const char *path, bool isOutOfMemory, long largest) {
    fault.code = isOutOfMemory ? KT_FAULT_OUT_OF_MEMORY : problemOf(path, largest);
    setFaultPath(fault.file, path);
    if (kFaultTexts && fault.code == KT_FAULT_FILE_SIZE) setExpected(fault, "%ld bytes", largest);
}

}  // namespace

FaultScope::FaultScope(const char *call, const char *file)
    : call(call), file(file), line(0), outer(channel.scope), errorsBefore(channel.errors) {
    if (!outer) channel.reported = 0;
    channel.scope = this;
}

FaultScope::~FaultScope() { channel.scope = outer; }

bool FaultScope::fail(KTFAULT fault) {
    fault.severity = KT_FAULT_ERROR;
    if (channel.errors == errorsBefore) tell(fault);
    return false;
}

bool FaultScope::fail(KT_FAULT_CODE code) {
    KTFAULT fault = newFault(code);
    return fail(fault);
}

bool FaultScope::failNull(const char *argument) {
    return channel.errors == errorsBefore && keltra::failNull(call, argument);
}

bool FaultScope::failFile(bool isOutOfMemory, long largest) {
    if (!file) return failNull("name");
    KTFAULT fault = newFault(KT_FAULT_NONE);
    fillFileFault(fault, file, isOutOfMemory, largest);
    return fail(fault);
}

void FaultScope::warn(KTFAULT fault) {
    fault.severity = KT_FAULT_WARNING;
    tell(fault);
}

FaultOptional::FaultOptional() { ++channel.optional; }
FaultOptional::~FaultOptional() { --channel.optional; }
FaultSilence::FaultSilence() { ++channel.silent; }
FaultSilence::~FaultSilence() { --channel.silent; }

bool tellFault(const char *call, KTFAULT &fault) {
    fault.call = call;
    tell(fault);
    return false;
}

void warnFault(const char *call, KTFAULT fault) {
    fault.severity = KT_FAULT_WARNING;
    tellFault(call, fault);
}

bool failWith(const char *call, KT_FAULT_CODE code, const char *field, const char *found,
              const char *expected) {
    KTFAULT fault = newFault(code);
    setFaultText(fault.field, field);
    setFaultText(fault.found, found);
    setFaultText(fault.expected, expected);
    return tellFault(call, fault);
}

bool failValueFrom(const char *call, const char *argument, long found, const char *format, long first,
                   long second) {
    KTFAULT fault = newFault(KT_FAULT_ARGUMENT);
    setFaultText(fault.field, argument);
    std::snprintf(fault.found, sizeof fault.found, "%ld", found);
    std::snprintf(fault.expected, sizeof fault.expected, format, first, second);
    return tellFault(call, fault);
}

bool failNullOf(const char *call, const char *argument) {
    return failWith(call, KT_FAULT_NULL, argument, "", "");
}

bool failStateOf(const char *call, const char *state) {
    return failWith(call, KT_FAULT_STATE, "", state, "");
}

bool failMemory(const char *call) { return failWith(call, KT_FAULT_OUT_OF_MEMORY, "", "", ""); }

void warnMemory(const char *call) { warnFault(call, newFault(KT_FAULT_OUT_OF_MEMORY)); }

bool failRangeOf(const char *call, const char *argument, long found, long last) {
    return failValueFrom(call, argument, found, faultText(last < 0 ? "none" : "0 to %ld"), last, 0);
}

void warnRangeOf(const char *call, const char *argument, long found, long last) {
    const FaultOptional optional;
    failRangeOf(call, argument, found, last);
}

bool failFullOf(const char *call, const char *what, unsigned int most) {
    KTFAULT fault = newFault(KT_FAULT_FULL);
    setFaultText(fault.field, what);
    setExpected(fault, "%u", most);
    return tellFault(call, fault);
}

void warnFullOf(const char *call, const char *what, unsigned int most) {
    const FaultOptional optional;
    failFullOf(call, what, most);
}

bool failLongOf(const char *call, const char *argument) {
    return failWith(call, KT_FAULT_ARGUMENT, argument, faultText("longer than 255 characters"), "");
}

void warnLongOf(const char *call, const char *argument) {
    const FaultOptional optional;
    failLongOf(call, argument);
}

bool failFormat(const char *call) {
    return failWith(call, KT_FAULT_ARGUMENT, faultText("format"), faultText("not to be written"), "");
}

bool failWrite(const char *call, const char *path) {
    KTFAULT fault = newFault(KT_FAULT_FILE_WRITE);
    setFaultPath(fault.file, path);
    return tellFault(call, fault);
}

bool failFile(const char *call, const char *path) {
    if (!path) return failNull(call, "path");
    KTFAULT fault = newFault(KT_FAULT_NONE);
    fillFileFault(fault, path, false, 0x7fffffff);
    return tellFault(call, fault);
}

bool mayCompareNames() { return !channel.scope || channel.reported < 64; }

bool isInFaultHandler() { return channel.inHandler; }

}  // namespace keltra

const KTFAULT *KTFAULTS::getLast() { return keltra::faults ? &keltra::last : nullptr; }

unsigned int KTFAULTS::getNumberOfFaults() { return keltra::faults; }

void KTFAULTS::clear() { keltra::faults = 0; }

void KTFAULTS::setHandler(KTFAULTHANDLER receiver, void *user) {
    keltra::handler = receiver;
    keltra::handlerUser = user;
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
