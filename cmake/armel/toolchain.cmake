# SPDX-License-Identifier: Zlib
# Soft-float ARM, the instruction set of the devices: no floating-point unit, so every float operation is a call.
# The sysroot is made by sysroot.sh; KELTRA_ARMEL_ROOT in the environment or the cache names another one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv5te)

set(CMAKE_C_COMPILER arm-linux-gnueabi-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)
set(CMAKE_C_FLAGS_INIT "-march=armv5te -mfloat-abi=soft")
set(CMAKE_CXX_FLAGS_INIT "-march=armv5te -mfloat-abi=soft")
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabi)

set(KELTRA_ARMEL_ROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/armel" CACHE PATH "Unpacked armel packages")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KELTRA_ARMEL_ROOT)
get_filename_component(root "${KELTRA_ARMEL_ROOT}" ABSOLUTE)
set(CMAKE_SYSROOT ${root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${root})
set(ENV{PKG_CONFIG_LIBDIR} ${root}/usr/lib/arm-linux-gnueabi/pkgconfig:${root}/usr/share/pkgconfig)
# Programs run on the build machine all the same: tests do.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/emulate.sh ${root})
