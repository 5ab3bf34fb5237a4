# SPDX-License-Identifier: Zlib
# keltra_no_faults is the library with the headers of tests/count/no_faults in place of its own, which report nothing. What
# the faults add to the library is the difference; ./run count holds it to a budget.
get_target_property(sources keltra SOURCES)
list(FILTER sources EXCLUDE REGEX "(foundation|formats)/fault|formats/(key_check|xml_check)|exports\\.map")
add_library(keltra_no_faults SHARED EXCLUDE_FROM_ALL ${sources})
target_include_directories(keltra_no_faults BEFORE PRIVATE ${PROJECT_SOURCE_DIR}/tests/count/no_faults)
foreach(property INCLUDE_DIRECTORIES COMPILE_DEFINITIONS COMPILE_OPTIONS LINK_LIBRARIES LINK_OPTIONS)
  get_target_property(value keltra ${property})
  set_property(TARGET keltra_no_faults APPEND PROPERTY ${property} ${value})
endforeach()
set_target_properties(keltra_no_faults PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
add_dependencies(keltra_no_faults keltra)  # its list of exports
