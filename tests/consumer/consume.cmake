# Installs the library into a fresh prefix, moves that away, and builds and runs the project
# against it: with find_package, and with pkg-config.
function(must_run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work})
must_run(${CMAKE_COMMAND} --install ${cubes_build} --prefix ${work}/elsewhere)
file(RENAME ${work}/elsewhere ${work}/prefix)

must_run(${CMAKE_COMMAND} -S ${project} -B ${work}/cmake -G Ninja
  -D CMAKE_CXX_COMPILER=${compiler} -D CMAKE_PREFIX_PATH=${work}/prefix -D CMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON)
must_run(${CMAKE_COMMAND} --build ${work}/cmake)
must_run(${work}/cmake/consumer ${work}/project-by-cmake)

file(GLOB_RECURSE package ${work}/prefix/*/cubes.pc)
cmake_path(GET package PARENT_PATH package_directory)
set(ENV{PKG_CONFIG_PATH} ${package_directory})
find_program(pkg_config pkg-config REQUIRED)
foreach(what cflags libs)
  execute_process(COMMAND ${pkg_config} --${what} cubes
    OUTPUT_VARIABLE ${what} OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  separate_arguments(${what} UNIX_COMMAND "${${what}}")
endforeach()
execute_process(COMMAND ${pkg_config} --variable=libdir cubes
  OUTPUT_VARIABLE libdir OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
must_run(${compiler} -std=c++20 ${cflags} ${project}/main.cpp -o ${work}/consumer ${libs} -Wl,-rpath,${libdir})
must_run(${work}/consumer ${work}/project-by-pkg-config)

# The tool runs from where it was installed.
if(EXISTS ${work}/prefix/bin/cubes)
  must_run(${work}/prefix/bin/cubes --version)
endif()
