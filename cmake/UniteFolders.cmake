# cubes_unite_folders(TARGET): if CMAKE_UNITY_BUILD is on, the files of a folder are compiled as one, which takes a
# fifth of the time: most of it is spent on the standard library's headers.
function(cubes_unite_folders target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(GET folder FILENAME folder)
    set_property(SOURCE ${source} TARGET_DIRECTORY ${target} PROPERTY UNITY_GROUP "${folder}")
  endforeach()
endfunction()

# compiled_alone(SOURCE...): excludes files that use the same names as others of their folder.
function(compiled_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
