# SPDX-License-Identifier: Zlib
# The library's own objects, for tests, benchmarks and tools that use what it does not export.
include_guard(GLOBAL)

add_library(keltra_internals INTERFACE)
target_sources(keltra_internals INTERFACE $<TARGET_OBJECTS:keltra>)
target_include_directories(keltra_internals INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_link_libraries(keltra_internals INTERFACE PkgConfig::SDL PkgConfig::EGL PkgConfig::GLES PkgConfig::TINYXML
  $<TARGET_NAME_IF_EXISTS:PkgConfig::MPEG2>)
