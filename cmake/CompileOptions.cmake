# darokleim_options: the language level, warnings and sanitizers of every target of ours.
# Nothing of it reaches those who link the installed libraries.
add_library(darokleim_options INTERFACE)
target_compile_features(darokleim_options INTERFACE cxx_std_20 c_std_11)
target_compile_options(darokleim_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                       $<$<BOOL:${DAROKLEIM_WERROR}>:-Werror>)
# GCC 12 mistakes a std::string after a literal for overlapping memory when it optimises for speed (its bug 105651).
target_compile_options(darokleim_options INTERFACE
                       $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>)
# Every include of ours begins at the root of the tree, but for the public headers.
target_include_directories(darokleim_options INTERFACE "${PROJECT_SOURCE_DIR}" "${PROJECT_SOURCE_DIR}/include")

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

if(DAROKLEIM_SANITIZE)
  add_compile_options(-fsanitize=${DAROKLEIM_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${DAROKLEIM_SANITIZE})
  if(DAROKLEIM_SANITIZE MATCHES "undefined") # to look at an object's type it needs a descriptor; some tests leave none
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()
