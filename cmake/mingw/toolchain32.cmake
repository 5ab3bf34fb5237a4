# SPDX-License-Identifier: Zlib
# Windows of 32 bits.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(KELTRA_MINGW_HOST i686-w64-mingw32)
set(KELTRA_MINGW_BITS 32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
