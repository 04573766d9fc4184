# What the commands are made of: file formats, routes, statistics, the made-up city. A library of its own,
# so that tests can link it.
add_library(cubes_tool_parts STATIC
  Paths.cpp
  Paths_${platform}.cpp
  PutInPlace_${platform}.cpp
  formats/CellList.cpp
  formats/CsvColumns.cpp
  formats/CsvLines.cpp
  formats/CsvLongForm.cpp
  formats/CsvReader.cpp
  formats/CsvWideForm.cpp
  formats/CsvWriter.cpp
  formats/FormatError.cpp
  formats/Formats.cpp
  formats/MatrixTable.cpp
  formats/NumberText.cpp
  formats/Omx.cpp
  formats/TntpReader.cpp
  formats/TntpScanner.cpp
  formats/WholeFile.cpp
  routes/RouteDataCsv.cpp
  routes/RouteFiles.cpp
  routes/RoutesCsv.cpp
  routes/SelectLink.cpp
  statistics/Statistics.cpp
  city/City.cpp
  city/Demand.cpp
  city/Gravity.cpp
  city/Layout.cpp
  city/ModeChoice.cpp
  city/Roads.cpp
  city/SelectedLink.cpp
  city/Travel.cpp)
target_include_directories(cubes_tool_parts PUBLIC ${PROJECT_SOURCE_DIR}/src)
target_link_libraries(cubes_tool_parts PUBLIC cubes PRIVATE cubes_warnings dep::fmt)
cubes_unite_folders(cubes_tool_parts)
