# No tool here reads this compiler's debug information on Windows, but loading it slows down every program.
add_link_options(-s)

# The run-time libraries, copied to the directory of every program and library for Windows, in the build and in an
# installation. Debian's contain many megabytes of debug information, which are removed.
set(CUBES_RUNTIME_LIBRARIES ${CMAKE_BINARY_DIR}/runtime)

foreach(name libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
    OUTPUT_VARIABLE library OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT IS_ABSOLUTE ${library})
    find_file(library_of_${name} ${name} PATH_SUFFIXES lib REQUIRED)
    set(library ${library_of_${name}})
  endif()
  file(MAKE_DIRECTORY ${CUBES_RUNTIME_LIBRARIES})
  execute_process(COMMAND ${CMAKE_STRIP} -o ${CUBES_RUNTIME_LIBRARIES}/${name} ${library} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
find_file(CUBES_LIBPQ libpq.dll PATH_SUFFIXES bin REQUIRED)
file(COPY ${CUBES_LIBPQ} DESTINATION ${CUBES_RUNTIME_LIBRARIES})

# cubes_runtime_beside(DIRECTORY): copies them to a directory.
function(cubes_runtime_beside directory)
  file(GLOB libraries ${CUBES_RUNTIME_LIBRARIES}/*.dll)
  file(COPY ${libraries} DESTINATION ${directory})
endfunction()

cubes_runtime_beside(${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
install(DIRECTORY ${CUBES_RUNTIME_LIBRARIES}/ DESTINATION ${CMAKE_INSTALL_BINDIR})
