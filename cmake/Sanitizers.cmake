# CUBES_SANITIZE: the sanitizers with which everything is built ("address,undefined", "thread"). A finding ends the
# program with an error.
set(CUBES_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas; empty: none")
if(CUBES_SANITIZE)
  # -O1 keeps the instrumented library fast and the frame pointer keeps stack traces complete; -g1 is enough for their
  # line numbers.
  add_compile_options(-fsanitize=${CUBES_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1)
  add_link_options(-fsanitize=${CUBES_SANITIZE})
endif()
