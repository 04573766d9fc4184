# Installs the library into a fresh prefix, moves that away, and builds and runs the project
# against it: with find_package, and with pkg-config. The program is the example of the README.
function(must_run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

# Runs the built program, which stores one cell and prints it as it was read back.
function(must_print_the_cell program directory)
  execute_process(COMMAND ${program} ${directory} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  if(NOT output STREQUAL "12.5\n")
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()

file(READ ${readme} readme_text)
file(READ ${project}/main.cpp example)
string(FIND "${readme_text}" "```cpp\n${example}```" at)
if(at EQUAL -1)
  message(FATAL_ERROR "the example of README.md is not tests/consumer/project/main.cpp")
endif()

file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work})
must_run(${CMAKE_COMMAND} --install ${cubes_build} --prefix ${work}/elsewhere)
file(RENAME ${work}/elsewhere ${work}/prefix)

# The route-storage provider lies beside the library.
file(GLOB_RECURSE provider ${work}/prefix/*/routeprovider64.dll ${work}/prefix/*/vlinterfaceutilities64.dll)
file(GLOB_RECURSE library ${work}/prefix/*/libcubes.so)
list(APPEND provider ${library})
list(TRANSFORM provider REPLACE "/[^/]*$" "" OUTPUT_VARIABLE provider_directories)
list(LENGTH provider_directories count)
list(REMOVE_DUPLICATES provider_directories)
list(LENGTH provider_directories places)
if(NOT count EQUAL 3 OR NOT places EQUAL 1)
  message(FATAL_ERROR "not the library and both provider libraries side by side: ${provider}")
endif()

must_run(${CMAKE_COMMAND} -S ${project} -B ${work}/cmake -G Ninja
  -D CMAKE_CXX_COMPILER=${compiler} -D CMAKE_PREFIX_PATH=${work}/prefix -D CMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON)
must_run(${CMAKE_COMMAND} --build ${work}/cmake)
must_print_the_cell(${work}/cmake/consumer ${work}/project-by-cmake)

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
must_print_the_cell(${work}/consumer ${work}/project-by-pkg-config)

# The tool runs from where it was installed.
if(EXISTS ${work}/prefix/bin/cubes)
  must_run(${work}/prefix/bin/cubes --version)
endif()
