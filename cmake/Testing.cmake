# darokleim_test(NAME name SOURCES … [LIBRARIES …] [PROPERTIES …]): a GoogleTest program whose every test is a
# CTest test named name.Suite.Test, run in a process of its own. PROPERTIES are those of each CTest test.
#
# Tests of more than ten seconds have a COST, roughly those seconds: CTest starts them first, so that none runs alone at
# the end.
include(GoogleTest)

# Tests are run once and compiled often.
add_compile_options(-O0 -g1)

if(EXISTS "/usr/src/googletest/CMakeLists.txt")
  # Built here, so that it has the sanitizers and the standard library of the tests.
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory("/usr/src/googletest" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
  add_library(darokleim_gtest INTERFACE)
  target_link_libraries(darokleim_gtest INTERFACE gmock_main gmock gtest)
else()
  find_package(GTest REQUIRED)
  add_library(darokleim_gtest INTERFACE)
  target_link_libraries(darokleim_gtest INTERFACE GTest::gmock_main GTest::gmock GTest::gtest)
endif()

# What every test includes, compiled once. Owned by a program, since programs and libraries differ in how their code may
# be placed.
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/empty.cpp" CONTENT "")
add_executable(darokleim_test_headers EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/empty.cpp")
target_link_libraries(darokleim_test_headers PRIVATE darokleim_options darokleim_gtest)
target_precompile_headers(darokleim_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h> <filesystem> <functional>
                          <regex> <string> <vector>)

# The sources of a target are compiled six at a time, since most of what a test takes to compile is what it uses of the
# standard library and of GoogleTest. Names in the anonymous namespaces of a target's tests must therefore differ.
function(darokleim_compile_tests target)
  target_precompile_headers(${target} REUSE_FROM darokleim_test_headers)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
endfunction()

# darokleim_test_library(NAME name TYPE STATIC|OBJECT SOURCES … [LIBRARIES …]): what several test programs share.
function(darokleim_test_library)
  cmake_parse_arguments(ARG "" "NAME;TYPE" "SOURCES;LIBRARIES" ${ARGN})
  add_library(${ARG_NAME} ${ARG_TYPE} EXCLUDE_FROM_ALL ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PUBLIC darokleim_options darokleim_gtest darokleim_test_support ${ARG_LIBRARIES})
  # Placed as the code of a program, for the precompiled header.
  set_target_properties(${ARG_NAME} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_options(${ARG_NAME} PRIVATE ${CMAKE_CXX_COMPILE_OPTIONS_PIE})
  darokleim_compile_tests(${ARG_NAME})
endfunction()

function(darokleim_test)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LIBRARIES;PROPERTIES" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE darokleim_options darokleim_gtest darokleim_test_support ${ARG_LIBRARIES})
  darokleim_compile_tests(${ARG_NAME})
  set_target_properties(${ARG_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  set(seconds 120)
  if(DAROKLEIM_SANITIZE)
    set(seconds 400) # for the longest comparisons with regular expressions
  endif()
  if(DAROKLEIM_COVERAGE)
    # Programs of the same size, as those are that only differ in their tests, would share a profile and lose it.
    list(APPEND ARG_PROPERTIES ENVIRONMENT
                               "LLVM_PROFILE_FILE=${PROJECT_BINARY_DIR}/profiles/${ARG_NAME}-%c%4m.profraw")
  endif()
  gtest_discover_tests(${ARG_NAME} TEST_PREFIX "${ARG_NAME}." DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${seconds} ${ARG_PROPERTIES})
endfunction()
