# What cpack runs on the packages that it has made, for what it can't be told:
# - It writes scripts that call ldconfig. The package has the trigger for that, and Debian wants one of the two.
# - It has no word for "Multi-Arch".
# - It writes the time of day into the package. With SOURCE_DATE_EPOCH the same sources give the same packages.
foreach(package ${CPACK_PACKAGE_FILES})
  set(tree ${package}.tree)
  file(REMOVE_RECURSE ${tree})
  execute_process(COMMAND dpkg-deb -R ${package} ${tree} COMMAND_ERROR_IS_FATAL ANY)
  get_filename_component(file ${package} NAME)
  if(file MATCHES "^libqncorvane")
    file(REMOVE ${tree}/DEBIAN/postinst ${tree}/DEBIAN/postrm)
    file(READ ${tree}/DEBIAN/control control)
    string(STRIP "${control}" control)
    file(WRITE ${tree}/DEBIAN/control "${control}\nMulti-Arch: same\n")
  endif()
  if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find ${tree} -exec touch -h -d @$ENV{SOURCE_DATE_EPOCH} {} + COMMAND_ERROR_IS_FATAL ANY)
  endif()
  execute_process(COMMAND dpkg-deb --root-owner-group -Zxz -b ${tree} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${tree})
endforeach()
