# Installs the library with its headers and a CMake package, so that a host finds it with find_package(QNCORVANE).
include(CMakePackageConfigHelpers)

install(TARGETS QNCORVANE EXPORT QNCORVANETargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/qncorvane DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT QNCORVANETargets NAMESPACE QNCORVANE:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QNCORVANE)
configure_package_config_file(cmake/QNCORVANEConfig.cmake.in QNCORVANEConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QNCORVANE)
write_basic_package_version_file(QNCORVANEConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QNCORVANEConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/QNCORVANEConfigVersion.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QNCORVANE)
