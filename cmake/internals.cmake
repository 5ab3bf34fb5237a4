# SPDX-License-Identifier: Zlib
# The library's own objects, for tests, benchmarks and tools that use what it does not export.
include_guard(GLOBAL)

add_library(keltra_internals INTERFACE)
target_sources(keltra_internals INTERFACE $<TARGET_OBJECTS:keltra>)
target_include_directories(keltra_internals INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(keltra_internals INTERFACE PkgConfig::SDL PkgConfig::EGL PkgConfig::GLES PkgConfig::TINYXML
  $<TARGET_NAME_IF_EXISTS:PkgConfig::MPEG2> $<$<BOOL:${KELTRA_COVERAGE}>:gcov>)
if(WIN32)
  # What the public headers declare as imported, these programs have themselves.
  set(KELTRA_OWN_IMPORTS ${CMAKE_CURRENT_BINARY_DIR}/own_imports.c)
  add_custom_command(OUTPUT ${KELTRA_OWN_IMPORTS}
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/mingw/own_imports.sh ${CMAKE_NM} $<TARGET_LINKER_FILE:keltra> ${KELTRA_OWN_IMPORTS}
    DEPENDS ${PROJECT_SOURCE_DIR}/cmake/mingw/own_imports.sh keltra
    VERBATIM)
  add_library(keltra_own_imports OBJECT ${KELTRA_OWN_IMPORTS})
  target_sources(keltra_internals INTERFACE $<TARGET_OBJECTS:keltra_own_imports>)
endif()
