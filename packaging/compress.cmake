# What cpack runs between gathering the files and packing them: Debian wants the manual and the changes compressed.
file(GLOB pages
  ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/man/man*/*.[0-9]
  ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog ${CPACK_TEMPORARY_DIRECTORY}/*/usr/share/doc/*/changelog.Debian)
if(NOT pages)
  message(FATAL_ERROR "nothing to compress in ${CPACK_TEMPORARY_DIRECTORY}")
endif()
execute_process(COMMAND gzip -9nf ${pages} COMMAND_ERROR_IS_FATAL ANY)
