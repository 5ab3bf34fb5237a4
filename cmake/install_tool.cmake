# SPDX-License-Identifier: Zlib
# keltra_install_tool(NAME [DATA file...]): the program, its manual page, and files that it reads from share/keltra. What has not
# been built is left out.
function(keltra_install_tool name)
  if(NOT KELTRA_INSTALL)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 TOOL "" "" "DATA")
  install(TARGETS ${name} EXPORT keltra-tools RUNTIME COMPONENT tools OPTIONAL)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/man/${name}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${TOOL_DATA} DESTINATION ${CMAKE_INSTALL_DATADIR}/keltra COMPONENT tools OPTIONAL)
endfunction()
