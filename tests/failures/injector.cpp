// SPDX-License-Identifier: Zlib
#include "tests/failures/injector.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <link.h>
#endif
#include <stdarg.h>
#include <stdint.h>

extern "C" {
#include <mpeg2.h>
#include <mpeg2convert.h>
}

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unordered_set>

#include "tests/support/allocations.h"
#include "tests/support/code_file.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/startup_faults.h"
#include "tools/support/interpose.h"

namespace keltra::test {
namespace {

#ifdef _WIN32

// TinyXML and libmpeg2 are inside the library there.
bool isEngine(const void *caller) {
    const char *file = fileOfCode(caller);
    return file && !std::strcmp(file, "keltra.dll");
}
void engineCode() {}

#else

struct Range {
    std::uintptr_t begin, end;
};

// Where the engine, TinyXML and libmpeg2 lie in memory.
const std::vector<Range> &engineCode() {
    static const std::vector<Range> *const ranges = [] {
        auto *found = new std::vector<Range>;
        dl_iterate_phdr(
            [](dl_phdr_info *info, std::size_t, void *result) {
                for (const char *name : {"libkeltra.so", "libtinyxml.so", "libmpeg2"}) {
                    if (!std::strstr(info->dlpi_name, name)) continue;
                    for (int i = 0; i < info->dlpi_phnum; ++i)
                        static_cast<std::vector<Range> *>(result)->push_back(
                            {info->dlpi_addr + info->dlpi_phdr[i].p_vaddr,
                             info->dlpi_addr + info->dlpi_phdr[i].p_vaddr + info->dlpi_phdr[i].p_memsz});
                }
                return 0;
            },
            found);
        return found;
    }();
    return *ranges;
}

bool isEngine(const void *caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    for (const Range &range : engineCode())
        if (address >= range.begin && address < range.end) return true;
    return false;
}

#endif

struct State {
    Failing kind = Failing::kNothing;
    long nth = 0, calls = 0;
    bool exhausted = false;
};
State state;

class Memory final : public AllocationWatch {
   public:
    bool mustFail(const void *caller) override {
        if (inside || !isEngine(caller)) return false;
        if (state.kind == Failing::kMemoryForGood) {
            if (!state.exhausted) state.exhausted = ++state.calls == state.nth;
            return state.exhausted;
        }
        return Injector::mustFail(Failing::kMemory, caller);
    }
    void allocated(void *block, const void *caller) override {
        if (inside || !isEngine(caller)) return;
        inside = true;
        blocks.insert(block);
        inside = false;
    }
    void released(void *block) override {
        if (inside) return;
        inside = true;
        if (blocks.erase(block)) state.exhausted = false;
        inside = false;
    }
    std::unordered_set<void *> blocks;

   private:
    bool inside = false;  // its own allocations do not count
};

Memory &memory() {
    static Memory *const instance = new Memory;
    return *instance;
}

}  // namespace

const char *nameOf(Failing kind) {
    const char *const names[] = {"nothing",    "memory",       "memory for good", "open",   "read",
                                 "short read", "changed read", "window",          "upload", "decoder"};
    return names[static_cast<int>(kind)];
}

void Injector::start(Failing kind, long nth) {
    engineCode();
    AllocationWatch::install(&memory());
    state = State();
    state.kind = kind;
    state.nth = nth;
    StartupFaults::failNth(kind == Failing::kWindow ? nth : 0);
    GlRecorder::failUpload(kind == Failing::kUpload ? nth : 0);
}

long Injector::stop() {
    const Failing kind = std::exchange(state.kind, Failing::kNothing);
    state.exhausted = false;
    if (kind == Failing::kWindow) state.calls = StartupFaults::failNth(0);
    if (kind == Failing::kUpload) state.calls = GlRecorder::failUpload(0);
    return state.calls;
}

std::size_t Injector::live() { return memory().blocks.size(); }

bool Injector::mustFail(Failing kind, const void *caller) {
    return state.kind == kind && isEngine(caller) && ++state.calls == state.nth;
}

}  // namespace keltra::test

using keltra::nextFunction;
using keltra::test::Failing;
using keltra::test::Injector;

#ifdef _WIN32

KELTRA_INTERPOSE(FILE *, , fopen, (const char *path, const char *mode)) {
    static auto *const next = nextFunction<FILE *(const char *, const char *)>("fopen");
    const void *caller = __builtin_return_address(0);
    if (!Injector::mustFail(Failing::kOpen, caller) && !Injector::mustFail(Failing::kMemory, caller))
        return next(path, mode);
    errno = ENOMEM;
    return nullptr;
}

#else

KELTRA_INTERPOSE(int, , open, (const char *path, int flags, ...)) {
    mode_t mode = 0;
    if (flags & O_CREAT) {
        va_list rest;
        va_start(rest, flags);
        mode = va_arg(rest, mode_t);
        va_end(rest);
    }
    static auto *const next = nextFunction<int(const char *, int, mode_t)>("open");
    if (!Injector::mustFail(Failing::kOpen, __builtin_return_address(0))) return next(path, flags, mode);
    errno = EMFILE;
    return -1;
}

KELTRA_INTERPOSE(FILE *, , fdopen, (int file, const char *mode) noexcept) {
    static auto *const next = nextFunction<FILE *(int, const char *)>("fdopen");
    const void *caller = __builtin_return_address(0);
    if (!Injector::mustFail(Failing::kOpen, caller) && !Injector::mustFail(Failing::kMemory, caller))
        return next(file, mode);
    errno = ENOMEM;
    return nullptr;
}

#endif

KELTRA_INTERPOSE(size_t, , fread, (void *target, size_t size, size_t count, FILE *file)) {
    static auto *const next = nextFunction<size_t(void *, size_t, size_t, FILE *)>("fread");
    const void *caller = __builtin_return_address(0);
    if (Injector::mustFail(Failing::kRead, caller)) return 0;
    const size_t done = next(target, size, count, file);
    if (Injector::mustFail(Failing::kShortRead, caller)) return done / 2;
    if (Injector::mustFail(Failing::kChangedRead, caller) && done) {
        // The same byte in each run.
        const size_t at = done * size * 2 / 3;
        static_cast<unsigned char *>(target)[at] ^= 0x55;
    }
    return done;
}

#ifndef _WIN32

KELTRA_INTERPOSE(mpeg2dec_t *, , mpeg2_init, ()) {
    static auto *const next = nextFunction<mpeg2dec_t *()>("mpeg2_init");
    return Injector::mustFail(Failing::kDecoder, __builtin_return_address(0)) ? nullptr : next();
}

KELTRA_INTERPOSE(int, , mpeg2_convert, (mpeg2dec_t * decoder, mpeg2_convert_t convert, void *argument)) {
    static auto *const next = nextFunction<int(mpeg2dec_t *, mpeg2_convert_t, void *)>("mpeg2_convert");
    if (Injector::mustFail(Failing::kDecoder, __builtin_return_address(0))) return 1;
    return next(decoder, convert, argument);
}

KELTRA_INTERPOSE(mpeg2_state_t, , mpeg2_parse, (mpeg2dec_t * decoder)) {
    static auto *const next = nextFunction<mpeg2_state_t(mpeg2dec_t *)>("mpeg2_parse");
    const bool fails = Injector::mustFail(Failing::kDecoder, __builtin_return_address(0));
    return fails ? STATE_INVALID : next(decoder);
}

#endif
