# Before a package is packed: manual pages and changelogs are compressed, the same each time.
file(GLOB_RECURSE documents ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*.1 ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/changelog)
list(FILTER documents INCLUDE REGEX "/man1/|/changelog$")  # no library, which ends with a number, too
if(documents)
  execute_process(COMMAND gzip -9 -n -f ${documents} COMMAND_ERROR_IS_FATAL ANY)
endif()
