# SPDX-License-Identifier: Zlib
# How other projects find and link the library: keltra::keltra, keltra::kit for the kit, and keltra::sdl and keltra::gles for an application that calls
# SDL or GL itself. The names are the same from an installed package, from a build folder and with add_subdirectory.
add_library(keltra::keltra ALIAS keltra)
add_library(keltra_sdl INTERFACE)
add_library(keltra::sdl ALIAS keltra_sdl)
target_include_directories(keltra_sdl SYSTEM INTERFACE ${SDL_INCLUDE_DIRS})
target_compile_options(keltra_sdl INTERFACE ${SDL_CFLAGS_OTHER})
target_link_libraries(keltra_sdl INTERFACE ${SDL_LINK_LIBRARIES})
add_library(keltra_gles INTERFACE)
add_library(keltra::gles ALIAS keltra_gles)
target_include_directories(keltra_gles SYSTEM INTERFACE ${GLES_INCLUDE_DIRS})
target_link_libraries(keltra_gles INTERFACE ${GLES_LINK_LIBRARIES})

# cpack --config CPackSourceConfig.cmake: an archive of the sources, without what is built in them.
if(PROJECT_IS_TOP_LEVEL)
  string(REGEX REPLACE "([][+.*?()^$])" "\\\\\\1" folder ${PROJECT_SOURCE_DIR})
  set(CPACK_SOURCE_GENERATOR TGZ)
  set(CPACK_SOURCE_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION})
  set(CPACK_SOURCE_IGNORE_FILES "^${folder}/build/" "^${folder}/\\\\.git$" "^${folder}/\\\\.git/" "^${folder}/\\\\.cache/")
  set(CPACK_VERBATIM_VARIABLES ON)
  include(CPack)
endif()

if(NOT KELTRA_INSTALL)
  return()
endif()
include(CMakePackageConfigHelpers)
set(KELTRA_CMAKE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/keltra)

# What has not been built is left out. The kit has an export of its own, so that the library is found without it.
foreach(library keltra keltra_kit)
  install(TARGETS ${library} EXPORT ${library}
    RUNTIME COMPONENT runtime OPTIONAL
    LIBRARY COMPONENT runtime OPTIONAL NAMELINK_COMPONENT development
    ARCHIVE COMPONENT development OPTIONAL)
endforeach()
install(DIRECTORY include/keltra DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT keltra NAMESPACE keltra:: FILE keltra-library.cmake DESTINATION ${KELTRA_CMAKE_FOLDER} COMPONENT development)
install(EXPORT keltra_kit NAMESPACE keltra:: FILE keltra-kit.cmake DESTINATION ${KELTRA_CMAKE_FOLDER} COMPONENT development)
export(EXPORT keltra NAMESPACE keltra:: FILE ${PROJECT_BINARY_DIR}/keltra-library.cmake)
export(EXPORT keltra_kit NAMESPACE keltra:: FILE ${PROJECT_BINARY_DIR}/keltra-kit.cmake)

configure_package_config_file(cmake/keltra-config.cmake.in ${PROJECT_BINARY_DIR}/keltra-config.cmake
  INSTALL_DESTINATION ${KELTRA_CMAKE_FOLDER} PATH_VARS CMAKE_INSTALL_BINDIR NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/keltra-config-version.cmake COMPATIBILITY SameMajorVersion)
configure_file(cmake/keltra-assets.cmake ${PROJECT_BINARY_DIR}/keltra-assets.cmake COPYONLY)
install(FILES ${PROJECT_BINARY_DIR}/keltra-config.cmake ${PROJECT_BINARY_DIR}/keltra-config-version.cmake cmake/keltra-assets.cmake
  DESTINATION ${KELTRA_CMAKE_FOLDER} COMPONENT development)

# The prefix is found from where the file lies, so that the installed tree may be moved.
file(RELATIVE_PATH KELTRA_PC_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
set(KELTRA_PC_NEEDS "sdl egl glesv1_cm tinyxml")
if(KELTRA_VIDEO)
  string(APPEND KELTRA_PC_NEEDS " libmpeg2 libmpeg2convert")
endif()
configure_file(cmake/keltra.pc.in ${PROJECT_BINARY_DIR}/keltra.pc @ONLY)
configure_file(cmake/keltra-kit.pc.in ${PROJECT_BINARY_DIR}/keltra-kit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/keltra.pc ${PROJECT_BINARY_DIR}/keltra-kit.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

if(KELTRA_TOOLS AND UNIX)
  install(PROGRAMS tests/support/with_screen.sh RENAME keltra-screen DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tools)
  install(FILES docs/man/keltra-screen.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
endif()
if(KELTRA_EXAMPLES AND UNIX)
  set(KELTRA_EXAMPLE_FOLDER ${CMAKE_INSTALL_FULL_LIBDIR}/keltra/examples)
  configure_file(packaging/keltra-demo.desktop.in ${PROJECT_BINARY_DIR}/keltra-demo.desktop @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/keltra-demo.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT examples)
  set(KELTRA_GAME_FOLDER ${CMAKE_INSTALL_FULL_LIBDIR}/keltra/games/lantern_walk)
  configure_file(packaging/lantern-walk.desktop.in ${PROJECT_BINARY_DIR}/lantern-walk.desktop @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/lantern-walk.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT examples)
  install(FILES packaging/keltra-demo.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT examples)
  install(FILES packaging/keltra-demo.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps COMPONENT examples)
endif()

# Sections 3 and 5; the pages of section 1 belong to their programs.
if(KELTRA_MANUAL)
  find_program(KELTRA_DOXYGEN doxygen REQUIRED)
  find_program(KELTRA_PANDOC pandoc REQUIRED)
  set(KELTRA_MANUAL_FOLDER ${PROJECT_BINARY_DIR}/manual)
  # The time of the sources where the environment names one, so that the pages are the same whenever they are made.
  string(TIMESTAMP KELTRA_MANUAL_DATE "%Y-%m-%d" UTC)
  file(GLOB_RECURSE KELTRA_MANUAL_SOURCES CONFIGURE_DEPENDS include/keltra/*.h docs/formats/*.md)
  add_custom_command(OUTPUT ${KELTRA_MANUAL_FOLDER}/made
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/manual/pages.sh ${PROJECT_SOURCE_DIR} ${KELTRA_MANUAL_FOLDER} ${PROJECT_VERSION}
      ${KELTRA_MANUAL_DATE}
    COMMAND ${CMAKE_COMMAND} -E touch ${KELTRA_MANUAL_FOLDER}/made
    DEPENDS ${KELTRA_MANUAL_SOURCES} docs/Doxyfile cmake/manual/pages.sh cmake/manual/page.lua cmake/manual/tidy.awk
    COMMENT "Making manual pages of the headers and file formats"
    VERBATIM)
  add_custom_target(keltra_manual ALL DEPENDS ${KELTRA_MANUAL_FOLDER}/made)
  install(DIRECTORY ${KELTRA_MANUAL_FOLDER}/man3 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT development)
  install(DIRECTORY ${KELTRA_MANUAL_FOLDER}/man5 DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT tools)
endif()

install(FILES README.md CHANGELOG.md SECURITY.md LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT docs)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT docs
  PATTERN Doxyfile EXCLUDE PATTERN man EXCLUDE)
