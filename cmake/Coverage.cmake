# darokleim_measure_coverage(OBJECTS target SHARED target [STATIC target]): with DAROKLEIM_COVERAGE (Clang only),
# programs that use the libraries write down which lines and branches of these objects ran.
#
# Only what is shipped as a library: the simulated phone runs its own programs where no such file can be written.
function(darokleim_measure_coverage)
  cmake_parse_arguments(ARG "" "OBJECTS;SHARED;STATIC" "" ${ARGN})
  if(NOT DAROKLEIM_COVERAGE)
    return()
  endif()
  # With its counters in a mapped file (%c in LLVM_PROFILE_FILE), what a program ran counts however it ended: many
  # tests kill it, or leave it no descriptor to write with. Threads and processes count in the same place.
  target_compile_options(${ARG_OBJECTS} PRIVATE -fprofile-instr-generate -fcoverage-mapping -fprofile-update=atomic
                         "SHELL:-mllvm -runtime-counter-relocation")
  target_link_options(${ARG_SHARED} PRIVATE -fprofile-instr-generate)
  if(ARG_STATIC)
    target_link_options(${ARG_STATIC} INTERFACE $<BUILD_INTERFACE:-fprofile-instr-generate>)
  endif()
endfunction()
