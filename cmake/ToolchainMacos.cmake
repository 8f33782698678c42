# Cross build for macOS on Linux with Zig, which carries the headers of macOS and its C++ standard library:
#
#   cmake --toolchain cmake/ToolchainMacos.cmake -DDAROKLEIM_ZIG=/path/to/zig -DDAROKLEIM_MACOS_TARGET=aarch64-macos …
#
# DAROKLEIM_MACOS_TARGET is aarch64-macos (the default) or x86_64-macos.
set(DAROKLEIM_ZIG zig CACHE FILEPATH "The Zig executable")
set(DAROKLEIM_MACOS_TARGET aarch64-macos CACHE STRING "The target as Zig names it")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DAROKLEIM_ZIG DAROKLEIM_MACOS_TARGET)

# The oldest macOS that the binaries run on.
set(deployment_target 11.0)

set(CMAKE_SYSTEM_NAME Darwin)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR "${DAROKLEIM_MACOS_TARGET}")

# CMake needs a program for each tool; Zig is all of them, chosen by its first word. This Zig does not know two of CMake's
# flags, which are not needed: code for macOS is always position-independent, and the linker need not print its version. Its linker
# crashes for some layouts of a binary, always for the same ones: with its first object at the end a binary has another layout.
set(wrappers "${CMAKE_BINARY_DIR}/zig")
function(write_wrapper tool arguments)
  file(WRITE "${wrappers}/${tool}" "#!/bin/sh
compiles=
for word do
  shift
  case $word in
    -fPIE | -Wl,-v) ;;
    *) set -- \"$@\" \"$word\" ;;
  esac
  [ \"$word\" != -c ] || compiles=1
done
\"${DAROKLEIM_ZIG}\" ${arguments} \"$@\"
status=$?
[ $status -eq 139 ] && [ -z \"$compiles\" ] || exit $status
moved=
for word do
  shift
  case $moved$word in
    *.o) [ -n \"$moved\" ] && set -- \"$@\" \"$word\" || moved=$word ;;
    *) set -- \"$@\" \"$word\" ;;
  esac
done
exec \"${DAROKLEIM_ZIG}\" ${arguments} \"$@\" \"$moved\"
")
  file(CHMOD "${wrappers}/${tool}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
endfunction()
write_wrapper(cc "cc -target ${DAROKLEIM_MACOS_TARGET}.${deployment_target}")
write_wrapper(c++ "c++ -target ${DAROKLEIM_MACOS_TARGET}.${deployment_target}")
write_wrapper(ar ar)
write_wrapper(ranlib ranlib)
set(CMAKE_C_COMPILER "${wrappers}/cc")
set(CMAKE_CXX_COMPILER "${wrappers}/c++")
set(CMAKE_AR "${wrappers}/ar")
set(CMAKE_RANLIB "${wrappers}/ranlib")

# CMake insists on a program that changes paths in what was linked. There is none on Linux, and none is needed where
# the libraries are linked as they are installed, from the start.
set(CMAKE_INSTALL_NAME_TOOL "/bin/true")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
# CMake would ask macOS for its version to find out whether it has such paths, and assumes an old one without an answer.
set(CMAKE_USER_MAKE_RULES_OVERRIDE "${CMAKE_BINARY_DIR}/zig/rpath.cmake")
file(WRITE "${CMAKE_USER_MAKE_RULES_OVERRIDE}"
     "set(CMAKE_SHARED_LIBRARY_RUNTIME_C_FLAG -Wl,-rpath,)\nset(CMAKE_SHARED_LIBRARY_RUNTIME_CXX_FLAG -Wl,-rpath,)\n")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
