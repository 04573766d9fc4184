# The compiler warnings: an interface target that every target links.
add_library(cubes_warnings INTERFACE)
target_compile_options(cubes_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
  $<$<BOOL:${CUBES_WARNINGS_AS_ERRORS}>:-Werror>)
