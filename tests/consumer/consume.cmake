# Installs the library into a new prefix, moves that away, and builds and runs the project against it: with
# find_package, and with pkg-config. The program is the example of README.md, examples/first_matrix.cpp. For another
# platform, a toolchain file and an emulator are passed as well.
function(must_run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

file(READ ${example}.txt expected)
function(must_print_what_is_expected program directory)
  execute_process(COMMAND ${emulator} ${program}${suffix} ${directory} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  string(REPLACE "\r\n" "\n" output "${output}")
  if(NOT output STREQUAL expected)
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()

file(READ ${readme} readme_text)
file(READ ${example}.cpp example_text)
string(FIND "${readme_text}" "```cpp\n${example_text}```" at)
if(at EQUAL -1)
  message(FATAL_ERROR "the example of README.md is not ${example}.cpp")
endif()

file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work})
must_run(${CMAKE_COMMAND} --install ${cubes_build} --prefix ${work}/elsewhere)
file(RENAME ${work}/elsewhere ${work}/prefix)

# The route-storage provider is installed beside the library.
file(GLOB_RECURSE provider ${work}/prefix/*/routeprovider64.dll ${work}/prefix/*/vlinterfaceutilities64.dll)
file(GLOB_RECURSE library ${work}/prefix/*/${library_name})
list(APPEND provider ${library})
list(TRANSFORM provider REPLACE "/[^/]*$" "" OUTPUT_VARIABLE provider_directories)
list(LENGTH provider_directories count)
list(REMOVE_DUPLICATES provider_directories)
list(LENGTH provider_directories places)
if(NOT count EQUAL 3 OR NOT places EQUAL 1)
  message(FATAL_ERROR "not the library and both provider libraries side by side: ${provider}")
endif()

set(toolchain_option)
set(rpath_option)
if(toolchain)
  # On its platform a program finds libraries beside it; this one finds them where they were installed.
  set(ENV{WINEPATH} ${work}/prefix/bin)
  # The toolchain file determines where packages are searched.
  file(GLOB package_directory ${work}/prefix/*/cmake/cubes)
  set(toolchain_option -D CMAKE_TOOLCHAIN_FILE=${toolchain} -D cubes_DIR=${package_directory})
endif()
must_run(${CMAKE_COMMAND} -S ${project} -B ${work}/cmake -G Ninja -D example=${example}.cpp
  -D CMAKE_CXX_COMPILER=${compiler} ${toolchain_option} -D CMAKE_PREFIX_PATH=${work}/prefix -D CMAKE_FIND_PACKAGE_NO_PACKAGE_REGISTRY=ON)
must_run(${CMAKE_COMMAND} --build ${work}/cmake)
must_print_what_is_expected(${work}/cmake/consumer ${work}/project-by-cmake)

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
if(NOT toolchain)
  set(rpath_option -Wl,-rpath,${libdir})
endif()
must_run(${compiler} -std=c++20 ${cflags} ${example}.cpp -o ${work}/consumer${suffix} ${libs} ${rpath_option})
must_print_what_is_expected(${work}/consumer ${work}/project-by-pkg-config)

# A file of another program is read by the installed cubes-reader, which the library finds by its own place.
must_run(/usr/bin/python3 ${write_omx} ${work}/foreign.omx)
execute_process(COMMAND ${emulator} ${work}/cmake/read_omx${suffix} ${work}/foreign.omx
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
string(STRIP "${output}" output)
if(NOT output STREQUAL "10 20 30 0 1 2 3 4 5 6 7 8")
  message(FATAL_ERROR "read_omx printed: ${output}")
endif()

# The tool runs from its installation directory.
set(tool ${emulator} ${work}/prefix/bin/cubes${suffix})
if(EXISTS ${work}/prefix/bin/cubes${suffix})
  must_run(${tool} --version)
  must_run(${tool} init ${work}/project-of-the-tool)
  must_run(${tool} import ${work}/foreign.omx Trips/1/1/1/1 --project ${work}/project-of-the-tool)
endif()
