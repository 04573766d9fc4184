# Packs the zip, unpacks it elsewhere, and with the unpacked tool creates the demo project and imports a file.
cmake_minimum_required(VERSION 3.25)
file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work}/unpacked)

execute_process(COMMAND ${cpack} --config ${config} -B ${work} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB zip ${work}/*.zip)
file(ARCHIVE_EXTRACT INPUT ${zip} DESTINATION ${work}/unpacked)
file(GLOB top ${work}/unpacked/*)

foreach(name
    bin/cubes.exe bin/cubes.dll bin/cubes-reader.exe bin/routeprovider64.dll bin/vlinterfaceutilities64.dll
    bin/libpq.dll bin/libstdc++-6.dll bin/libgcc_s_seh-1.dll bin/libwinpthread-1.dll
    lib/libcubes.dll.a lib/cmake/cubes/cubesConfig.cmake include/cubes/cubes.h
    share/doc/cubes/licences/hdf5.txt share/doc/cubes/licences/gcc-mingw-w64-base.txt)
  if(NOT EXISTS ${top}/${name})
    message(FATAL_ERROR "the zip does not contain ${name}")
  endif()
endforeach()

# The demo has routes, so the provider must be found in the unpacked directory.
execute_process(COMMAND ${run} ${top}/bin/cubes.exe demo city WORKING_DIRECTORY ${work}
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${run} ${top}/bin/cubes.exe list WORKING_DIRECTORY ${work}/city
  OUTPUT_VARIABLE cubes COMMAND_ERROR_IS_FATAL ANY)
message("${output}\n${cubes}")

# A file of another program is read by cubes-reader, which must be found there too.
execute_process(COMMAND /usr/bin/python3 ${write_omx} ${work}/city/foreign.omx COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${run} ${top}/bin/cubes.exe import foreign.omx Trips/9/9/9/9 WORKING_DIRECTORY ${work}/city
  COMMAND_ERROR_IS_FATAL ANY)
foreach(cube Trips skim routes)
  if(NOT cubes MATCHES "${cube}")
    message(FATAL_ERROR "the demo did not create ${cube}")
  endif()
endforeach()
