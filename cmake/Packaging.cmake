# Installation, and the packages that CPack builds.
include(GNUInstallDirs)

# The documents keep the layout of the repository, so that their links work. The Windows package
# has the programs in the same folder.
if(WIN32)
  set(program_folder .)
  set(document_folder .)
  set(copyright copyright.txt)
  set(other_parts "
The programs contain, unchanged, Qt 6 Core (Copyright The Qt Company Ltd. and
others; LGPL version 3 or GPL version 2) with the libraries in its source, among
them PCRE2, zlib and double-conversion, and the run-time libraries of GCC and
mingw-w64. scorewright-check.exe also contains libcsv (Copyright Robert Gamble;
LGPL version 2.1 or later). Their copyright notices and licences are in the
folder licences. Their source is in Debian 12's source packages qt6-base
(${Qt6_VERSION}), libcsv, gcc-mingw-w64 and mingw-w64: https://sources.debian.org,
or apt-get source. scripts/windows in the source of scorewright fetches Qt Core,
builds it in the folder build-windows-qt, and links the programs with it.
")
else()
  set(program_folder ${CMAKE_INSTALL_BINDIR})
  set(document_folder ${CMAKE_INSTALL_DOCDIR})
  set(copyright copyright)
  install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 FILES_MATCHING PATTERN "*.1")
endif()

file(READ examples/credit/LICENSE data_licence)
configure_file(cmake/copyright.in ${PROJECT_BINARY_DIR}/${copyright} @ONLY)

# Lets the programs find a Qt outside the system's library folders.
set_target_properties(scorewright scorewright-check PROPERTIES INSTALL_RPATH_USE_LINK_PATH ON)

install(TARGETS scorewright scorewright-check RUNTIME DESTINATION ${program_folder})
install(FILES README.md CHANGELOG.md ARCHITECTURE.md CONTRIBUTING.md SECURITY.md
  ${PROJECT_BINARY_DIR}/${copyright} DESTINATION ${document_folder})
install(DIRECTORY docs DESTINATION ${document_folder} PATTERN "*.1" EXCLUDE)
install(DIRECTORY examples DESTINATION ${document_folder} USE_SOURCE_PERMISSIONS
  PATTERN "__pycache__" EXCLUDE)
if(WIN32)
  # Copyright notices of the linked libraries, and the licences that they refer to.
  foreach(part libqt6core6 libcsv-dev gcc-mingw-w64-base mingw-w64-x86-64-dev)
    install(FILES /usr/share/doc/${part}/copyright DESTINATION licences RENAME ${part}.txt)
  endforeach()
  foreach(text GPL-2 GPL-3 LGPL-2 LGPL-2.1 LGPL-3)
    install(FILES /usr/share/common-licenses/${text} DESTINATION licences RENAME ${text}.txt)
  endforeach()
else()
  foreach(program scorewright scorewright-check)
    install(FILES cmake/completion.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
      RENAME ${program})
  endforeach()
endif()

# Debian's Python searches one folder in /usr for all versions, and one per version in /usr/local;
# elsewhere users set PYTHONPATH. The prefix is known only at installation.
if(NOT WIN32)
  install(CODE [[
    set(python_folder lib/python3/dist-packages)
    if(CMAKE_INSTALL_PREFIX STREQUAL "/usr/local" AND EXISTS /usr/bin/python3)
      execute_process(COMMAND /usr/bin/python3 -c "import sys; print('%d.%d' % sys.version_info[:2])"
        OUTPUT_VARIABLE python_version OUTPUT_STRIP_TRAILING_WHITESPACE)
      set(python_folder lib/python${python_version}/dist-packages)
    endif()
  ]])
  install(DIRECTORY python/scorewright DESTINATION "\${python_folder}"
    PATTERN "__pycache__" EXCLUDE)
endif()

string(TOLOWER
  ${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}
  CPACK_PACKAGE_FILE_NAME)
set(CPACK_PACKAGE_VENDOR "Scorewright")
set(CPACK_PACKAGE_CONTACT "Scorewright maintainers <maintainers@scorewright.invalid>" CACHE STRING
  "Name and address of the maintainer of the packages")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "exporter of scoring models to SAS, SQL, Excel VBA, Python and HTML")
set(CPACK_PACKAGE_DESCRIPTION
"Scorewright reads a scoring model (recodings of columns, a regression over them
and a table from score to probability) and writes code that computes its score
and probability: a SAS data step, SQL for six dialects, an Excel VBA
module, a Python class for pandas, or an interactive HTML page. Its companion
scorewright-check shows the model, scores rows exactly as the model defines
them, and explains why a deployment returns different results.")
set(CPACK_RESOURCE_FILE_README ${PROJECT_SOURCE_DIR}/README.md)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
else()
  set(CPACK_GENERATOR DEB TGZ)
endif()
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The .deb includes the Python package, and only its users need these libraries.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "python3:any")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "python3-numpy, python3-pandas, python3-sklearn")
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianFiles.cmake)
include(CPack)
