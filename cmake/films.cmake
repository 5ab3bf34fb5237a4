# SPDX-License-Identifier: Zlib
# keltra_film(FILE SOURCE [OPTION...]): a file with nothing but an MPEG-1 video stream, encoded when the project is built from a
# picture source of ffmpeg. The same version of ffmpeg makes the same bytes each time.
find_program(KELTRA_FFMPEG ffmpeg)

function(keltra_film file source)
  get_filename_component(folder ${file} DIRECTORY)
  get_filename_component(name ${file} NAME)
  add_custom_command(OUTPUT ${file}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${KELTRA_FFMPEG} -v error -y -f lavfi -i ${source} -threads 1 -fflags +bitexact -flags:v +bitexact
      -c:v mpeg1video ${ARGN} -f mpeg1video ${file}
    COMMENT "Encoding ${name}"
    VERBATIM)
endfunction()
