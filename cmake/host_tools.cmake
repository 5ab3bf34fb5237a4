# SPDX-License-Identifier: Zlib
# While the project is built, its own tools run: they make the files of the examples. When it is built for another machine, they
# are those of a native build, whose folder KELTRA_HOST_TOOLS names.
set(KELTRA_HOST_TOOLS "" CACHE PATH "Folder of keltra-convert and keltra-font that run on this machine; empty: build them")

# keltra_host_tool(NAME VARIABLE): sets the variable to what add_custom_command runs and depends on.
function(keltra_host_tool name variable)
  set(tool ${name})
  if(KELTRA_HOST_TOOLS)
    unset(tool)
    find_program(tool ${name} PATHS ${KELTRA_HOST_TOOLS} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH NO_CACHE)
    if(NOT tool)
      message(FATAL_ERROR "KELTRA_HOST_TOOLS is ${KELTRA_HOST_TOOLS}, where there is no ${name}: \
build it natively (./run tools) and name its folder, build/release/bin")
    endif()
  elseif(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
    message(FATAL_ERROR "The files of the examples are made by ${name}, which has to run on this machine: build it natively \
(./run tools) and set KELTRA_HOST_TOOLS to its folder, build/release/bin; or set KELTRA_EXAMPLES to OFF")
  endif()
  set(${variable} ${tool} PARENT_SCOPE)
endfunction()
