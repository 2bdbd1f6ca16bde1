# Installs both libraries with their headers, a CMake package and a file of pkg-config for each, so that a host finds them
# with find_package(QNCORVANE) or pkg-config. The components are what packages are cut along: see Packages.cmake.
include(CMakePackageConfigHelpers)

# The name without a number belongs to what runs: tills load "libQNCORVANE.so" by it, and those that were linked with
# versions before 1.2 ask the loader for it.
install(TARGETS QNCORVANE EXPORT QNCORVANETargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT runtime)
# Of the other library it is the linker's alone, as of any.
install(TARGETS qncorvane_host EXPORT QNCORVANETargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
install(DIRECTORY include/qncorvane DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)

set(cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/QNCORVANE)
install(EXPORT QNCORVANETargets NAMESPACE QNCORVANE:: DESTINATION ${cmake_dir} COMPONENT development)
configure_package_config_file(cmake/QNCORVANEConfig.cmake.in QNCORVANEConfig.cmake INSTALL_DESTINATION ${cmake_dir})
write_basic_package_version_file(QNCORVANEConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QNCORVANEConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/QNCORVANEConfigVersion.cmake
  DESTINATION ${cmake_dir} COMPONENT development)

# The way from where the files of pkg-config lie to the prefix, so that the tree works wherever it is installed.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH pkgconfig_to_prefix /${pkgconfig_dir} /)
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix ${pkgconfig_to_prefix})
foreach(name qncorvane qncorvane-host)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endforeach()

# The Python package goes where the distribution's own modules are, if that is where everything goes. Elsewhere pip knows
# better: pip install ./bindings/python.
set(python_dir "")
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(python_dir lib/python3/dist-packages)
endif()
set(QNCORVANE_PYTHON_DIR "${python_dir}" CACHE STRING "Where the Python package goes below the prefix; empty for nowhere")
if(QNCORVANE_PYTHON_DIR)
  install(DIRECTORY bindings/python/src/qncorvane DESTINATION ${QNCORVANE_PYTHON_DIR} COMPONENT python
    PATTERN __pycache__ EXCLUDE)
  set(python_info qncorvane-${PROJECT_VERSION}.dist-info)
  configure_file(cmake/METADATA.in ${python_info}/METADATA @ONLY)
  install(DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${python_info} DESTINATION ${QNCORVANE_PYTHON_DIR} COMPONENT python)
endif()
