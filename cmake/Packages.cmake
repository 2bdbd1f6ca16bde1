# The Debian packages: what cpack makes of a build for the prefix /usr (the preset "package"; ./dev package does it all).

set(packages runtime=libqncorvane1 development=libqncorvane-dev program=qncorvane python=python3-qncorvane)
set(debian_version ${PROJECT_VERSION}-1)
# No address takes mail for the project, and this one says so.
set(maintainer "QNCORVANE developers <developers@qncorvane.invalid>")

# What every package brings beside its own. A tree that is installed by hand has no use for these files, so that they
# belong to the packages alone.
string(TIMESTAMP debian_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(packaging/changelog.in packaging/changelog @ONLY)
foreach(pair ${packages})
  string(REPLACE "=" ";" pair ${pair})
  list(POP_FRONT pair component package)
  set(doc ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES packaging/copyright DESTINATION ${doc} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/packaging/changelog
    DESTINATION ${doc} RENAME changelog.Debian COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES CHANGELOG.md DESTINATION ${doc} RENAME changelog COMPONENT ${component} EXCLUDE_FROM_ALL)
  set(overrides "")
  if(EXISTS ${PROJECT_SOURCE_DIR}/packaging/${package}.lintian-overrides)
    file(READ packaging/${package}.lintian-overrides overrides)
  endif()
  configure_file(packaging/lintian-overrides.in packaging/overrides/${package} @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/packaging/overrides/${package}
    DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides COMPONENT ${component} EXCLUDE_FROM_ALL)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
endforeach()

# What is to be read, for those who build a host and for those who make a store.
set(doc ${CMAKE_INSTALL_DATADIR}/doc)
install(DIRECTORY docs/ DESTINATION ${doc}/libqncorvane-dev COMPONENT development EXCLUDE_FROM_ALL)
install(DIRECTORY examples DESTINATION ${doc}/libqncorvane-dev COMPONENT development EXCLUDE_FROM_ALL
  FILES_MATCHING PATTERN *.md PATTERN *.java PATTERN *.cs)
install(DIRECTORY samples/schema DESTINATION ${doc}/qncorvane/examples COMPONENT program EXCLUDE_FROM_ALL)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qncorvane)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGE_CONTACT ${maintainer})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development program python)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/compress.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/repack.cmake)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SOURCE qncorvane)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)

set(about "The engine takes a store's promotion rules and each sale as XML, decides
which of fifteen kinds of promotion apply and how they stack, and puts the
discounts on the sale's lines so that the cents add up. Detail data comes
from the store's own database.
")

set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "promotion calculation engine of a point of sale - libraries
${about}
This package has both libraries: libqncorvane-host.so.1, the safe face for
hosts with threads, and libQNCORVANE.so, the eight calls. Store databases on
SQLite need libqt5sql5-sqlite, those on MySQL and MariaDB libqt5sql5-mysql,
those on SQL Server, Oracle and Access libqt5sql5-odbc.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS libqt5sql5-sqlite)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SUGGESTS "libqt5sql5-mysql, libqt5sql5-odbc")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# It brings the loader's cache up to date.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/packaging/triggers)

set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "promotion calculation engine of a point of sale - development files
${about}
This package has what a host in C or C++ is built with: headers, the CMake
package QNCORVANE, and the pkg-config modules qncorvane-host and qncorvane.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libqncorvane1 (= ${debian_version})")
# For the one header that has Qt's types in it, SqlArg.h.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS qtbase5-dev)

set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "promotion calculation engine of a point of sale - program
${about}
This package has the program qncorvane: it makes a store, looks through one
for what is wrong with it, and runs sales through the engine.")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "libqncorvane1 (= ${debian_version})")
# The till is the Python package's.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS python3-qncorvane)
# dpkg-shlibdeps is to find the library that the program needs, and asks no package for it: it stands above.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(CPACK_DEBIAN_PYTHON_DESCRIPTION "promotion calculation engine of a point of sale - Python 3
${about}
This package has the Python package qncorvane: an engine as a context manager,
sales, results and explanations as data classes, money as Decimal. It brings
the till of 'qncorvane till', whose screen needs python3-prompt-toolkit.")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3:any (>= 3.11~), libqncorvane1 (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-prompt-toolkit)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
  ${PROJECT_SOURCE_DIR}/packaging/python3-qncorvane/postinst ${PROJECT_SOURCE_DIR}/packaging/python3-qncorvane/prerm)

include(CPack)
