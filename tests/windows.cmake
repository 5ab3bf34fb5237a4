# SPDX-License-Identifier: Zlib
# What runs of the tests on Windows. The others need the POSIX system, or put definitions of their own before those of shared
# libraries, which a program cannot do there.
set_target_properties(keltra_test_support keltra_gl_recorder PROPERTIES EXCLUDE_FROM_ALL ON)

# The examples run as smoke tests: a few frames each, and the picture of the last. Without the film's: it ends by abort() there,
# for a reason that is not known yet.
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/pictures)
list(REMOVE_ITEM KELTRA_EXAMPLE_PROGRAMS 07_video)
foreach(example ${KELTRA_EXAMPLE_PROGRAMS})
  keltra_add_test(example_${example} gl ${CMAKE_CROSSCOMPILING_EMULATOR}
    $<TARGET_FILE:${example}> --frames 3 --shot ${CMAKE_CURRENT_BINARY_DIR}/pictures/${example}.png)
endforeach()
add_subdirectory(headers)
