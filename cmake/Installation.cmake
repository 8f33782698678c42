# What `cmake --install` puts where, for the libraries and what their users build with; the tools have their own rules,
# beside their sources. The tree may be moved as a whole: nothing in it names the folder it was installed to.
include(CMakePackageConfigHelpers)

# The channel and the log keep the bare file names under which others can take their place.
set_target_properties(darokleim PROPERTIES VERSION "${PROJECT_VERSION}" SOVERSION "${PROJECT_VERSION_MAJOR}")
set_target_properties(_adb_communcation PROPERTIES EXPORT_NAME channel)
set_target_properties(VexoLogSDK PROPERTIES EXPORT_NAME log)

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

install(TARGETS darokleim _adb_communcation VexoLogSDK EXPORT darokleimTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(EXPORT darokleimTargets NAMESPACE darokleim:: DESTINATION "${package_folder}")

# The archive's users bring JsonCpp, which must be of the kind that it was compiled with.
if(NOT DAROKLEIM_JSONCPP_SOURCE)
  install(TARGETS darokleim_static EXPORT darokleimStaticTargets
          ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  install(EXPORT darokleimStaticTargets NAMESPACE darokleim:: DESTINATION "${package_folder}")
endif()

install(FILES "${PROJECT_SOURCE_DIR}/include/darokleim.h" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
# In a folder of its own: Clang reads every file of that name that it finds on its way.
install(FILES "${PROJECT_SOURCE_DIR}/cmake/package/module.modulemap" DESTINATION "${header_folder}")
# For those who write a channel or a log of their own.
install(FILES "${PROJECT_SOURCE_DIR}/src/platform/command_channel.h"
              "${PROJECT_SOURCE_DIR}/src/platform/log_library.h" DESTINATION "${header_folder}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/package/darokleimConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/package/darokleimConfig.cmake"
                              INSTALL_DESTINATION "${package_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/darokleimConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/package/darokleimConfig.cmake"
              "${PROJECT_BINARY_DIR}/package/darokleimConfigVersion.cmake" DESTINATION "${package_folder}")

file(RELATIVE_PATH pkgconfig_to_prefix "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/package/darokleim.pc.in" "${PROJECT_BINARY_DIR}/package/darokleim.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/darokleim.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        PATTERN __pycache__ EXCLUDE)
