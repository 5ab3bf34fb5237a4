# Soft-float ARM, the instruction set of the devices: no floating-point unit, so every float operation is a call.
# On Debian: dpkg --add-architecture armel, then g++-arm-linux-gnueabi and the armel packages of SDL, EGL and GLES
# (libsdl1.2-dev:armel libegl-dev:armel libgles-dev:armel).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(CMAKE_C_COMPILER arm-linux-gnueabi-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabi-g++)
set(CMAKE_C_FLAGS_INIT "-march=armv5te -mfloat-abi=soft")
set(CMAKE_CXX_FLAGS_INIT "-march=armv5te -mfloat-abi=soft")

set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabi)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/arm-linux-gnueabi/pkgconfig:/usr/share/pkgconfig)
