# darokleim_jsoncpp: JsonCpp as the system packages it, or built from a source tree for a compiler or
# standard library that the packaged one was not built with.
add_library(darokleim_jsoncpp INTERFACE)
if(DAROKLEIM_JSONCPP_SOURCE)
  add_library(jsoncpp_from_source STATIC
              "${DAROKLEIM_JSONCPP_SOURCE}/src/lib_json/json_reader.cpp"
              "${DAROKLEIM_JSONCPP_SOURCE}/src/lib_json/json_value.cpp"
              "${DAROKLEIM_JSONCPP_SOURCE}/src/lib_json/json_writer.cpp")
  target_compile_features(jsoncpp_from_source PUBLIC cxx_std_20)
  target_include_directories(jsoncpp_from_source SYSTEM PUBLIC "${DAROKLEIM_JSONCPP_SOURCE}/include")
  target_link_libraries(darokleim_jsoncpp INTERFACE $<BUILD_INTERFACE:jsoncpp_from_source>)
else()
  if(NOT TARGET jsoncpp_lib)
    find_package(jsoncpp REQUIRED)
    # A project that includes this one links it along with the static library.
    set_target_properties(jsoncpp_lib PROPERTIES IMPORTED_GLOBAL ON)
  endif()
  target_link_libraries(darokleim_jsoncpp INTERFACE $<BUILD_INTERFACE:jsoncpp_lib>)
endif()
