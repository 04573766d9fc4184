# One imported target per dependency, the same names on every platform.
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)

function(dep_library target header library)
  cmake_parse_arguments(A "" "" "SUFFIXES;LINK" ${ARGN})
  string(MAKE_C_IDENTIFIER ${target} v)
  find_path(${v}_INCLUDE ${header} PATH_SUFFIXES ${A_SUFFIXES} REQUIRED)
  find_library(${v}_LIBRARY NAMES ${library} PATH_SUFFIXES ${A_SUFFIXES} REQUIRED)
  add_library(${target} UNKNOWN IMPORTED)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION "${${v}_LIBRARY}")
  target_include_directories(${target} INTERFACE "${${v}_INCLUDE}")
  target_link_libraries(${target} INTERFACE ${A_LINK})
endfunction()

function(dep_headers target header)
  string(MAKE_C_IDENTIFIER ${target} v)
  find_path(${v}_INCLUDE ${header} REQUIRED)
  add_library(${target} INTERFACE IMPORTED)
  target_include_directories(${target} INTERFACE "${${v}_INCLUDE}")
  target_compile_definitions(${target} INTERFACE ${ARGN})
endfunction()

dep_library(dep::sqlite sqlite3.h sqlite3 LINK Threads::Threads)
dep_library(dep::pq libpq-fe.h pq SUFFIXES postgresql)
dep_library(dep::hdf5 hdf5.h hdf5 LINK ZLIB::ZLIB $<$<PLATFORM_ID:Windows>:ws2_32> SUFFIXES hdf5/serial)
if(NOT WIN32)
  # The library and the provider share it and do not exclude each other. On Windows each has its own.
  include(CheckSourceCompiles)
  set(CMAKE_REQUIRED_INCLUDES ${dep__hdf5_INCLUDE})
  check_source_compiles(C "#include <hdf5.h>
    #ifndef H5_HAVE_THREADSAFE
    #error
    #endif
    int main(void) { return 0; }" CUBES_HDF5_HAS_THREADS)
  unset(CMAKE_REQUIRED_INCLUDES)
  if(NOT CUBES_HDF5_HAS_THREADS)
    message(FATAL_ERROR "HDF5 was built without thread support (H5_HAVE_THREADSAFE); install one with it")
  endif()
endif()
dep_library(dep::deflate libdeflate.h deflate)
dep_library(dep::fmt fmt/format.h fmt)
dep_headers(dep::xxhash xxhash.h XXH_INLINE_ALL=1)
dep_headers(dep::toml toml++/toml.h)
if(CUBES_BUILD_TOOL)
  dep_headers(dep::cli11 CLI/CLI.hpp)
  dep_headers(dep::json nlohmann/json.hpp)
endif()
