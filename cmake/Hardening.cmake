# What makes an error in our code harder to exploit, for every folder that is added from here on. The sanitizers find
# such errors by themselves, and these would hide some from them.
include(CheckCompilerFlag)
include(CheckLinkerFlag)
include(CheckPIESupported)

# A program's code lies at another address each time.
check_pie_supported(LANGUAGES C CXX)

# darokleim_known_flags(VARIABLE COMPILER|LINKER flag…): sets VARIABLE to those flags that it accepts.
function(darokleim_known_flags variable kind)
  set(known)
  foreach(flag IN LISTS ARGN)
    string(MAKE_C_IDENTIFIER "DAROKLEIM_${kind}_TAKES_${flag}" result)
    if(kind STREQUAL "LINKER")
      check_linker_flag(CXX "${flag}" ${result})
    else()
      check_compiler_flag(CXX "${flag}" ${result})
    endif()
    if(${result})
      list(APPEND known "${flag}")
    endif()
  endforeach()
  set(${variable} ${known} PARENT_SCOPE)
endfunction()

if(NOT DAROKLEIM_SANITIZE)
  # Return addresses are guarded, and jumps may only arrive where the code expects them (CET, on ARM: BTI and PAC).
  set(compiler_flags -fstack-protector-strong)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i.86")
    list(APPEND compiler_flags -fcf-protection)
  elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64" AND NOT APPLE) # where Apple's compiler decides by the target
    list(APPEND compiler_flags -mbranch-protection=standard)
  endif()
  darokleim_known_flags(compiler_flags COMPILER ${compiler_flags})
  # The C library checks the sizes that the compiler knows; it insists on optimised code.
  set(optimised $<CONFIG:Release,RelWithDebInfo,MinSizeRel>)
  add_compile_options(${compiler_flags} $<${optimised}:-U_FORTIFY_SOURCE> $<${optimised}:-D_FORTIFY_SOURCE=2>)
endif()

# The table of foreign functions is filled at the start and read-only from then on; no stack is executable.
if(NOT APPLE)
  darokleim_known_flags(linker_flags LINKER "LINKER:-z,relro" "LINKER:-z,now" "LINKER:-z,noexecstack")
  add_link_options(${linker_flags})
endif()
