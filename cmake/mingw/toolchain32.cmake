# SPDX-License-Identifier: Zlib
# Windows of 32 bits.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(KELTRA_MINGW_HOST i686-w64-mingw32)
set(KELTRA_MINGW_BITS 32)
# Floats are computed as floats, as everywhere else: the instructions that are older keep more digits. A caller of another compiler
# may align the stack to 4 bytes only.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "${CMAKE_C_FLAGS_INIT}")
include(${CMAKE_CURRENT_LIST_DIR}/mingw.cmake)
