# SPDX-License-Identifier: Zlib
# The inspection as a library of which only the probe can be seen: tests and fuzz targets are linked to the engine as it is,
# and its symbols must not meet those of the engine's objects in here.
if(NOT TARGET keltra_probe)
  set(folder ${PROJECT_SOURCE_DIR}/tests/tools/info)
  add_library(keltra_probe SHARED ${folder}/probe.cpp)
  target_link_libraries(keltra_probe PRIVATE keltra_inspection)
  target_link_options(keltra_probe PRIVATE -Wl,--version-script=${folder}/probe.map -Wl,--as-needed)
  set_target_properties(keltra_probe PROPERTIES LINK_DEPENDS ${folder}/probe.map)
endif()
