# Builds for 64-bit Windows with MinGW-w64 (POSIX threads), on Linux. Programs that the build or its tests run are run
# by Wine. scripts/setup-windows installs the compiler and the libraries.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(triple x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

if(DEFINED ENV{CUBES_WINDOWS_DEPS})
  set(CUBES_WINDOWS_DEPS $ENV{CUBES_WINDOWS_DEPS})
else()
  set(CUBES_WINDOWS_DEPS $ENV{HOME}/.cache/cubes-windows)
endif()

# Headers and libraries of the host are not used; its programs are.
set(CMAKE_FIND_ROOT_PATH ${CUBES_WINDOWS_DEPS} /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../tests/support/wine)
