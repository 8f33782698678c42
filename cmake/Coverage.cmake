# darokleim_measure_coverage([OBJECTS target] [SHARED target] [STATIC target] [PROGRAM target]): with DAROKLEIM_COVERAGE
# (Clang only), the lines and branches of OBJECTS are counted as they run. The library SHARED, the PROGRAM, and whatever
# links the archive STATIC write down the counts of all objects that are linked into them; in any other program the
# counters are there, but nothing is written.
#
# Only what is shipped as a library: the simulated phone runs its own programs where no such file can be written.
function(darokleim_measure_coverage)
  cmake_parse_arguments(ARG "" "OBJECTS;SHARED;STATIC;PROGRAM" "" ${ARGN})
  if(NOT DAROKLEIM_COVERAGE)
    return()
  endif()
  if(ARG_OBJECTS)
    # With its counters in a mapped file (%c in LLVM_PROFILE_FILE), what a program ran counts however it ended: many
    # tests kill it, or leave it no descriptor to write with. Threads and processes count in the same place.
    target_compile_options(${ARG_OBJECTS} PRIVATE -fprofile-instr-generate -fcoverage-mapping -fprofile-update=atomic
                           "SHELL:-mllvm -runtime-counter-relocation")
  endif()
  foreach(target ${ARG_SHARED} ${ARG_PROGRAM})
    target_link_options(${target} PRIVATE -fprofile-instr-generate)
  endforeach()
  if(ARG_STATIC)
    target_link_options(${ARG_STATIC} INTERFACE $<BUILD_INTERFACE:-fprofile-instr-generate>)
  endif()
endfunction()
