# darokleim_export_only(target symbol…): the shared library exports these symbols (as C names them) and nothing
# else. Hidden visibility alone is not enough: what the compiler instantiates of the standard library's
# templates stays visible, and would be shared with a host that has another version of them.
include(CheckLinkerFlag)

function(darokleim_export_only target)
  set(list_file "${CMAKE_CURRENT_BINARY_DIR}/${target}.exports")
  if(APPLE)
    list(TRANSFORM ARGN PREPEND "_" OUTPUT_VARIABLE symbols)
    list(JOIN symbols "\n" text)
    set(flag "LINKER:-exported_symbols_list,${list_file}")
  else()
    list(JOIN ARGN "; " text)
    set(text "{ global: ${text}; local: *; };")
    set(flag "LINKER:--version-script=${list_file}")
  endif()
  file(CONFIGURE OUTPUT "${list_file}" CONTENT "${text}\n" @ONLY)

  # A cross linker may know neither; hidden visibility is then all there is.
  check_linker_flag(CXX "${flag}" DAROKLEIM_LINKER_TAKES_EXPORT_LIST)
  if(DAROKLEIM_LINKER_TAKES_EXPORT_LIST)
    target_link_options(${target} PRIVATE "${flag}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${list_file}")
  endif()
endfunction()
