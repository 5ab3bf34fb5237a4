// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TOOLS_INTERPOSE_H
#define KELTRA_TOOLS_INTERPOSE_H

// Helpers to define, in a program, a function that a shared library also defines. The dynamic linker binds
// the engine's calls to the program's definition, which records them and calls the library's. The parameters
// come from the function's declaration, so that a table of names and counts is enough.

#include <dlfcn.h>
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

// The library's definition. Ends the program if there is none.
template <class F>
F *nextFunction(const char *name) {
    void *found = dlsym(RTLD_NEXT, name);
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
