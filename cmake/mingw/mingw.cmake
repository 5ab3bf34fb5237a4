# SPDX-License-Identifier: Zlib
# What toolchain64.cmake and toolchain32.cmake have in common: Windows, with Debian's MinGW compilers. The libraries are made by
# dependencies.sh; KELTRA_MINGW_ROOT in the cache names another folder of them.
set(CMAKE_SYSTEM_NAME Windows)

set(CMAKE_C_COMPILER ${KELTRA_MINGW_HOST}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KELTRA_MINGW_HOST}-g++-posix)
set(CMAKE_RC_COMPILER ${KELTRA_MINGW_HOST}-windres)
# The library and programs then need no library of the compiler beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

set(KELTRA_MINGW_ROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/mingw${KELTRA_MINGW_BITS}" CACHE PATH "Libraries built for Windows")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KELTRA_MINGW_ROOT)
get_filename_component(root "${KELTRA_MINGW_ROOT}" ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${root} /usr/${KELTRA_MINGW_HOST})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_LIBRARY /usr/${KELTRA_MINGW_HOST}/lib/libz.a CACHE FILEPATH "Of Debian's libz-mingw-w64-dev")
set(ENV{PKG_CONFIG_SYSROOT_DIR} "")
set(ENV{PKG_CONFIG_LIBDIR} ${root}/lib/pkgconfig)
# Programs run on the build machine all the same: tests do.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/emulate.sh ${root})
