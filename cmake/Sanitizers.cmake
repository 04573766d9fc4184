# CUBES_SANITIZE: the sanitizers that everything is built with ("address,undefined", "thread").
# What they find ends the program.
set(CUBES_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas; empty: none")
if(CUBES_SANITIZE)
  # -O1 keeps the instrumented library quick; the frame pointer keeps stack traces whole, which tell
  # lines with -g1 already.
  add_compile_options(-fsanitize=${CUBES_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -O1 -g1)
  add_link_options(-fsanitize=${CUBES_SANITIZE})
endif()
