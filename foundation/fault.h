// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_FAULT_H
#define KELTRA_FOUNDATION_FAULT_H

// How the engine makes faults (see keltra/fault.h). To add one:
//
// - A public call refuses an argument, or is not possible now. One line; all of these return false:
//       if (!node) return keltra::failNull("KTNODE::link", "parent");
//       if (!active) return keltra::failState("KELTRA::free", keltra::kInactive);
//       if (!block) return keltra::failMemory("KTNODE::link");
//   For another result: `return keltra::failNull(...), nullptr;`.
// - A public call that uses others which may fail: a FaultScope at its top. All faults below it are then
//   reported under its name, and `scope.fail(...)` reports nothing after another fault. Without a scope each
//   call reports its own faults.
// - A part that a load can do without: a FaultOptional while it is tried. Errors become warnings.
// - The engine uses a public call itself, and false is an ordinary result: a FaultSilence around it.
// - What would repeat in every frame is reported once: keep a flag in the object, and test it first.
//
// Never make a fault on a path that every frame takes. A search without a result and the query of a state are
// not faults. Each fault has a row in tests/engine/fault_table*.cpp; texts are literals, since all of them
// together may take 12 KiB.

#include <keltra/fault.h>

#include <cstddef>

#ifndef KELTRA_FAULT_TEXTS
#define KELTRA_FAULT_TEXTS 1
#endif

namespace keltra {

// When false, faults keep only codes and found values: the literals of the calls below are dropped.
constexpr bool kFaultTexts = KELTRA_FAULT_TEXTS != 0;

template <class Text>
constexpr const char *faultText(Text text) {
    return kFaultTexts ? text : "";
}

// --- filling a fault

KTFAULT newFault(KT_FAULT_CODE code);  // an error without texts and place

// Copies what fits; of a path the end, after three dots.
void setFaultText(char *target, std::size_t size, const char *text);
template <std::size_t kSize>
void setFaultText(char (&target)[kSize], const char *text) {
    setFaultText(target, kSize, text);
}
void setFaultPath(char (&target)[256], const char *path);
// Writes `expected` with printf's rules.
#if defined(__GNUC__)
__attribute__((format(printf, 2, 3)))
#endif
void setExpected(KTFAULT &fault, const char *format, ...);

unsigned int faultSentence(const KTFAULT &fault, char *text, std::size_t size);

// --- reporting

// The outermost scope names the call. Its file, or that of the scope next below, is the one that names the
// file of a fault. Both texts outlive the scope.
class FaultScope {
   public:
    explicit FaultScope(const char *call, const char *file = nullptr);
    ~FaultScope();
    FaultScope(const FaultScope &) = delete;
    FaultScope &operator=(const FaultScope &) = delete;

    void setFile(const char *path) { file = path; }
    void setLine(unsigned int at) { line = at; }

    // An error of this call, unless one was reported since it began. Always false.
    bool fail(KTFAULT fault);
    bool fail(KT_FAULT_CODE code);
    bool failNull(const char *argument);
    // The file cannot be read: finds out why.
    bool failFile(bool isOutOfMemory = false, long largest = 0x7fffffff);
    void warn(KTFAULT fault);

    const char *const call;
    const char *file;
    unsigned int line;
    FaultScope *const outer;

   private:
    const unsigned int errorsBefore;
};

// While one exists, errors are reported as warnings.
class FaultOptional {
   public:
    FaultOptional();
    ~FaultOptional();
    FaultOptional(const FaultOptional &) = delete;
    FaultOptional &operator=(const FaultOptional &) = delete;
};

// While one exists, nothing is reported.
class FaultSilence {
   public:
    FaultSilence();
    ~FaultSilence();
    FaultSilence(const FaultSilence &) = delete;
    FaultSilence &operator=(const FaultSilence &) = delete;
};

// Each reports an error of `call`, or of the scope around it. Always false.
[[gnu::cold]] bool tellFault(const char *call, KTFAULT &fault);
// The same of a warning.
[[gnu::cold]] void warnFault(const char *call, KTFAULT fault);
[[gnu::cold]] bool failWith(const char *call, KT_FAULT_CODE code, const char *field, const char *found,
                            const char *expected);
[[gnu::cold]] bool failValueFrom(const char *call, const char *argument, long found, const char *format,
                                 long first, long second);

[[gnu::cold]] bool failNullOf(const char *call, const char *argument);
[[gnu::cold]] bool failStateOf(const char *call, const char *state);
[[gnu::cold]] bool failRangeOf(const char *call, const char *argument, long found, long last);
[[gnu::cold]] void warnRangeOf(const char *call, const char *argument, long found, long last);
[[gnu::cold]] bool failFullOf(const char *call, const char *what, unsigned int most);
[[gnu::cold]] void warnFullOf(const char *call, const char *what, unsigned int most);
[[gnu::cold]] bool failLongOf(const char *call, const char *argument);
[[gnu::cold]] void warnLongOf(const char *call, const char *argument);

inline bool failNull(const char *call, const char *argument) { return failNullOf(call, faultText(argument)); }
// `format` is printf's, with up to two %ld.
inline bool failValue(const char *call, const char *argument, long found, const char *format, long first = 0,
                      long second = 0) {
    return failValueFrom(call, faultText(argument), found, faultText(format), first, second);
}
// An argument from 0 to `last`; no value is valid when that is negative. The warning: another value was used.
inline bool failRange(const char *call, const char *argument, long found, long last) {
    return failRangeOf(call, faultText(argument), found, last);
}
inline void warnRange(const char *call, const char *argument, long found, long last) {
    warnRangeOf(call, faultText(argument), found, last);
}
// A text of more than 255 characters. The warning: it was cut.
inline bool failLong(const char *call, const char *argument) { return failLongOf(call, faultText(argument)); }
inline void warnLong(const char *call, const char *argument) { warnLongOf(call, faultText(argument)); }
// `state` describes the present state: "the engine is not active".
inline bool failState(const char *call, const char *state) { return failStateOf(call, faultText(state)); }
// States of many calls.
constexpr const char *kActive = "the engine is active already";
constexpr const char *kInactive = "the engine is not active";
// A table is full: `most` is its capacity.
inline bool failFull(const char *call, const char *what, unsigned int most) {
    return failFullOf(call, faultText(what), most);
}
inline void warnFull(const char *call, const char *what, unsigned int most) {
    warnFullOf(call, faultText(what), most);
}
[[gnu::cold]] bool failMemory(const char *call);
// Something is left out for lack of memory.
[[gnu::cold]] void warnMemory(const char *call);
// vsnprintf was negative.
[[gnu::cold]] bool failFormat(const char *call);
// The file cannot be created or not be written.
[[gnu::cold]] bool failWrite(const char *call, const char *path);
// The file cannot be read: finds out why. Null is reported as null.
[[gnu::cold]] bool failFile(const char *call, const char *path);

// True while the application's handler runs.
bool isInFaultHandler();

// Whether a name may be compared with all names of a kind that files define. After 64 faults of the
// application's call it is not: a file may have any number of wrong names and as many right ones, and a load
// must not take their product in time.
bool mayCompareNames();

}  // namespace keltra

#endif
