# What the commands are built from: file formats, routes, statistics, the demo city. A library of its own,
# so that tests can link it.
add_library(cubes_tool_parts STATIC
  Errors.cpp
  Progress.cpp
  Statistics.cpp
  Text.cpp
  formats/Csv.cpp
  formats/CsvLines.cpp
  formats/Formats.cpp
  formats/Tntp.cpp
  formats/TripTable.cpp
  formats/WholeFile.cpp
  routes/RouteDataCsv.cpp
  routes/RouteFiles.cpp
  routes/RoutesCsv.cpp
  city/City.cpp
  city/Demand.cpp
  city/Roads.cpp
  city/Travel.cpp
  city/Zones.cpp)
target_include_directories(cubes_tool_parts PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(cubes_tool_parts PUBLIC cubes cubes_platform PRIVATE cubes_warnings dep::fmt)
cubes_unite_folders(cubes_tool_parts)
