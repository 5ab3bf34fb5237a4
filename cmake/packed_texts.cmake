# SPDX-License-Identifier: Zlib
# foundation/fault_text.cpp packs the texts while it is compiled, with more steps than compilers take without being told. To be
# included where a target has that source: properties of a source hold in one folder.
set_property(SOURCE ${PROJECT_SOURCE_DIR}/foundation/fault_text.cpp APPEND PROPERTY COMPILE_OPTIONS
  $<$<CXX_COMPILER_ID:GNU>:-fconstexpr-ops-limit=1000000000> $<$<CXX_COMPILER_ID:Clang>:-fconstexpr-steps=1000000000>)
