# cubes_parts_test(NAME SOURCE...): a test program of the tool's internals. Like the tool itself it is linked with the
# shared library.
function(cubes_parts_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE cubes_tool_parts cubes_test_support cubes_warnings GTest::gtest_main)
  cubes_discover_tests(${name})
endfunction()

add_subdirectory(formats)
add_subdirectory(routes)
add_subdirectory(city)
