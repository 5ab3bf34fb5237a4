// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_FAULT_H
#define KELTRA_FOUNDATION_FAULT_H

// How the engine makes faults (see keltra/fault.h). To add one:
//
// - A public call refuses an argument, or is not possible now. One line; all of these return false:
//       if (!node) return keltra::failNull(KT_CALL("KTNODE::link"), KT_TEXT("parent"));
//       if (!active) return keltra::failState(KT_CALL("KELTRA::free"), keltra::kInactive);
//       if (!block) return keltra::failMemory(KT_CALL("KTNODE::link"));
//   For another result: `return keltra::failNull(...), nullptr;`.
// - A public call that uses others which may fail: a FaultScope at its top. All faults below it are then
//   reported under its name, and `scope.fail(...)` reports nothing after another fault. Without a scope each
//   call reports its own faults.
// - A part that a load can do without: a FaultOptional while it is tried. Errors become warnings.
// - The engine uses a public call itself, and false is an ordinary result: a FaultSilence around it.
// - What would repeat in every frame is reported once: keep a flag in the object, and test it first.
//
// Never make a fault on a path that every frame takes. A search without a result and the query of a state are
// not faults. Each fault has a row in tests/engine/fault_table*.cpp. ./run count holds the bytes that all of
// them take together, so names of calls and texts are numbers here: KT_CALL and KT_TEXT look a literal up in
// the lists of foundation/fault_texts.h while the source is compiled; one that is new is added there, and
// compiling fails before.

#include <keltra/fault.h>

#include "foundation/fault_texts.h"

#include <cstddef>
#include <type_traits>

// The number of a name or text.
#define KT_CALL(literal) (std::integral_constant<keltra::FaultCall, keltra::faultCall(literal)>::value)
#define KT_TEXT(literal) (std::integral_constant<keltra::FaultText, keltra::faultText(literal)>::value)

namespace keltra {

// --- filling a fault

// Begins the next fault: an error without texts and place. There is one, which the next call of this one or
// of another function below overwrites.
KTFAULT &newFault(KT_FAULT_CODE code);
// The same with texts. Some are patterns of printf: each takes the values from the first one on.
KTFAULT &newFault(KT_FAULT_CODE code, FaultText field, FaultText found, FaultText expected, ...);

// Copies what fits; of a path the end, after three dots. A null text is left out.
void setFaultText(char (&target)[96], const char *text);
void setFaultPath(char (&target)[256], const char *path);
void setFaultNumber(char (&target)[96], long number);

unsigned int faultSentence(const KTFAULT &fault, char *text, std::size_t size);

// --- reporting

// Each reports an error of `call`, or of the scope around it. Always false.
[[gnu::cold]] bool tellFault(FaultCall call, KTFAULT &fault);
[[gnu::cold]] bool failNull(FaultCall call, FaultText argument);

// The outermost scope names the call. Its file, or that of the scope next below, is the one that names the
// file of a fault. The file's name outlives the scope.
class FaultScope {
   public:
    explicit FaultScope(FaultCall call, const char *file = nullptr);
    ~FaultScope();
    FaultScope(const FaultScope &) = delete;
    FaultScope &operator=(const FaultScope &) = delete;

    void setFile(const char *path) { file = path; }
    void setLine(unsigned int at) { line = at; }

    // An error of this call, unless one was reported since it began. Always false.
    bool fail(KTFAULT &fault);
    bool fail(KT_FAULT_CODE code);
    // The first thing that a call finds.
    bool failNull(FaultText argument) { return keltra::failNull(call, argument); }
    // The file cannot be read: finds out why.
    bool failFile();
    bool failFile(bool isOutOfMemory, long largest = 0x7fffffff);

    const char *file;
    unsigned int line;
    FaultScope *const outer;
    const FaultCall call;

   private:
    const unsigned int errorsBefore;
};

// Added up for what surrounds a call.
enum FaultLevel : int { kFaultsOptional = 1, kFaultsSilent = 128 };
[[gnu::cold]] void addFaultLevel(int level);

// While one exists, errors are reported as warnings, or with the other level nothing.
class FaultOptional {
   public:
    explicit FaultOptional(FaultLevel level = kFaultsOptional) : level(level) { addFaultLevel(level); }
    ~FaultOptional() { addFaultLevel(-level); }
    FaultOptional(const FaultOptional &) = delete;
    FaultOptional &operator=(const FaultOptional &) = delete;

   private:
    const int level;
};

// While one exists, nothing is reported.
class FaultSilence : FaultOptional {
   public:
    FaultSilence() : FaultOptional(kFaultsSilent) {}
};

// The same call, of which a fault is a warning.
constexpr FaultCall warned(FaultCall call) {
    return static_cast<FaultCall>(static_cast<unsigned char>(call) | kWarned);
}

// A warning of `call`.
inline void warnFault(FaultCall call, KTFAULT &fault) { tellFault(warned(call), fault); }
// Each reports an error as above.
// `format` is printf's, with up to two %ld.
[[gnu::cold]] bool failValue(FaultCall call, FaultText argument, long found, FaultText format, long first = 0,
                             long second = 0);
// An argument from 0 to `last`; no value is valid when that is negative. The warning: another value was used.
[[gnu::cold]] bool failRange(FaultCall call, FaultText argument, long found, long last);
inline void warnRange(FaultCall call, FaultText argument, long found, long last) {
    failRange(warned(call), argument, found, last);
}
// The code, with a field and what was found.
[[gnu::cold]] bool failTexts(FaultCall call, KT_FAULT_CODE code, FaultText field, FaultText found);
// A text of more than 255 characters. The warning: it was cut.
inline bool failLong(FaultCall call, FaultText argument) {
    return failTexts(call, KT_FAULT_ARGUMENT, argument, KT_TEXT("longer than 255 characters"));
}
inline void warnLong(FaultCall call, FaultText argument) { failLong(warned(call), argument); }
// `state` describes the present state: "the engine is not active".
[[gnu::cold]] bool failState(FaultCall call, FaultText state);
// States of many calls.
constexpr FaultText kActive = KT_TEXT("the engine is active already");
constexpr FaultText kInactive = KT_TEXT("the engine is not active");
// A table is full: `most` is its capacity.
[[gnu::cold]] bool failFull(FaultCall call, FaultText what, unsigned int most);
inline void warnFull(FaultCall call, FaultText what, unsigned int most) {
    failFull(warned(call), what, most);
}
[[gnu::cold]] bool failMemory(FaultCall call);
// Something is left out for lack of memory.
inline void warnMemory(FaultCall call) { failMemory(warned(call)); }
// vsnprintf was negative.
[[gnu::cold]] bool failFormat(FaultCall call);
// True while the application's handler runs.
bool isInFaultHandler();

// Whether a name may be compared with all names of a kind that files define. After 64 faults of the
// application's call it is not: a file may have any number of wrong names and as many right ones, and a load
// must not take their product in time.
bool mayCompareNames();

}  // namespace keltra

#endif
