# Runs an example in a fresh project directory. Fails unless it exits with 0 and prints the expected text.
unset(ENV{CUBES_DATABASE})
file(REMOVE_RECURSE ${project})
execute_process(COMMAND ${emulator} ${program} ${project} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\r\n" "\n" output "${output}")
file(READ ${expected} text)
if(NOT output STREQUAL text)
  message(FATAL_ERROR "${program} printed:\n${output}expected:\n${text}")
endif()
