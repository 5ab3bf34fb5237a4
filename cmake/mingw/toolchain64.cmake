# SPDX-License-Identifier: Zlib
# Windows of 64 bits.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KELTRA_MINGW_HOST x86_64-w64-mingw32)
set(KELTRA_MINGW_BITS 64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
