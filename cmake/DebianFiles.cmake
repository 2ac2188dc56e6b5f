# Adds the files that only the Debian package has. CPack runs this after the installation.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
set(changelog ${share}/doc/${CPACK_PACKAGE_NAME}/changelog.Debian)
string(TIMESTAMP day "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changelog}
  "${CPACK_PACKAGE_NAME} (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) stable; urgency=medium\n\n"
  "  * CHANGELOG.md lists the changes.\n\n"
  " -- ${CPACK_PACKAGE_CONTACT}  ${day}\n")
set(overrides ${share}/lintian/overrides/${CPACK_PACKAGE_NAME})
configure_file(${CMAKE_CURRENT_LIST_DIR}/lintian-overrides ${overrides} COPYONLY)
file(CHMOD ${overrides} PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

file(GLOB pages ${share}/man/man1/*.1)
foreach(file ${changelog} ${pages})
  execute_process(COMMAND gzip -9n ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
