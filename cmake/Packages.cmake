# cpack makes a Debian package and a tar archive, on macOS the archive alone.
set(CPACK_PACKAGE_NAME darokleim)
set(CPACK_PACKAGE_VENDOR darokleim)
set(CPACK_PACKAGE_CONTACT "The darokleim developers <developers@darokleim.invalid>")
set(CPACK_PACKAGE_DESCRIPTION
    "A library for applications that manage Android devices, the command-line tool darokleim, and darokleim-phone, simulated phones for trying and testing without hardware.")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_INSTALL_DIRECTORY darokleim)
set(CPACK_PACKAGE_FILE_NAME "darokleim-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
if(NOT CMAKE_CROSSCOMPILING) # the host's strip knows the host's files only
  set(CPACK_STRIP_FILES ON)
endif()

set(CPACK_GENERATOR TGZ)
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
  list(PREPEND CPACK_GENERATOR DEB)
endif()

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS adb)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "bubblewrap, mksh, toybox") # of the simulated phones
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "libjsoncpp-dev")             # of the static library
include(CPack)
