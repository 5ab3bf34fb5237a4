// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_FAULT_H
#define KELTRA_FOUNDATION_FAULT_H

// Stands in for the real header where the library is built without faults, to see what they add to it: calls
// fail as they do, and report nothing.

#include <keltra/fault.h>

#include <cstddef>

#define KT_CALL(literal) (keltra::FaultCall())
#define KT_TEXT(literal) (keltra::FaultText())

namespace keltra {

enum class FaultCall : unsigned char {};
enum class FaultText : unsigned char {};

inline KTFAULT &newFault(KT_FAULT_CODE) {
    static KTFAULT none;
    return none;
}
template <class... Values>
KTFAULT &newFault(KT_FAULT_CODE code, FaultText, FaultText, FaultText, Values...) {
    return newFault(code);
}
inline void setFaultText(char (&)[96], const char *) {}
inline void setFaultPath(char (&)[256], const char *) {}
inline void setFaultNumber(char (&)[96], long) {}
inline const char *faultCallName(FaultCall) { return ""; }

class FaultScope {
   public:
    explicit FaultScope(FaultCall, const char *file = nullptr) : file(file) {}
    void setFile(const char *path) { file = path; }
    void setLine(unsigned int) {}
    bool fail(KTFAULT &) { return false; }
    bool fail(KT_FAULT_CODE) { return false; }
    bool failNull(FaultText) { return false; }
    bool failFile() { return false; }
    bool failFile(bool, long = 0) { return false; }

    const char *file;
    static constexpr FaultCall call = {};
};
enum FaultLevel { kFaultsOptional, kFaultsSilent };
struct FaultOptional {
    explicit FaultOptional(FaultLevel = kFaultsOptional) {}
};
struct FaultSilence {
    FaultSilence() {}
};

inline FaultCall warned(FaultCall call) { return call; }
inline bool failTexts(FaultCall, KT_FAULT_CODE, FaultText, FaultText) { return false; }
inline bool tellFault(FaultCall, KTFAULT &) { return false; }
inline void warnFault(FaultCall, KTFAULT &) {}
inline bool failNull(FaultCall, FaultText) { return false; }
inline bool failValue(FaultCall, FaultText, long, FaultText, long = 0, long = 0) { return false; }
inline bool failRange(FaultCall, FaultText, long, long) { return false; }
inline void warnRange(FaultCall, FaultText, long, long) {}
inline bool failLong(FaultCall, FaultText) { return false; }
inline void warnLong(FaultCall, FaultText) {}
inline bool failState(FaultCall, FaultText) { return false; }
constexpr FaultText kActive = {}, kInactive = {};
inline bool failFull(FaultCall, FaultText, unsigned int) { return false; }
inline void warnFull(FaultCall, FaultText, unsigned int) {}
inline bool failMemory(FaultCall) { return false; }
inline void warnMemory(FaultCall) {}
inline bool failFormat(FaultCall) { return false; }
inline bool isInFaultHandler() { return false; }
inline bool mayCompareNames() { return false; }

}  // namespace keltra

#endif
