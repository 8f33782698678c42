# darokleim_test(NAME name SOURCES … [LIBRARIES …] [PROPERTIES …]): a GoogleTest program whose every test is a
# CTest test named name.Suite.Test, run in a process of its own. PROPERTIES are those of each CTest test.
include(GoogleTest)

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

# Tests are run once and compiled often.
add_compile_options(-O1 -g1)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # From a precompiled header, GCC 12 reports the standard library's own string code as writing out of bounds. That
  # tests do not is seen by Clang's sanitizers.
  add_compile_options(-Wno-array-bounds -Wno-stringop-overflow -Wno-stringop-overread)
endif()

# What every test includes, compiled once: half of the time that tests take to build. Owned by a program, since
# programs and libraries differ in how their code may be placed.
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/empty.cpp" CONTENT "")
add_executable(darokleim_test_headers EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/empty.cpp")
target_link_libraries(darokleim_test_headers PRIVATE darokleim_options darokleim_gtest)
target_precompile_headers(darokleim_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h> <filesystem> <functional>
                          <regex> <string> <vector>)

function(darokleim_test)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LIBRARIES;PROPERTIES" ${ARGN})
  add_executable(${ARG_NAME} ${ARG_SOURCES})
  target_link_libraries(${ARG_NAME} PRIVATE darokleim_options darokleim_gtest darokleim_test_support ${ARG_LIBRARIES})
  target_precompile_headers(${ARG_NAME} REUSE_FROM darokleim_test_headers)
  set_target_properties(${ARG_NAME} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  gtest_discover_tests(${ARG_NAME} TEST_PREFIX "${ARG_NAME}." DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 120 ${ARG_PROPERTIES})
endfunction()
