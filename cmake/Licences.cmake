# darokleim_install_licence(COMPONENT NAME package…): installs the licence text of what others wrote and our binaries
# contain, as this machine's package of that name brings it. Without it a binary must not be handed on.
function(darokleim_install_licence component name)
  set(places)
  foreach(package IN LISTS ARGN)
    list(APPEND places "/usr/share/doc/${package}" "/usr/share/licenses/${package}" # Debian, others
                       "/opt/homebrew/opt/${package}" "/usr/local/opt/${package}")
  endforeach()
  find_file(DAROKLEIM_LICENCE_${name} NAMES copyright LICENSE LICENSE.txt LICENSE.rst LICENSE.MIT COPYING
            PATHS ${places} NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH DOC "The licence text of ${name}")
  if(DAROKLEIM_LICENCE_${name})
    install(FILES "${DAROKLEIM_LICENCE_${name}}" DESTINATION "${CMAKE_INSTALL_DOCDIR}/licences" RENAME "${name}.txt"
            COMPONENT ${component})
  else()
    message(WARNING "The licence text of ${name} was not found, so that an installation lacks it: "
                    "name the file with -DDAROKLEIM_LICENCE_${name}=FILE before you hand on binaries")
  endif()
endfunction()

if(DAROKLEIM_JSONCPP_SOURCE)
  set(DAROKLEIM_LICENCE_JsonCpp "${DAROKLEIM_JSONCPP_SOURCE}/LICENSE" CACHE FILEPATH "The licence text of JsonCpp")
endif()
darokleim_install_licence(sdk JsonCpp libjsoncpp-dev jsoncpp-devel jsoncpp)
darokleim_install_licence(sdk fmt libfmt-dev fmt-devel fmt)
darokleim_install_licence(sdk spdlog libspdlog-dev spdlog-devel spdlog)
if(TARGET darokleim_cli)
  darokleim_install_licence(tools CLI11 libcli11-dev cli11-devel cli11)
endif()
