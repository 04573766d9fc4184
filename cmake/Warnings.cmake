# One interface target that every target of ours links: the warnings we live by.
add_library(cubes_warnings INTERFACE)
target_compile_options(cubes_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor
  $<$<BOOL:${CUBES_WARNINGS_AS_ERRORS}>:-Werror>)
