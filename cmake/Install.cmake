# Installs the library, its headers, a CMake package and a pkg-config file. (The tool is installed by its own
# CMakeLists.txt.) No installed file contains the path of the build or installation directory.
include(CMakePackageConfigHelpers)

set(cubes_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/cubes)
set(cubes_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH cubes_prefix_from_pkgconfig
  ${CMAKE_INSTALL_PREFIX}/${cubes_pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})

install(TARGETS cubes EXPORT cubes
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/cubes DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_BINARY_DIR}/generated/cubes/Export.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/cubes)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} FILES_MATCHING PATTERN *.cpp)

install(EXPORT cubes NAMESPACE cubes:: FILE cubesTargets.cmake DESTINATION ${cubes_cmake_dir})
configure_package_config_file(cmake/cubesConfig.cmake.in ${PROJECT_BINARY_DIR}/cubesConfig.cmake
  INSTALL_DESTINATION ${cubes_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/cubesConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/cubesConfig.cmake ${PROJECT_BINARY_DIR}/cubesConfigVersion.cmake
  DESTINATION ${cubes_cmake_dir})

# The build target "package" makes a zip of the installation, which runs where it is unpacked.
if(WIN32)
  if(CUBES_WINDOWS_DEPS)
    install(DIRECTORY ${CUBES_WINDOWS_DEPS}/licences DESTINATION ${CMAKE_INSTALL_DOCDIR})
  endif()
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME cubes-${PROJECT_VERSION}-win64)
  include(CPack)
endif()

configure_file(cmake/cubes.pc.in ${PROJECT_BINARY_DIR}/cubes.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/cubes.pc DESTINATION ${cubes_pkgconfig_dir})
