# What `cmake --install` puts where, for the libraries and what their users build with; the tools have their own rules,
# beside their sources. The tree may be moved as a whole: nothing in it names the folder it was installed to.
#
# `cmake --install` takes one component with --component: sdk, client, tools or documentation. Each of the first two is usable without
# the other; the tools need the sdk and the client.
include(CheckCXXSymbolExists)
include(CMakePackageConfigHelpers)

# The channel and the log keep the bare file names under which others can take their place.
set_target_properties(darokleim darokleim_client PROPERTIES VERSION "${PROJECT_VERSION}" SOVERSION "${PROJECT_VERSION_MAJOR}")
set_target_properties(_adb_communcation PROPERTIES EXPORT_NAME channel)
set_target_properties(VexoLogSDK PROPERTIES EXPORT_NAME log)
set_target_properties(darokleim_client PROPERTIES EXPORT_NAME client)
set_target_properties(darokleim_client_static PROPERTIES EXPORT_NAME client_static)

if(APPLE)
  set(own_folder "@loader_path")
else()
  set(own_folder "$ORIGIN")
endif()
file(RELATIVE_PATH bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
# The build tree has the same paths: CMake would leave room in them to be replaced, which the loader takes for the
# current folder.
set_target_properties(darokleim _adb_communcation VexoLogSDK PROPERTIES
                      INSTALL_RPATH "${own_folder}" BUILD_WITH_INSTALL_RPATH ON)
if(TARGET darokleim_cli)
  set_target_properties(darokleim_cli PROPERTIES
                        INSTALL_RPATH "${own_folder}/${bin_to_lib}" BUILD_WITH_INSTALL_RPATH ON)
endif()
if(NOT bin_to_lib STREQUAL "../lib") # as with Debian's prefix /usr: the same way leads to our lib
  cmake_path(ABSOLUTE_PATH bin_to_lib BASE_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}" NORMALIZE
             OUTPUT_VARIABLE other_lib)
  cmake_path(GET other_lib PARENT_PATH other_parent)
  file(MAKE_DIRECTORY "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}" "${other_parent}")
  file(CREATE_LINK "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}" "${other_lib}" SYMBOLIC)
endif()

set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/darokleim")
set(header_folder "${CMAKE_INSTALL_INCLUDEDIR}/darokleim")

# darokleim_install_export(COMPONENT NAME target…): the targets, and the file of the CMake package that names them.
function(darokleim_install_export component name)
  install(TARGETS ${ARGN} EXPORT ${name}
          LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${component} NAMELINK_COMPONENT ${component}
          ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${component})
  install(EXPORT ${name} NAMESPACE darokleim:: DESTINATION "${package_folder}" COMPONENT ${component})
endfunction()

darokleim_install_export(sdk darokleimTargets darokleim _adb_communcation VexoLogSDK)
# The archive's users bring JsonCpp, which must be of the kind that it was compiled with.
if(NOT DAROKLEIM_JSONCPP_SOURCE)
  darokleim_install_export(sdk darokleimStaticTargets darokleim_static)
endif()
darokleim_install_export(client darokleimClientTargets darokleim_client darokleim_client_static)

install(FILES "${PROJECT_SOURCE_DIR}/include/darokleim.h" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT sdk)
# For those who write a channel or a log of their own.
install(FILES "${PROJECT_SOURCE_DIR}/src/platform/command_channel.h"
              "${PROJECT_SOURCE_DIR}/src/platform/log_library.h" DESTINATION "${header_folder}" COMPONENT sdk)
install(FILES "${PROJECT_SOURCE_DIR}/include/darokleim/client.h"
              "${PROJECT_SOURCE_DIR}/include/darokleim/client.hpp" DESTINATION "${header_folder}" COMPONENT client)

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/package/darokleimConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/package/darokleimConfig.cmake"
                              INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/darokleimConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
# In the folder of the headers: Clang reads every file of that name that it finds on its way.
foreach(component sdk client)
  install(FILES "${PROJECT_SOURCE_DIR}/cmake/package/module.modulemap" DESTINATION "${header_folder}"
          COMPONENT ${component})
  install(FILES "${PROJECT_BINARY_DIR}/package/darokleimConfig.cmake"
                "${PROJECT_BINARY_DIR}/package/darokleimConfigVersion.cmake" DESTINATION "${package_folder}"
          COMPONENT ${component})
endforeach()

file(RELATIVE_PATH pkgconfig_to_prefix "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
check_cxx_symbol_exists(_LIBCPP_VERSION version DAROKLEIM_USES_LIBCXX)
if(APPLE)
  set(cxx_library -lc++)
elseif(DAROKLEIM_USES_LIBCXX)
  set(cxx_library "-lc++ -lc++abi")
else()
  set(cxx_library -lstdc++)
endif()
function(darokleim_install_pkg_config component name)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/package/${name}.pc.in" "${PROJECT_BINARY_DIR}/package/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/package/${name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT ${component})
endfunction()
darokleim_install_pkg_config(sdk darokleim)
darokleim_install_pkg_config(client darokleim-client)

install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT documentation)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation
        PATTERN __pycache__ EXCLUDE PATTERN swift/photos EXCLUDE) # which needs the package beside it
