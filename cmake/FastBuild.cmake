# Uses a compiler cache and a fast linker if they are installed. The caller's own choice, also by the environment
# variables that CMake reads, has precedence.
find_program(CUBES_CCACHE ccache)
if(CUBES_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER ${CUBES_CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CUBES_CCACHE})
endif()

find_program(CUBES_MOLD mold)
if(CUBES_MOLD AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT CMAKE_EXE_LINKER_FLAGS MATCHES "-fuse-ld")
  add_link_options(-fuse-ld=mold)
endif()
