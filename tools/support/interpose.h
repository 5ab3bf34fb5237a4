// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TOOLS_INTERPOSE_H
#define KELTRA_TOOLS_INTERPOSE_H

// Helpers to define, in a program, a function that a shared library also defines. The engine's calls are
// bound to the program's definition, which records them and calls the library's. The parameters come from the
// function's declaration, so that a table of names and counts is enough.

#ifndef _WIN32
#include <dlfcn.h>
#endif

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <tuple>
#include <type_traits>
#include <utility>

namespace keltra {

template <class F>
struct Signature;
template <class R, class... A>
struct Signature<R(A...)> {
    using Result = R;
    template <std::size_t i>
    using Argument = std::tuple_element_t<i, std::tuple<A...>>;
};

#ifdef _WIN32
// No linker does it there: while it is constructed, the imports of the program and of the engine's libraries
// are bound to the function.
class BoundImport {
   public:
    BoundImport(const char *name, void *function);
};
void *findInLibraries(const char *name);
#else
inline void *findInLibraries(const char *name) { return dlsym(RTLD_NEXT, name); }
#endif

#if defined(_WIN32) && !defined(_WIN64)
template <class R, class... A>
struct Signature<R __attribute__((stdcall)) (A...)> : Signature<R(A...)> {};
#endif

// The library's definition. Ends the program if there is none.
template <class F>
F *nextFunction(const char *name) {
    void *found = findInLibraries(name);
    if (!found) {
        std::fprintf(stderr, "no library defines %s\n", name);
        std::abort();
    }
    return reinterpret_cast<F *>(found);
}

template <class T>
std::int64_t asNumber(T value) {
    if constexpr (std::is_pointer_v<T>) {
        return static_cast<std::int64_t>(reinterpret_cast<std::intptr_t>(value));
    } else if constexpr (std::is_floating_point_v<T>) {
        return static_cast<std::int64_t>(value * 65536.0f);
    } else {
        return static_cast<std::int64_t>(value);
    }
}

}  // namespace keltra

// Begins the program's definition of a function: KELTRA_INTERPOSE(int, , rename, (const char *a, const char
// *b)) { The convention is that of calls, as GL_APIENTRY.
#ifdef _WIN32
#define KELTRA_INTERPOSE(result, convention, name, parameters)                                               \
    static result convention keltra_program_##name parameters;                                               \
    static const ::keltra::BoundImport keltra_bound_##name(#name,                                            \
                                                           reinterpret_cast<void *>(keltra_program_##name)); \
    static result convention keltra_program_##name parameters
#else
#define KELTRA_INTERPOSE(result, convention, name, parameters) \
    extern "C" __attribute__((visibility("default"))) result convention name parameters
#endif

// clang-format off
// The arguments come with a leading comma, to follow the function's name.
#define KELTRA_PARAMETER(f, i) ::keltra::Signature<decltype(f)>::Argument<i> a##i
#define KELTRA_PARAMETERS_0(f) void
#define KELTRA_PARAMETERS_1(f) KELTRA_PARAMETER(f, 0)
#define KELTRA_PARAMETERS_2(f) KELTRA_PARAMETERS_1(f), KELTRA_PARAMETER(f, 1)
#define KELTRA_PARAMETERS_3(f) KELTRA_PARAMETERS_2(f), KELTRA_PARAMETER(f, 2)
#define KELTRA_PARAMETERS_4(f) KELTRA_PARAMETERS_3(f), KELTRA_PARAMETER(f, 3)
#define KELTRA_PARAMETERS_5(f) KELTRA_PARAMETERS_4(f), KELTRA_PARAMETER(f, 4)
#define KELTRA_PARAMETERS_6(f) KELTRA_PARAMETERS_5(f), KELTRA_PARAMETER(f, 5)
#define KELTRA_PARAMETERS_7(f) KELTRA_PARAMETERS_6(f), KELTRA_PARAMETER(f, 6)
#define KELTRA_PARAMETERS_8(f) KELTRA_PARAMETERS_7(f), KELTRA_PARAMETER(f, 7)
#define KELTRA_PARAMETERS_9(f) KELTRA_PARAMETERS_8(f), KELTRA_PARAMETER(f, 8)
#define KELTRA_ARGUMENTS_0
#define KELTRA_ARGUMENTS_1 , a0
#define KELTRA_ARGUMENTS_2 KELTRA_ARGUMENTS_1, a1
#define KELTRA_ARGUMENTS_3 KELTRA_ARGUMENTS_2, a2
#define KELTRA_ARGUMENTS_4 KELTRA_ARGUMENTS_3, a3
#define KELTRA_ARGUMENTS_5 KELTRA_ARGUMENTS_4, a4
#define KELTRA_ARGUMENTS_6 KELTRA_ARGUMENTS_5, a5
#define KELTRA_ARGUMENTS_7 KELTRA_ARGUMENTS_6, a6
#define KELTRA_ARGUMENTS_8 KELTRA_ARGUMENTS_7, a7
#define KELTRA_ARGUMENTS_9 KELTRA_ARGUMENTS_8, a8
// clang-format on

#endif
