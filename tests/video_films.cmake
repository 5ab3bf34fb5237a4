# SPDX-License-Identifier: Zlib
# The films of the tests, and the pictures of one as ffmpeg decodes it.
if(NOT KELTRA_FFMPEG)
  message(FATAL_ERROR "The tests of videos need ffmpeg to make their films; or build with KELTRA_VIDEO=OFF")
endif()
set(KELTRA_TEST_FILMS ${CMAKE_CURRENT_BINARY_DIR}/films)
set(KELTRA_TEST_CODING -b:v 300k -g 10 -bf 2)
keltra_film(${KELTRA_TEST_FILMS}/wide.m1v testsrc2=size=64x48:rate=25:duration=2 ${KELTRA_TEST_CODING})
keltra_film(${KELTRA_TEST_FILMS}/small.m1v testsrc2=size=32x32:rate=25:duration=1 ${KELTRA_TEST_CODING})
add_custom_command(OUTPUT ${KELTRA_TEST_FILMS}/wide.rgb
  COMMAND ${KELTRA_FFMPEG} -v error -y -threads 1 -f mpegvideo -i ${KELTRA_TEST_FILMS}/wide.m1v
    -vsync passthrough -sws_flags neighbor+accurate_rnd+full_chroma_int -pix_fmt rgb24 -f rawvideo ${KELTRA_TEST_FILMS}/wide.rgb
  DEPENDS ${KELTRA_TEST_FILMS}/wide.m1v
  VERBATIM)
add_custom_target(keltra_test_films
  DEPENDS ${KELTRA_TEST_FILMS}/wide.rgb ${KELTRA_TEST_FILMS}/small.m1v)
