# SPDX-License-Identifier: Zlib
set(KELTRA_ZSH_COMPLETIONS ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING "Folder of completions for zsh")

# keltra_tool_completions(NAME): what three shells complete, made of what the program prints with --help.
function(keltra_tool_completions name)
  if(NOT UNIX OR CMAKE_CROSSCOMPILING)
    return()
  endif()
  set(folder ${CMAKE_BINARY_DIR}/completions)
  set(bash ${folder}/${name})
  set(zsh ${folder}/_${name})
  set(fish ${folder}/${name}.fish)
  file(MAKE_DIRECTORY ${folder})
  foreach(shell bash zsh fish)
    add_custom_command(OUTPUT ${${shell}}
      COMMAND sh -c [["$0" --help | "$1" -v shell="$2" -v tool="$3" -f "$4" >"$5"]] $<TARGET_FILE:${name}> ${KELTRA_AWK}
        ${shell} ${name} ${PROJECT_SOURCE_DIR}/cmake/completions.awk ${${shell}}
      DEPENDS ${name} ${PROJECT_SOURCE_DIR}/cmake/completions.awk
      VERBATIM)
  endforeach()
  add_custom_target(${name}-completions ALL DEPENDS ${bash} ${zsh} ${fish})
  install(FILES ${bash} DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools OPTIONAL)
  install(FILES ${zsh} DESTINATION ${KELTRA_ZSH_COMPLETIONS} COMPONENT tools OPTIONAL)
  install(FILES ${fish} DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT tools OPTIONAL)
endfunction()

# keltra_install_tool(NAME [DATA file...]): the program, its manual page, completions, and files that it reads from share/keltra.
# What has not been built is left out.
function(keltra_install_tool name)
  if(NOT KELTRA_INSTALL)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 TOOL "" "" "DATA")
  install(TARGETS ${name} RUNTIME COMPONENT tools OPTIONAL)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/${name}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  keltra_tool_completions(${name})
  install(FILES ${TOOL_DATA} DESTINATION ${CMAKE_INSTALL_DATADIR}/keltra COMPONENT tools OPTIONAL)
endfunction()
